#include "instances/KDV_SASStorageVolume.h"

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Joined.h"
#include "instances/RaidText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageVolume";

constexpr CodeMap<std::uint16_t, 3> volumeStatus{
    {{2, OperationalStatus::OK}, {3, OperationalStatus::Degraded}, {4, OperationalStatus::Error}},
    OperationalStatus::Unknown};

constexpr CodeMap<std::uint16_t, 1> extentStatus{{{4, ExtentStatus::Rebuild}}, ExtentStatus::None};

// Shifted down and up again in 32 bits on purpose: below 512 nothing is left, and from 2,097,152 on the count wraps.
std::uint64_t blockCount(std::uint32_t sizeMiB) { return std::uint32_t(sizeMiB >> 9 << 20); }

} // namespace

KDV_SASStorageVolume::KDV_SASStorageVolume(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                                           const SasLogicalDriveRecord* logicalDrive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _logicalDrive(logicalDrive), _hbaNumber(hba->hbaNumber), _logicalDriveNumber(logicalDrive->logicalDriveNumber)
{
    keysReadFrom(&logicalDrive->logicalDriveNumber, sizeof logicalDrive->logicalDriveNumber);
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASStorageVolume::~KDV_SASStorageVolume() = default;

CmpiObjectPath KDV_SASStorageVolume::getPath() const
{
    _log.info("getPath()");
    return devicePath(_nameSpace, className, volumeDeviceText(_logicalDrive->logicalDriveNumber), _hba->name);
}

CmpiInstance KDV_SASStorageVolume::getInstance()
{
    _log.info("getInstance()");
    const std::string elementText = volumeElementText(_logicalDrive->logicalDriveNumber);
    const RaidRedundancy redundancy = raidRedundancy[_logicalDrive->raidLevel];
    PropertyRows row(*this);
    row.string("ElementName", joined({elementText, " (", raidText(_logicalDrive->raidLevel), ")"}));
    row.string("Name", joined({controllerModelText(_hba->modelCode), " ", _hba->name, " ", elementText}));
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("DeviceID", volumeDeviceText(_logicalDrive->logicalDriveNumber));
    row.string("SystemCreationClassName", arraySystemClass);
    row.string("SystemName", _hba->name);
    if (redundancy.dataRedundancy) row.uint16("DataRedundancy", *redundancy.dataRedundancy);
    row.uint8("DeltaReservation", 0);
    row.uint16Array("ExtentStatus", {extentStatus[_logicalDrive->redundancyState]});
    row.boolean("IsBasedOnUnderlyingRedundancy", false);
    if (redundancy.noSinglePointOfFailure) row.boolean("NoSinglePointOfFailure", *redundancy.noSinglePointOfFailure);
    if (redundancy.packageRedundancy) row.uint16("PackageRedundancy", *redundancy.packageRedundancy);
    row.boolean("Primordial", false);
    row.uint16("NameFormat", 7); // SNVM
    row.boolean("Deleteable", false);
    if (redundancy.faultTolerance) row.uint16("FaultTolerance", *redundancy.faultTolerance);
    row.uint16Array("OperationalStatus", {volumeStatus[_logicalDrive->status]});
    row.string("OSName", _logicalDrive->osName); // "OsName" in the extent: both spellings are published
    row.uint64("BlockSize", 512);
    row.uint64("NumberOfBlocks", blockCount(_logicalDrive->size));
    row.uint64("ConsumableBlocks", blockCount(_logicalDrive->size));
    return row.instance();
}

} // namespace KDV
