#include "instances/KDV_SASFirmware.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASFirmware";

std::string instanceId(const SasHbaRecord& hba) { return joined({"VNR:", className, "-", hba.name}); }

} // namespace

KDV_SASFirmware::KDV_SASFirmware(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber), _modelText(controllerModelText(hba->modelCode))
{
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASFirmware::~KDV_SASFirmware() = default;

CmpiObjectPath KDV_SASFirmware::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", instanceId(*_hba));
    return path;
}

CmpiInstance KDV_SASFirmware::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    if (!_modelText.empty()) {
        row.string("ElementName", _modelText);
        row.stringArray("IdentityInfoType", {"CIM:SoftwareFamily", "VNR:SoftwareCategory"});
        row.stringArray("IdentityInfoValue", {joined({"VNR:", _modelText}), "Storage Controller"});
        row.stringArray("TargetTypes", {_modelText});
    }
    row.string("Name", "HBA Firmware");
    row.string("Caption", "HBA Firmware");
    row.string("Description", "HBA Firmware");
    row.stringArray("ClassificationDescriptions", {"HBA Firmware"});
    row.uint16Array("Classifications", {Classification::Firmware});
    row.string("InstanceID", instanceId(*_hba));
    row.string("Manufacturer", "ZT");
    row.string("VersionString", _hba->firmwareVersion);
    row.boolean("IsEntity", false);
    return row.instance();
}

} // namespace KDV
