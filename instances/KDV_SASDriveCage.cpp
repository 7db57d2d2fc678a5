#include "instances/KDV_SASDriveCage.h"

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

#include <optional>

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASDriveCage";

// Code 1 says that the speed is unknown; for other codes nothing is said.
constexpr CodeMap<std::optional<std::uint16_t>, 3> backplaneSpeed{{{1, 0}, {2, 2}, {3, 3}}, std::nullopt};
constexpr CodeMap<std::uint16_t, 2> duplexLocation{{{3, 1}, {4, 2}}, 0};

std::string boxIdentity(std::uint32_t hbaNumber, std::uint32_t boxNumber)
{
    return joined({className, "-", hbaNumber, "-", boxNumber});
}

} // namespace

KDV_SASDriveCage::KDV_SASDriveCage(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                                   const SasStorageBoxRecord* box)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba), _box(box),
      _hbaNumber(hba->hbaNumber), _boxNumber(box->boxNumber)
{
}

KDV_SASDriveCage::~KDV_SASDriveCage() = default;

CmpiObjectPath KDV_SASDriveCage::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Tag", boxIdentity(_hbaNumber, _boxNumber));
    return path;
}

CmpiInstance KDV_SASDriveCage::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", _box->name);
    row.string("Name", _box->serialNumber); // the serial number, unlike the enclosure
    row.string("CreationClassName", className);
    row.string("Manufacturer", _box->manufacturer);
    row.string("Model", _box->model);
    row.string("PartNumber", "N/A");
    row.string("Tag", boxIdentity(_hbaNumber, _boxNumber));
    row.string("SerialNumber", _box->serialNumber);
    row.string("Version", "N/A");
    row.uint16("RemovalConditions", RemovalConditions::NotApplicable);
    if (const auto speed = backplaneSpeed[_box->backplaneSpeed]) row.uint16("BackplaneSpeed", *speed);
    row.uint32("DriveBays", _box->driveBays);
    row.uint16("DuplexLocation", duplexLocation[_box->duplexCode]);
    return row.instance();
}

} // namespace KDV
