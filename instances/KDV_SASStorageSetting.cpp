#include "instances/KDV_SASStorageSetting.h"

#include "instances/DevicePath.h"
#include "instances/Joined.h"
#include "instances/RaidText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageSetting";

std::string instanceId(const SasHbaRecord& hba, const SasLogicalDriveRecord& logicalDrive)
{
    return joined({"HBA:", hba.name, "-", volumeDeviceText(logicalDrive.logicalDriveNumber)});
}

} // namespace

KDV_SASStorageSetting::KDV_SASStorageSetting(const Logger& logger, const std::string& nameSpace,
                                             const SasHbaRecord* hba, const SasLogicalDriveRecord* logicalDrive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _logicalDrive(logicalDrive)
{
    keysReadFrom(&hba->name, sizeof hba->name);
    keysReadFrom(&logicalDrive->logicalDriveNumber, sizeof logicalDrive->logicalDriveNumber);
}

KDV_SASStorageSetting::~KDV_SASStorageSetting() = default;

CmpiObjectPath KDV_SASStorageSetting::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", instanceId(*_hba, *_logicalDrive));
    return path;
}

CmpiInstance KDV_SASStorageSetting::getInstance()
{
    _log.info("getInstance()");
    const RaidRedundancy redundancy = raidRedundancy[_logicalDrive->raidLevel];
    PropertyRows row(*this);
    row.string("ElementName", raidText(_logicalDrive->raidLevel));
    row.string("InstanceID", instanceId(*_hba, *_logicalDrive));
    row.uint16("ChangeableType", 0); // Fixed, Not Changeable
    if (redundancy.dataRedundancy) {
        row.uint16("DataRedundancyGoal", *redundancy.dataRedundancy);
        row.uint16("DataRedundancyMax", *redundancy.dataRedundancy);
        row.uint16("DataRedundancyMin", *redundancy.dataRedundancy);
    }
    row.uint8("DeltaReservationGoal", 0); // 8 bits wide here, 16 in the capabilities
    row.uint8("DeltaReservationMax", 0);
    row.uint8("DeltaReservationMin", 0);
    if (redundancy.noSinglePointOfFailure) row.boolean("NoSinglePointOfFailure", *redundancy.noSinglePointOfFailure);
    if (redundancy.packageRedundancy) {
        row.uint16("PackageRedundancyGoal", *redundancy.packageRedundancy);
        row.uint16("PackageRedundancyMax", *redundancy.packageRedundancy);
        row.uint16("PackageRedundancyMin", *redundancy.packageRedundancy);
    }
    return row.instance();
}

} // namespace KDV
