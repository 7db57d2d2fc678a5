#include "instances/KDV_SASStorageEnclosureLocation.h"

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/DriveText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageEnclosureLocation";

constexpr CodeMap<const char*, 2> locationTag{{{2, "Internal"}, {3, "External"}}, "Unknown"};

std::string boxIdentity(std::uint32_t hbaNumber, std::uint32_t boxNumber)
{
    return joined({className, "-", hbaNumber, "-", boxNumber});
}

} // namespace

KDV_SASStorageEnclosureLocation::KDV_SASStorageEnclosureLocation(const Logger& logger, const std::string& nameSpace,
                                                                 const SasHbaRecord* hba,
                                                                 const SasStorageBoxRecord* box)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba), _box(box),
      _hbaNumber(hba->hbaNumber), _boxNumber(box->boxNumber)
{
    keysReadFrom(&box->name, sizeof box->name);
}

KDV_SASStorageEnclosureLocation::~KDV_SASStorageEnclosureLocation() = default;

CmpiObjectPath KDV_SASStorageEnclosureLocation::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("Name", boxIdentity(_hbaNumber, _boxNumber));
    path.addKey("PhysicalPosition", boxPositionText(textOf(_box->name)));
    return path;
}

CmpiInstance KDV_SASStorageEnclosureLocation::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", _box->name);
    row.string("Caption", _box->name);
    row.string("Description", _box->name);
    row.string("Name", boxIdentity(_hbaNumber, _boxNumber));
    row.string("PhysicalPosition", boxPositionText(textOf(_box->name)));
    row.string("ElementLocationTag", locationTag[_box->locationCode]);
    row.uint16("ElementLocationTagDesc", LocationTag::Enclosure);
    return row.instance();
}

} // namespace KDV
