#include "associations/KDV_SASDiskDriveDiskDriveFirmware.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASDiskDriveDiskDriveFirmware";
}

KDV_SASDiskDriveDiskDriveFirmware::KDV_SASDiskDriveDiskDriveFirmware(const Logger& logger, const std::string& nameSpace,
                                                                     const CmpiManagedInstance* firmware,
                                                                     const CmpiManagedInstance* diskDrive)
    : CIM_Dependency(nameSpace, className, firmware, diskDrive), _log(logger, className), _firmware(firmware),
      _diskDrive(diskDrive)
{
}

KDV_SASDiskDriveDiskDriveFirmware::~KDV_SASDiskDriveDiskDriveFirmware() = default;

CmpiInstance KDV_SASDiskDriveDiskDriveFirmware::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(CIM_Dependency::getInstance());
    // 2 Current, 6 Installed.
    row.uint16Array("ElementSoftwareStatus", {2, 6});
    return row.instance();
}

} // namespace KDV
