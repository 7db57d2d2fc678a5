#include "instances/KDV_SASEnclosureFirmware.h"

#include "common/KDVUtil.h"
#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASEnclosureFirmware";
}

KDV_SASEnclosureFirmware::KDV_SASEnclosureFirmware(const Logger& logger, const std::string& nameSpace,
                                                   const SasStorageBoxRecord* box)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _box(box)
{
    keysReadFrom(&box->serialNumber, sizeof box->serialNumber);
}

KDV_SASEnclosureFirmware::~KDV_SASEnclosureFirmware() = default;

CmpiObjectPath KDV_SASEnclosureFirmware::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", FieldText(_box->serialNumber).c_str());
    return path;
}

CmpiInstance KDV_SASEnclosureFirmware::getInstance()
{
    _log.info("getInstance()");
    const std::string_view model = textOf(_box->model);
    const std::string_view version = textOf(_box->firmwareVersion);
    PropertyRows row(*this);
    if (!model.empty()) {
        row.string("ElementName", _box->model);
        row.stringArray("IdentityInfoValue", {joined({"VNR:", model}), "Storage Device"});
        row.stringArray("IdentityInfoType", {"CIM:SoftwareFamily", "VNR:SoftwareCategory"});
    }
    row.string("Name", "Storage Enclosure Firmware");
    row.string("Caption", "Storage Enclosure Firmware");
    row.string("Description", "Storage Enclosure Firmware");
    row.stringArray("ClassificationDescriptions", {"Storage Enclosure Firmware"});
    row.uint16Array("Classifications", {Classification::Firmware});
    row.string("InstanceID", _box->serialNumber);
    row.string("Manufacturer", _box->manufacturer); // also when empty
    if (!version.empty()) row.string("VersionString", _box->firmwareVersion);
    if (!version.empty() && KDVUtil::validateVersion(version)) {
        std::uint16_t number = 0;
        if (KDVUtil::stringVersionToMajor(version, number)) row.uint16("MajorVersion", number);
        if (KDVUtil::stringVersionToMinor(version, number)) row.uint16("MinorVersion", number);
    }
    return row.instance();
}

} // namespace KDV
