#include "instances/KDV_SASStorageCapabilities.h"

#include "instances/DevicePath.h"
#include "instances/DriveUsage.h"
#include "instances/HbaText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageCapabilities";

enum PoolKind : std::uint32_t { primordialPool, primordialPoolNoRaid, storagePool };

struct Redundancy {
    std::uint16_t data; // default and maximum alike
    std::uint16_t dataMin;
    bool noSinglePointOfFailure;
    std::uint16_t package;
};

constexpr Redundancy mirroring{2, 1, true, 2};
constexpr Redundancy singleDrive{1, 0, false, 1};
constexpr Redundancy noRaid{0, 0, false, 0};

std::string instanceId(std::uint32_t poolKind, std::uint32_t hbaNumber)
{
    switch (poolKind) {
    case primordialPool:
        return joined({className, "-PrimordialPool-", hbaNumber});
    case primordialPoolNoRaid:
        return joined({className, "-PrimordialPoolNoRaid-", hbaNumber});
    case storagePool:
        return joined({className, "-StoragePool-", hbaNumber});
    default:
        return {};
    }
}

// Exactly one member drive offers no redundancy; any other number, none included, offers mirroring. On purpose: clients
// read the capabilities of an empty pool so.
const Redundancy& redundancyOf(std::uint32_t poolKind, const SasHbaRecord& hba)
{
    if (poolKind == primordialPoolNoRaid) return noRaid;
    std::size_t members = 0;
    for (const SasPhysicalDriveRecord* drive = hba.physicalDrives.get(); drive; drive = drive->next.get())
        if (drive->usage == DriveUsage::Member) ++members;
    return members == 1 ? singleDrive : mirroring;
}

} // namespace

KDV_SASStorageCapabilities::KDV_SASStorageCapabilities(const Logger& logger, const std::string& nameSpace,
                                                       const SasHbaRecord* hba, std::uint32_t poolKind)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber), _poolKind(poolKind)
{
}

KDV_SASStorageCapabilities::~KDV_SASStorageCapabilities() = default;

CmpiObjectPath KDV_SASStorageCapabilities::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", instanceId(_poolKind, _hbaNumber));
    return path;
}

CmpiInstance KDV_SASStorageCapabilities::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(*_hba));
    row.string("InstanceID", instanceId(_poolKind, _hbaNumber));
    row.uint16("DeltaReservationDefault", 0); // 16 bits wide here, 8 in the storage setting
    row.uint16("DeltaReservationMax", 0);
    row.uint16("DeltaReservationMin", 0);
    row.uint16("ElementType", 5); // StoragePool
    row.uint16("PackageRedundancyMin", 0);
    if (_poolKind > storagePool) return row.instance();
    const Redundancy& offered = redundancyOf(_poolKind, *_hba);
    row.uint16("DataRedundancyDefault", offered.data);
    row.uint16("DataRedundancyMax", offered.data);
    row.uint16("DataRedundancyMin", offered.dataMin);
    row.boolean("NoSinglePointOfFailure", offered.noSinglePointOfFailure);
    row.boolean("NoSinglePointOfFailureDefault", offered.noSinglePointOfFailure);
    row.uint16("PackageRedundancyDefault", offered.package);
    row.uint16("PackageRedundancyMax", offered.package);
    return row.instance();
}

} // namespace KDV
