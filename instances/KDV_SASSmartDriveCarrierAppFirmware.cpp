#include "instances/KDV_SASSmartDriveCarrierAppFirmware.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/DriveText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASSmartDriveCarrierAppFirmware";

constexpr char displayText[] = "Smart Drive Carrier Application Firmware";

} // namespace

KDV_SASSmartDriveCarrierAppFirmware::KDV_SASSmartDriveCarrierAppFirmware(const Logger& logger,
                                                                         const std::string& nameSpace,
                                                                         const SasHbaRecord* hba,
                                                                         const SasPhysicalDriveRecord* drive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba), _drive(drive)
{
    keysReadFrom(&drive->serialNumber, sizeof drive->serialNumber);
}

KDV_SASSmartDriveCarrierAppFirmware::~KDV_SASSmartDriveCarrierAppFirmware() = default;

CmpiObjectPath KDV_SASSmartDriveCarrierAppFirmware::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", joined({"VNR:", className, "-", _drive->serialNumber}));
    return path;
}

CmpiInstance KDV_SASSmartDriveCarrierAppFirmware::getInstance()
{
    _log.info("inside getInstance()");
    const VendorModel product = splitVendorModel(textOf(_drive->inquiry));
    const std::string version = std::to_string(_drive->carrierAppVersion);
    PropertyRows row(*this);
    // The adapter's name, while the key in the path has the drive's serial number: both on purpose.
    row.string("InstanceID", joined({"VNR:", className, "-", _hba->name}));
    row.string("Caption", displayText);
    row.string("ElementName", displayText);
    row.string("Name", displayText);
    row.string("Description", displayText);
    row.boolean("IsEntity", true);
    if (!product.vendor.empty()) row.string("Manufacturer", std::string(product.vendor));
    row.array("Classifications", emptyUint16Array(1)); // its element stays null on purpose: no class fits
    row.stringArray("ClassificationDescriptions", {displayText});
    row.uint16Array("OperationalStatus", {OperationalStatus::OK});
    row.stringArray("StatusDescriptions", {"Smart Drive Carrier Application Firmware Status: OK"});
    row.uint16("HealthState", 5); // OK
    row.uint16("MajorVersion", _drive->carrierAppVersion);
    row.string("VersionString", version);
    row.stringArray("TargetTypes", {product.model}); // also when empty
    if (!product.model.empty()) {
        row.stringArray("IdentityInfoType", {"CIM:SoftwareFamily", "VNR:SoftwareCategory"});
        row.stringArray("IdentityInfoValue", {joined({"VNR:", product.model}), "Storage Device"});
    }
    return row.instance();
}

} // namespace KDV
