#include "associations/KDV_SASPrimordialPoolNoRaidStorageExtent.h"

namespace KDV {
namespace {
constexpr char className[] = "KDV_SASPrimordialPoolNoRaidStorageExtent";
}

KDV_SASPrimordialPoolNoRaidStorageExtent::KDV_SASPrimordialPoolNoRaidStorageExtent(const Logger& logger,
                                                                                   const std::string& nameSpace,
                                                                                   const CmpiManagedInstance* pool,
                                                                                   const CmpiManagedInstance* extent)
    : CIM_SystemDevice(nameSpace, className, pool, extent), _log(logger, className)
{
}

KDV_SASPrimordialPoolNoRaidStorageExtent::~KDV_SASPrimordialPoolNoRaidStorageExtent() = default;

} // namespace KDV
