#include "associations/KDV_SASArraySystemStorageEnclosureProcessor.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemStorageEnclosureProcessor";
}

KDV_SASArraySystemStorageEnclosureProcessor::KDV_SASArraySystemStorageEnclosureProcessor(
    const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* arraySystem,
    const CmpiManagedInstance* enclosureProcessor)
    : CIM_SystemDevice(nameSpace, className, arraySystem, enclosureProcessor), _log(logger, className)
{
}

KDV_SASArraySystemStorageEnclosureProcessor::~KDV_SASArraySystemStorageEnclosureProcessor() = default;

} // namespace KDV
