#include "instances/KDV_SASPrimordialPoolNoRaid.h"

#include "instances/DevicePath.h"
#include "instances/DriveUsage.h"
#include "instances/HbaText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASPrimordialPoolNoRaid";

std::string instanceId(std::uint32_t hbaNumber) { return joined({className, "-", hbaNumber}); }

// Summed in 32 bits on purpose: the sum of large drives wraps.
std::uint32_t managedSpace(const SasHbaRecord& hba)
{
    std::uint32_t total = 0;
    for (const SasPhysicalDriveRecord* drive = hba.physicalDrives.get(); drive; drive = drive->next.get())
        if (drive->usage == DriveUsage::NotConfigured) total += drive->size;
    return total;
}

} // namespace

KDV_SASPrimordialPoolNoRaid::KDV_SASPrimordialPoolNoRaid(const Logger& logger, const std::string& nameSpace,
                                                         const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber)
{
}

KDV_SASPrimordialPoolNoRaid::~KDV_SASPrimordialPoolNoRaid() = default;

CmpiObjectPath KDV_SASPrimordialPoolNoRaid::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", instanceId(_hbaNumber));
    return path;
}

CmpiInstance KDV_SASPrimordialPoolNoRaid::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", joined({hbaElementText(*_hba), ":Primordial Pool(No Raid)"}));
    row.string("InstanceID", instanceId(_hbaNumber));
    row.string("PoolID", joined({_hba->name, ":NORAID"}));
    row.uint64("RemainingManagedSpace", 0);
    row.uint64("TotalManagedSpace", managedSpace(*_hba));
    return row.instance();
}

} // namespace KDV
