#include "instances/KDV_SASSCSIProtocolEndpoint.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSCSIProtocolEndpoint";
}

KDV_SASSCSIProtocolEndpoint::KDV_SASSCSIProtocolEndpoint(const Logger& logger, const std::string& nameSpace,
                                                         const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber)
{
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASSCSIProtocolEndpoint::~KDV_SASSCSIProtocolEndpoint() = default;

CmpiObjectPath KDV_SASSCSIProtocolEndpoint::getPath() const
{
    _log.info("getPath()");
    const FieldText name(_hba->name);
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Name", name.c_str());
    path.addKey("SystemCreationClassName", arraySystemClass);
    path.addKey("SystemName", name.c_str());
    return path;
}

CmpiInstance KDV_SASSCSIProtocolEndpoint::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(*_hba));
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("Name", _hba->name);
    row.string("SystemCreationClassName", arraySystemClass);
    row.string("SystemName", _hba->name);
    row.uint16("ProtocolIFType", 0); // Unknown
    row.uint16("ConnectionType", 1); // Other: named in the next row
    row.string("OtherConnectionType", "PCI");
    row.uint16("Role", 4); // Both Initiator and Target
    return row.instance();
}

} // namespace KDV
