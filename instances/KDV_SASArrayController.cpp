#include "instances/KDV_SASArrayController.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArrayController";
}

KDV_SASArrayController::KDV_SASArrayController(const Logger& logger, const std::string& nameSpace,
                                               const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hbaNumber(hba->hbaNumber),
      _hba(hba)
{
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASArrayController::~KDV_SASArrayController() = default;

CmpiObjectPath KDV_SASArrayController::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Name", FieldText(_hba->name).c_str());
    return path;
}

CmpiInstance KDV_SASArrayController::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(*_hba));
    row.uint16Array("OperationalStatus", {controllerStatus[_hba->controllerStatus]});
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("Name", _hba->name);
    row.string("NameFormat", "Other");
    row.uint16Array("Dedicated", {0}); // Not Dedicated
    row.stringArray("IdentifyingDescriptions", {"Other Vendor Specific Name"});
    row.stringArray("OtherIdentifyingInfo", {textOf(_hba->name)});
    return row.instance();
}

} // namespace KDV
