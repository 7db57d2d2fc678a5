#include "associations/KDV_SASFirmwareArraySystem.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASFirmwareArraySystem";
}

KDV_SASFirmwareArraySystem::KDV_SASFirmwareArraySystem(const Logger& logger, const std::string& nameSpace,
                                                       const CmpiManagedInstance* firmware,
                                                       const CmpiManagedInstance* arraySystem)
    : CIM_Dependency(nameSpace, className, firmware, arraySystem), _log(logger, className), _firmware(firmware),
      _arraySystem(arraySystem)
{
}

KDV_SASFirmwareArraySystem::~KDV_SASFirmwareArraySystem() = default;

CmpiInstance KDV_SASFirmwareArraySystem::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(CIM_Dependency::getInstance());
    // 2 Current, 6 Installed.
    row.uint16Array("ElementSoftwareStatus", {2, 6});
    return row.instance();
}

} // namespace KDV
