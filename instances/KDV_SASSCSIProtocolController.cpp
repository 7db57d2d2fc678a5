#include "instances/KDV_SASSCSIProtocolController.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSCSIProtocolController";
}

KDV_SASSCSIProtocolController::KDV_SASSCSIProtocolController(const Logger& logger, const std::string& nameSpace,
                                                             const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber)
{
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASSCSIProtocolController::~KDV_SASSCSIProtocolController() = default;

CmpiObjectPath KDV_SASSCSIProtocolController::getPath() const
{
    _log.info("getPath()");
    return devicePath(_nameSpace, className, _hba->name, _hba->name);
}

CmpiInstance KDV_SASSCSIProtocolController::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(*_hba));
    row.uint16Array("OperationalStatus", {controllerStatus[_hba->controllerStatus]});
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("DeviceID", _hba->name);
    row.string("SystemCreationClassName", arraySystemClass);
    row.string("SystemName", _hba->name);
    row.uint32("MaxUnitsControlled", 2);
    return row.instance();
}

} // namespace KDV
