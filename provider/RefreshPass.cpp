// One pass of the worker: refresh the records, follow the disks that were inserted or pulled, check the states, purge.
// A disk is known by its drive number within its HBA, by nothing else. Only disks are followed; HBAs, volumes and boxes
// stay as they were when the provider was made.
#include "alerts/StatusCheck.h"
#include "common/AutoMutex.h"
#include "common/CmpiManagedInstance.h"
#include "provider/KDVSASHBAProvider.h"
#include "records/SasDataLibrary.h"

#include <string>
#include <unordered_set>

using namespace CmpiCpp;
namespace KDV {
namespace {

using DriveNumbers = std::unordered_set<std::uint32_t>;

// Nearly every pass finds every disk where it was: then no index is needed.
bool sameDrives(const SasHba& hba)
{
    const SasPhysicalDriveRecord* record = hba.record->physicalDrives.get();
    for (const SasPhysicalDrive* drive : hba.physicalDrives) {
        if (!record || record->driveNumber != drive->driveNumber) return false;
        record = record->next.get();
    }
    return !record;
}

DriveNumbers numbersInRecords(const SasHba& hba)
{
    DriveNumbers numbers;
    for (const auto* record = hba.record->physicalDrives.get(); record; record = record->next.get())
        numbers.insert(std::uint32_t(record->driveNumber));
    return numbers;
}

DriveNumbers numbersKnown(const SasHba& hba)
{
    DriveNumbers numbers;
    for (const SasPhysicalDrive* drive : hba.physicalDrives)
        numbers.insert(drive->driveNumber);
    return numbers;
}

void hide(SasPhysicalDrive& drive)
{
    for (CmpiManagedInstance* instance : drive.trackedInstances)
        instance->setVisible(false);
    // The clean-up of this pass disposes of them; the device object stays and must not point at them.
    std::vector<CmpiManagedInstance*>().swap(drive.trackedInstances);
    drive.diskDrive = nullptr;
}

} // namespace

std::uint32_t KDVSASHBAProvider::_backgroundWorker(const CmpiContext& context)
{
    _logger.info("::_backgroundWorker");
    AutoMutex lock(_mutex);
    if (!_sasData.hbas) // no data when the provider was made, and nobody looks again
        return 0;
    UpdateSasData(&_sasData);
    if (_ending) // the server takes no more calls
        return 0;
    _collection.refreshed();
    // Kept until it is done: when a check fails, the next pass disposes of what this one has hidden.
    _cleanupDue = _followHotPlug() || _cleanupDue;
    if (_indicationsEnabled && !_ending) _checkSasIndications(context);
    if (_cleanupDue) {
        _collection.cleanup();
        _cleanupDue = false;
    }
    return 0;
}

void KDVSASHBAProvider::_checkSasIndications(const CmpiContext& context)
{
    StatusCheck(_logger, sasNameSpace, _hbas)._checkSasIndications(context);
}

// True when a disk was removed. All HBAs are searched for new disks before any is searched for missing ones.
bool KDVSASHBAProvider::_followHotPlug()
{
    std::vector<SasHba*> changed;
    for (SasHba* hba : _hbas)
        if (!sameDrives(*hba)) changed.push_back(hba);

    for (SasHba* hba : changed)
        _addDrives(*hba);
    bool removed = false;
    for (SasHba* hba : changed)
        removed = _removeDrives(*hba) || removed;
    return removed;
}

void KDVSASHBAProvider::_addDrives(SasHba& hba)
{
    DriveNumbers known = numbersKnown(hba);
    const DriveLookup lookup(hba);
    for (auto* record = hba.record->physicalDrives.get(); record; record = record->next.get()) {
        if (!known.insert(std::uint32_t(record->driveNumber)).second) continue;
        _logger.info("Disk hotplug -- add a new disk: host %d disk %d location %s", static_cast<int>(record->hbaNumber),
                     static_cast<int>(record->driveNumber), std::string(textOf(record->hotPlugLocation)).c_str());
        SasPhysicalDrive& drive = _devices->physicalDrives.emplace_back(_logger, record);
        hba.physicalDrives.push_back(&drive);
        _createPhyDrvInstances(hba, drive, lookup);
    }
}

bool KDVSASHBAProvider::_removeDrives(SasHba& hba)
{
    const DriveNumbers present = numbersInRecords(hba);
    std::vector<SasPhysicalDrive*> staying;
    staying.reserve(hba.physicalDrives.size());
    for (SasPhysicalDrive* drive : hba.physicalDrives) {
        if (!drive->hotPlugTracked || present.count(drive->driveNumber) != 0) {
            staying.push_back(drive);
            continue;
        }
        _logger.info("Disk hotplug -- remove a disk: host %d disk %d", static_cast<int>(hba.hbaNumber),
                     static_cast<int>(drive->driveNumber));
        hide(*drive);
    }
    const bool removed = staying.size() != hba.physicalDrives.size();
    hba.physicalDrives.swap(staying);
    return removed;
}

} // namespace KDV
