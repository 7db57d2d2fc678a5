#include "associations/KDV_SASStorageEnclosureStorageEnclosureProcessor.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageEnclosureStorageEnclosureProcessor";
}

KDV_SASStorageEnclosureStorageEnclosureProcessor::KDV_SASStorageEnclosureStorageEnclosureProcessor(
    const Logger& logger, const std::string& nameSpace, const CmpiManagedInstance* enclosure,
    const CmpiManagedInstance* enclosureProcessor)
    : CIM_Dependency(nameSpace, className, enclosure, enclosureProcessor), _log(logger, className)
{
}

KDV_SASStorageEnclosureStorageEnclosureProcessor::~KDV_SASStorageEnclosureStorageEnclosureProcessor() = default;

} // namespace KDV
