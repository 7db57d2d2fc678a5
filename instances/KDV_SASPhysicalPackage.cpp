#include "instances/KDV_SASPhysicalPackage.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPhysicalPackage";
}

KDV_SASPhysicalPackage::KDV_SASPhysicalPackage(const Logger& logger, const std::string& nameSpace,
                                               const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber), _modelText(controllerModelText(hba->modelCode)),
      _slotText(controllerSlotText(hba->slotNumber))
{
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASPhysicalPackage::~KDV_SASPhysicalPackage() = default;

CmpiObjectPath KDV_SASPhysicalPackage::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Tag", FieldText(_hba->name).c_str());
    return path;
}

CmpiInstance KDV_SASPhysicalPackage::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(_modelText, _slotText));
    row.string("Description", "Host Based RAID Controller");
    row.string("Name", _hba->name);
    row.string("CreationClassName", className);
    row.string("Manufacturer", "ZT");
    row.string("Model", _modelText);
    row.string("PartNumber", "N/A");
    row.string("SerialNumber", _hba->name);
    row.string("Tag", _hba->name);
    row.uint16("RemovalConditions", RemovalConditions::NotApplicable);
    return row.instance();
}

} // namespace KDV
