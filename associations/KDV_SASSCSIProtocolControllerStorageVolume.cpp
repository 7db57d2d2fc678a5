#include "associations/KDV_SASSCSIProtocolControllerStorageVolume.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASSCSIProtocolControllerStorageVolume";
}

KDV_SASSCSIProtocolControllerStorageVolume::KDV_SASSCSIProtocolControllerStorageVolume(
    const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* protocolController,
    const KDV_SASStorageVolume* volume)
    : CIM_Dependency(nameSpace, className, protocolController, volume), _log(logger, className),
      _protocolController(protocolController), _volume(volume)
{
}

KDV_SASSCSIProtocolControllerStorageVolume::~KDV_SASSCSIProtocolControllerStorageVolume() = default;

CmpiInstance KDV_SASSCSIProtocolControllerStorageVolume::getInstance()
{
    PropertyRows row(CIM_Dependency::getInstance());
    row.string("DeviceNumber", std::to_string(_volume->logicalDriveNumber()));
    row.uint16("DeviceAccess", 2); // Read Write
    return row.instance();
}

} // namespace KDV
