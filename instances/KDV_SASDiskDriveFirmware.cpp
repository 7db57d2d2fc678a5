#include "instances/KDV_SASDiskDriveFirmware.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/DriveText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASDiskDriveFirmware";
}

KDV_SASDiskDriveFirmware::KDV_SASDiskDriveFirmware(const Logger& logger, const std::string& nameSpace,
                                                   const SasPhysicalDriveRecord* drive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _drive(drive)
{
    keysReadFrom(&drive->serialNumber, sizeof drive->serialNumber);
    const VendorModel product = splitVendorModel(textOf(drive->inquiry));
    _vendorText = product.vendor;
    _modelText = product.model;
    _log.info("disk vendor %s model %s", _vendorText.c_str(), _modelText.c_str());
}

KDV_SASDiskDriveFirmware::~KDV_SASDiskDriveFirmware() = default;

CmpiObjectPath KDV_SASDiskDriveFirmware::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", FieldText(_drive->serialNumber).c_str());
    return path;
}

CmpiInstance KDV_SASDiskDriveFirmware::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    if (!_modelText.empty()) {
        row.string("ElementName", _modelText);
        row.stringArray("IdentityInfoValue", {joined({"VNR:", _modelText}), "Storage Device"});
        row.stringArray("IdentityInfoType", {"CIM:SoftwareFamily", "VNR:SoftwareCategory"});
    }
    row.string("Name", "Disk Drive Firmware");
    row.string("Caption", "Disk Drive Firmware");
    row.string("Description", "Disk Drive Firmware");
    row.stringArray("ClassificationDescriptions", {"Disk Drive Firmware"});
    row.uint16Array("Classifications", {Classification::Firmware});
    row.string("InstanceID", _drive->serialNumber);
    if (!_vendorText.empty()) row.string("Manufacturer", _vendorText);
    if (_drive->firmwareRevision[0] != '\0') row.string("VersionString", _drive->firmwareRevision);
    row.boolean("IsEntity", false);
    return row.instance();
}

} // namespace KDV
