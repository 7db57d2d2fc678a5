#include "associations/KDV_SASStorageEnclosureProcessorEnclosureFirmware.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageEnclosureProcessorEnclosureFirmware";
}

KDV_SASStorageEnclosureProcessorEnclosureFirmware::KDV_SASStorageEnclosureProcessorEnclosureFirmware(
    const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* firmware,
    const CmpiManagedInstance* enclosureProcessor)
    : CIM_Dependency(nameSpace, className, firmware, enclosureProcessor), _log(logger, className), _firmware(firmware),
      _enclosureProcessor(enclosureProcessor)
{
}

KDV_SASStorageEnclosureProcessorEnclosureFirmware::~KDV_SASStorageEnclosureProcessorEnclosureFirmware() = default;

CmpiInstance KDV_SASStorageEnclosureProcessorEnclosureFirmware::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(CIM_Dependency::getInstance());
    // 2 Current, 6 Installed.
    row.uint16Array("ElementSoftwareStatus", {2, 6});
    return row.instance();
}

} // namespace KDV
