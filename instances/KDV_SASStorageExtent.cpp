#include "instances/KDV_SASStorageExtent.h"

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageExtent";

// The second kind of predictive failure (10) and degraded (12) are Unknown here, unlike in the disk drive.
constexpr CodeMap<std::uint16_t, 8> extentDriveStatus{{{2, OperationalStatus::OK},
                                                       {3, OperationalStatus::PredictiveFailure},
                                                       {4, OperationalStatus::Error},
                                                       {5, OperationalStatus::Error},
                                                       {6, OperationalStatus::Error},
                                                       {7, OperationalStatus::Error},
                                                       {8, OperationalStatus::Error},
                                                       {9, OperationalStatus::Error}},
                                                      OperationalStatus::Unknown};

} // namespace

KDV_SASStorageExtent::KDV_SASStorageExtent(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                                           const SasPhysicalDrive* drive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba), _drive(drive)
{
    keysReadFrom(&drive->record->serialNumber, sizeof drive->record->serialNumber);
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASStorageExtent::~KDV_SASStorageExtent() = default;

CmpiObjectPath KDV_SASStorageExtent::getPath() const
{
    _log.info("getPath()");
    return devicePath(_nameSpace, className, _drive->record->serialNumber, _hba->name);
}

CmpiInstance KDV_SASStorageExtent::getInstance()
{
    _log.info("getInstance()");
    const SasPhysicalDriveRecord& record = *_drive->record;
    PropertyRows row(*this);
    row.string("ElementName", record.location);
    row.string("Name", record.serialNumber);
    row.uint16Array("OperationalStatus", {extentDriveStatus[record.status]});
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("DeviceID", record.serialNumber);
    row.string("SystemCreationClassName", arraySystemClass);
    row.string("SystemName", _hba->name);
    if (record.blockSize != 0) row.uint64("BlockSize", record.blockSize);
    if (record.blockCount != 0) {
        row.uint64("ConsumableBlocks", record.blockCount);
        row.uint64("NumberOfBlocks", record.blockCount);
    }
    row.uint16Array("ExtentStatus", {_drive->rebuilding ? ExtentStatus::Rebuild : ExtentStatus::None});
    if (record.osName[0] != '\0')
        row.string("OsName", record.osName); // "OSName" in the volume: both spellings are published
    return row.instance();
}

} // namespace KDV
