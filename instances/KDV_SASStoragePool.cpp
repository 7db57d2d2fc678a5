#include "instances/KDV_SASStoragePool.h"

#include "instances/DevicePath.h"
#include "instances/DriveUsage.h"
#include "instances/HbaText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStoragePool";

std::string instanceId(std::uint32_t hbaNumber) { return joined({className, "-", hbaNumber}); }

// In 64 bits, unlike the primordial pools: the total does not wrap.
std::uint64_t managedSpace(const SasHbaRecord& hba)
{
    std::uint64_t total = 0;
    for (const SasPhysicalDriveRecord* drive = hba.physicalDrives.get(); drive; drive = drive->next.get())
        if (drive->usage == DriveUsage::Member || drive->usage == DriveUsage::Spare) total += drive->size;
    return total;
}

} // namespace

KDV_SASStoragePool::KDV_SASStoragePool(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber), _totalManagedSpace(managedSpace(*hba))
{
}

KDV_SASStoragePool::~KDV_SASStoragePool() = default;

CmpiObjectPath KDV_SASStoragePool::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", instanceId(_hbaNumber));
    return path;
}

CmpiInstance KDV_SASStoragePool::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", joined({hbaElementText(*_hba), ":Storage Pool"}));
    row.string("InstanceID", instanceId(_hbaNumber));
    row.string("PoolID", joined({_hba->name, ":1"}));
    row.boolean("Primordial", false);
    row.uint64("RemainingManagedSpace", 0);
    row.uint64("TotalManagedSpace", _totalManagedSpace);
    return row.instance();
}

} // namespace KDV
