#include "instances/KDV_SASStorageEnclosure.h"

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageEnclosure";

constexpr CodeMap<std::uint16_t, 2> enclosureLocation{{{2, 1}, {3, 2}}, 0}; // Internal, External

std::string boxIdentity(std::uint32_t hbaNumber, std::uint32_t boxNumber)
{
    return joined({className, "-", hbaNumber, "-", boxNumber});
}

} // namespace

KDV_SASStorageEnclosure::KDV_SASStorageEnclosure(const Logger& logger, const std::string& nameSpace,
                                                 const SasHbaRecord* hba, const SasStorageBoxRecord* box)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba), _box(box),
      _hbaNumber(hba->hbaNumber), _boxNumber(box->boxNumber)
{
}

KDV_SASStorageEnclosure::~KDV_SASStorageEnclosure() = default;

CmpiObjectPath KDV_SASStorageEnclosure::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Tag", boxIdentity(_hbaNumber, _boxNumber));
    return path;
}

CmpiInstance KDV_SASStorageEnclosure::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", _box->name);
    row.string("Name", _box->name);
    row.string("CreationClassName", className);
    row.string("Manufacturer", _box->manufacturer);
    row.string("Model", _box->model);
    row.string("PartNumber", "N/A");
    row.string("SerialNumber", _box->serialNumber);
    row.string("Tag", boxIdentity(_hbaNumber, _boxNumber));
    row.string("Version", "N/A");
    row.uint16("RemovalConditions", RemovalConditions::NotApplicable);
    row.uint16("Location", enclosureLocation[_box->locationCode]);
    return row.instance();
}

} // namespace KDV
