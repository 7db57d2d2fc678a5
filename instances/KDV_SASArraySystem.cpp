#include "instances/KDV_SASArraySystem.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystem";
}

KDV_SASArraySystem::KDV_SASArraySystem(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber), _modelText(controllerModelText(hba->modelCode)),
      _slotText(controllerSlotText(hba->slotNumber)), _name(textOf(hba->name))
{
}

KDV_SASArraySystem::~KDV_SASArraySystem() = default;

CmpiObjectPath KDV_SASArraySystem::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Name", _name);
    return path;
}

CmpiInstance KDV_SASArraySystem::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(_modelText, _slotText));
    row.uint16Array("OperationalStatus", {arraySystemStatus[_hba->arraySystemStatus]});
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("Name", _name);
    row.string("NameFormat", "Other");
    row.uint16Array("Dedicated", {3, 15}); // Storage, Block Server
    row.stringArray("IdentifyingDescriptions", {"Other Vendor Specific Name"});
    row.stringArray("OtherIdentifyingInfo", {_name});
    return row.instance();
}

} // namespace KDV
