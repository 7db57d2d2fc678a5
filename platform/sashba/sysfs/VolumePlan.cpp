#include "sashba/sysfs/VolumePlan.h"

#include "sashba/sysfs/BoxPlan.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/MachineBuilder.h"
#include "sashba/sysfs/RecordText.h"
#include "sashba/sysfs/SysfsTree.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <set>
#include <string_view>

namespace KDV {
namespace {

constexpr std::uint32_t noDrive = 0xFFFFFFFF;
constexpr std::uint32_t firstArrayNumber = 1000; // numbers of firmware volumes are lower

namespace State {
constexpr std::uint8_t ok = 2;
constexpr std::uint8_t degraded = 3; // of the volume; redundancy lost
constexpr std::uint8_t failed = 4;
} // namespace State

namespace Redundancy {
constexpr std::uint8_t lost = 3;
constexpr std::uint8_t rebuilding = 4;
constexpr std::uint8_t failed = 5;
} // namespace Redundancy

std::uint32_t mebibytes(std::uint64_t sectors)
{
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(sectors >> 11, std::numeric_limits<std::uint32_t>::max()));
}

void setStates(SasLogicalDriveRecord& image, std::uint8_t status, std::uint8_t redundancy)
{
    image.status = status;
    image.redundancyState = redundancy;
}

// The progress is in percent or in ten thousandths, as the driver likes; at its end the state says what came of it.
bool isUnderWay(std::optional<std::uint64_t> progress)
{
    return progress && *progress > 0 && *progress < 10000 && *progress != 100;
}

void setFirmwareState(SasLogicalDriveRecord& image, const std::string& state, std::optional<std::uint64_t> progress)
{
    if (state == "active")
        setStates(image, State::ok, State::ok);
    else if (state == "degraded")
        setStates(image, State::degraded, isUnderWay(progress) ? Redundancy::rebuilding : Redundancy::lost);
    else if (state == "resyncing")
        setStates(image, State::degraded, Redundancy::rebuilding);
    else if (state == "offline")
        setStates(image, State::failed, Redundancy::failed);
}

SasLogicalDriveRecord firmwareVolume(const ScsiDevice& device, const LiveHba& hba, const DeviceAnswers& answers)
{
    SasLogicalDriveRecord image{};
    image.hbaNumber = hba.host;
    image.rebuildingDrive = noDrive;
    image.size = mebibytes(device.sectors);
    image.raidLevel = raidLevelCode(device.raidLevel);
    if (!device.blockName.empty()) putWhole(image.osName, "/dev/" + device.blockName);
    if (const auto found = answers.find(askingKey(device)); found != answers.end() && !found->second->hung) {
        if (!found->second->raidLevel.empty()) image.raidLevel = raidLevelCode(found->second->raidLevel);
        setFirmwareState(image, found->second->raidState, found->second->raidProgress);
    }
    if (device.state == "offline") setStates(image, State::failed, Redundancy::failed);
    return image;
}

// The volume's own number where its address has one: the target, or the unit where all volumes are units of a target.
std::uint32_t firmwareNumber(const ScsiDevice& device, const LiveHba& hba, std::set<std::uint32_t>& taken)
{
    std::uint64_t number = device.address.lun != 0 ? device.address.lun : device.address.target;
    if (hba.driver == "megaraid_sas" && device.address.channel > 2)
        number += (device.address.channel - 2) * std::uint64_t{128}; // the driver spreads them over channels
    if (number >= firstArrayNumber) number = 0;
    while (!taken.insert(static_cast<std::uint32_t>(number)).second)
        ++number;
    return static_cast<std::uint32_t>(number);
}

bool hasWord(const std::string& list, std::string_view word) // "in_sync,write_mostly"
{
    std::string_view rest = list;
    while (!rest.empty()) {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        if (trimmed(rest.substr(0, comma)) == word) return true;
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return false;
}

struct ArrayDrives {
    std::vector<std::uint32_t> members, spares;
    std::uint32_t rebuilding = noDrive;
};

template <std::size_t capacity>
std::uint32_t putNumbers(std::uint32_t (&field)[capacity], const std::vector<std::uint32_t>& numbers)
{
    const std::size_t count = std::min(capacity, numbers.size());
    std::copy_n(numbers.begin(), count, field);
    return static_cast<std::uint32_t>(count);
}

void putNumbersUnaligned(SasLogicalDriveRecord& image, const ArrayDrives& drives)
{
    std::uint32_t members[16] = {};
    std::uint32_t spares[16] = {};
    image.memberCount = putNumbers(members, drives.members);
    image.spareCount = putNumbers(spares, drives.spares);
    std::memcpy(reinterpret_cast<unsigned char*>(&image) + offsetof(SasLogicalDriveRecord, members), members,
                sizeof members);
    std::memcpy(reinterpret_cast<unsigned char*>(&image) + offsetof(SasLogicalDriveRecord, spares), spares,
                sizeof spares);
}

void addOnce(std::vector<std::uint32_t>& numbers, std::uint32_t number) // two partitions may be on one drive
{
    if (std::find(numbers.begin(), numbers.end(), number) == numbers.end()) numbers.push_back(number);
}

bool isRebuilding(const MdArray& array) { return array.syncAction == "recover" || array.syncAction == "resync"; }

ArrayDrives drivesOf(const MdArray& array, std::uint32_t host, const DrivesByPath& drives)
{
    ArrayDrives found;
    for (const MdMember& member : array.members) {
        const auto drive = drives.find(member.device);
        if (drive == drives.end() || drive->second.host != host) continue;
        const std::uint32_t number = drive->second.number;
        if (hasWord(member.state, "faulty")) continue; // the array does not use it any more
        const bool spare = hasWord(member.state, "spare");
        if (member.slot)
            addOnce(found.members, number);
        else if (spare) // what has neither a place nor this word is a journal or not yet in the array
            addOnce(found.spares, number);
        if (isRebuilding(array) && member.slot && spare && found.rebuilding == noDrive)
            found.rebuilding = number; // it has its place, but not yet its data
    }
    return found;
}

// How many drives may be missing; nothing where that depends on which ones they are.
std::optional<std::uint64_t> spareableDrives(const MdArray& array)
{
    if (array.level == "raid1") return array.disks && *array.disks > 0 ? *array.disks - 1 : 0;
    if (array.level == "raid4" || array.level == "raid5") return 1;
    if (array.level == "raid6") return 2;
    return std::nullopt;
}

bool countsMissingDrives(const MdArray& array) { return array.level != "raid0" && array.level != "linear"; }

bool lostWhatItNeeds(const MdArray& array)
{
    if (array.arrayState == "inactive" || array.arrayState == "clear" || array.arrayState == "broken") return true;
    if (!countsMissingDrives(array)) // every one is needed
        return std::any_of(array.members.begin(), array.members.end(),
                           [](const MdMember& member) { return hasWord(member.state, "faulty"); });
    const std::uint64_t missing = array.degraded.value_or(0);
    return missing > spareableDrives(array).value_or(missing);
}

bool isRunning(const std::string& state)
{
    constexpr std::string_view states[] = {"clean",    "active",    "active-idle", "write-pending",
                                           "readonly", "read-auto", "suspended"};
    return std::find(std::begin(states), std::end(states), state) != std::end(states);
}

// An array that brings its copies in line with each other has all its drives, but cannot yet do without one.
void setArrayState(SasLogicalDriveRecord& image, const MdArray& array)
{
    if (lostWhatItNeeds(array)) return setStates(image, State::failed, Redundancy::failed);
    if (!isRunning(array.arrayState) || (countsMissingDrives(array) && !array.degraded)) return; // unknown
    const bool missing = array.degraded.value_or(0) > 0;
    const std::uint8_t redundancy = isRebuilding(array) ? Redundancy::rebuilding
                                    : missing           ? Redundancy::lost
                                                        : State::ok;
    setStates(image, missing ? State::degraded : State::ok, redundancy);
}

// "md7" is 7; an array with a name has none.
std::optional<std::uint64_t> numberOfArray(const std::string& name) { return wholeNumber(name.substr(2)); }

void addArray(const MdArray& array, const LiveHba& hba, const DrivesByPath& drives, std::set<std::uint32_t>& taken,
              VolumesOfHba& result)
{
    SasLogicalDriveRecord image{};
    image.hbaNumber = hba.host;
    const ArrayDrives own = drivesOf(array, hba.host, drives);
    image.rebuildingDrive = own.rebuilding;
    image.size = mebibytes(array.sectors);
    image.raidLevel = raidLevelCode(array.level);
    putWhole(image.osName, "/dev/" + array.name);
    setArrayState(image, array);
    putNumbersUnaligned(image, own);
    const std::uint64_t named = numberOfArray(array.name).value_or(100000);
    auto number = firstArrayNumber + static_cast<std::uint32_t>(std::min<std::uint64_t>(named, 2000000000));
    while (!taken.insert(number).second)
        ++number;
    image.logicalDriveNumber = number;
    for (const std::uint32_t drive : own.spares)
        result.usages.emplace(drive, DriveUsage::spare);
    for (const std::uint32_t drive : own.members)
        result.usages[drive] = DriveUsage::member;
    result.volumes.push_back(image);
}

std::optional<std::uint32_t> hostOf(const MdArray& array, const DrivesByPath& drives)
{
    for (const MdMember& member : array.members) {
        if (const auto drive = drives.find(member.device); drive != drives.end()) return drive->second.host;
    }
    return std::nullopt;
}

} // namespace

std::uint8_t raidLevelCode(const std::string& text)
{
    std::string level;
    for (const char letter : text) {
        if (letter != '-' && letter != ' ')
            level += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    constexpr struct {
        std::string_view name;
        std::uint8_t code;
    } codes[] = {{"raid0", 2},   {"raid1", 3},   {"raid1(1+0)", 3}, {"raid1(triple)", 3},
                 {"raid0+1", 4}, {"raid10", 4},  {"raid1e", 4},     {"raid1+0", 4},
                 {"raid5", 5},   {"raid5+1", 6}, {"raid51", 6},     {"raid1+5", 6}};
    for (const auto& entry : codes) {
        if (entry.name == level) return entry.code;
    }
    return 0;
}

VolumesOfHba volumesOf(const LiveMachine& machine, const LiveHba& hba, const DrivesByPath& drives,
                       const DeviceAnswers& answers)
{
    VolumesOfHba result;
    std::set<std::uint32_t> taken;
    for (const ScsiDevice& device : machine.devices) {
        if (device.address.host != hba.host || !device.isDisk() || !isFirmwareVolume(device, hba)) continue;
        result.volumes.push_back(firmwareVolume(device, hba, answers));
        result.volumes.back().logicalDriveNumber = firmwareNumber(device, hba, taken);
    }
    for (const MdArray& array : machine.arrays) {
        if (hostOf(array, drives) == hba.host) addArray(array, hba, drives, taken, result);
    }
    return result;
}

} // namespace KDV
