#include "instances/KDV_SASDiskDrive.h"

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/DriveUsage.h"
#include "instances/Rows.h"

#include <optional>

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASDiskDrive";

constexpr std::uint8_t solidState = 3;
constexpr std::uint8_t noSmartCarrier = 2;

struct Status {
    std::uint16_t first;
    std::uint16_t second = 0; // none
};

constexpr CodeMap<Status, 10> driveStatus{
    {{2, {OperationalStatus::OK}},
     {3, {OperationalStatus::PredictiveFailure}},
     {4, {OperationalStatus::Error}},
     {5, {OperationalStatus::Error}},
     {6, {OperationalStatus::Error}},
     {7, {OperationalStatus::Error}},
     {8, {OperationalStatus::Error}},
     {9, {OperationalStatus::Error}},
     {10, {OperationalStatus::PredictiveFailure, DriveStatus::SecondPredictiveFailure}},
     {12, {OperationalStatus::Degraded, DriveStatus::SecondDegraded}}},
    {OperationalStatus::Unknown}};

constexpr CodeMap<std::uint16_t, 3> driveConfiguration{
    {{DriveUsage::Member, 2}, {DriveUsage::Spare, 3}, {DriveUsage::NotConfigured, 4}}, 0};
constexpr CodeMap<std::uint16_t, 2> driveInterface{{{1, 2}, {2, 3}}, 0};
constexpr CodeMap<const char*, 2> interfaceText{{{1, "SATA"}, {2, "SAS"}}, "Unknown"};
constexpr CodeMap<std::uint16_t, 2> drivePlacement{{{2, 1}, {3, 2}}, 0}; // Internal, External
constexpr CodeMap<std::optional<std::uint32_t>, 3> rotationalSpeed{{{2, 7200}, {3, 10000}, {4, 15000}}, std::nullopt};

// One element long on purpose, also for the two states that have a second value: setting it beyond the end changes
// nothing, and clients see one value.
CmpiArray statusArray(std::uint8_t code)
{
    const Status status = driveStatus[code];
    CmpiArray array = emptyUint16Array(1);
    array.setElementAt(0, status.first);
    if (status.second != 0) array.setElementAt(1, status.second);
    return array;
}

} // namespace

KDV_SASDiskDrive::KDV_SASDiskDrive(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba,
                                   const SasPhysicalDriveRecord* drive)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba), _drive(drive)
{
    keysReadFrom(&drive->serialNumber, sizeof drive->serialNumber);
    keysReadFrom(&hba->name, sizeof hba->name);
}

KDV_SASDiskDrive::~KDV_SASDiskDrive() = default;

CmpiObjectPath KDV_SASDiskDrive::getPath() const
{
    _log.info("getPath()");
    return devicePath(_nameSpace, className, _drive->serialNumber, _hba->name);
}

CmpiInstance KDV_SASDiskDrive::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", _drive->location);
    row.string("Name", _drive->name);
    if (_drive->mediaType == solidState) {
        row.uint64("SSDTotalPowerOnHours", _drive->ssdPowerOnHours);
        row.uint64("SSDPercentageEnduranceUsed", _drive->ssdEnduranceUsed);
        row.uint64("SSDLifeRemaining", _drive->ssdLifeRemaining);
        row.sint8("SSDWearStatus", _drive->ssdWearStatus);
    }
    if (_drive->carrierAuthStatus != noSmartCarrier)
        row.uint16("SmartDriveCarrierAuthStatus", _drive->carrierAuthStatus);
    row.array("OperationalStatus", statusArray(_drive->status));
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("DeviceID", _drive->serialNumber);
    row.string("SystemCreationClassName", arraySystemClass);
    row.string("SystemName", _hba->name);
    row.uint16("DriveConfiguration", driveConfiguration[_drive->usage]);
    row.boolean("DriveHasMNPData", false);
    row.uint16("DriveInterface", driveInterface[_drive->interface]);
    row.string("Description", interfaceText[_drive->interface]);
    row.uint16("DrivePlacement", drivePlacement[_drive->placement]);
    if (const auto speed = rotationalSpeed[_drive->rotationalSpeed]) row.uint32("DriveRotationalSpeed", *speed);
    row.uint32("NegotiatedDataWidth", 0);
    row.uint64("NegotiatedSpeed", 0);
    return row.instance();
}

} // namespace KDV
