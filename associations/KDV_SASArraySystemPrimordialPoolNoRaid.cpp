#include "associations/KDV_SASArraySystemPrimordialPoolNoRaid.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASArraySystemPrimordialPoolNoRaid";
}

KDV_SASArraySystemPrimordialPoolNoRaid::KDV_SASArraySystemPrimordialPoolNoRaid(const Logger& logger,
                                                                               const std::string& nameSpace,
                                                                               const CmpiManagedInstance* arraySystem,
                                                                               const CmpiManagedInstance* pool)
    : CIM_SystemDevice(nameSpace, className, arraySystem, pool), _log(logger, className)
{
}

KDV_SASArraySystemPrimordialPoolNoRaid::~KDV_SASArraySystemPrimordialPoolNoRaid() = default;

} // namespace KDV
