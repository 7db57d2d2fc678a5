#include "instances/KDV_SASPortController.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPortController";
}

KDV_SASPortController::KDV_SASPortController(const Logger& logger, const std::string& nameSpace,
                                             const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber)
{
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASPortController::~KDV_SASPortController() = default;

CmpiObjectPath KDV_SASPortController::getPath() const
{
    _log.info("getPath()");
    return devicePath(_nameSpace, className, _hba->name, _hba->name);
}

CmpiInstance KDV_SASPortController::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(*_hba));
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("DeviceID", _hba->name);
    row.string("SystemCreationClassName", arraySystemClass);
    row.string("SystemName", _hba->name);
    row.uint16("ControllerType", 1); // Other: named in the next row
    row.string("OtherControllerType", "SAS/SATA");
    return row.instance();
}

} // namespace KDV
