#include "sashba/sysfs/DrivePlan.h"

#include "sashba/sysfs/DeviceReader.h"
#include "sashba/sysfs/MachineBuilder.h"
#include "sashba/sysfs/RecordText.h"

#include <algorithm>
#include <limits>

namespace KDV {
namespace {

constexpr std::uint64_t bytesOfSector = 512;
constexpr std::uint64_t most32 = std::numeric_limits<std::uint32_t>::max();

const LiveHba* hbaOf(const LiveMachine& machine, const ScsiDevice& device)
{
    const auto found = std::find_if(machine.hbas.begin(), machine.hbas.end(),
                                    [&device](const LiveHba& hba) { return hba.host == device.address.host; });
    return found == machine.hbas.end() ? nullptr : &*found;
}

std::uint8_t speedCode(std::uint16_t rotation)
{
    if (rotation >= 7100 && rotation <= 7300) return 2;
    if (rotation >= 9900 && rotation <= 10800) // 10,500 and 10,520 are sold as 10,000
        return 3;
    return rotation >= 14900 && rotation <= 15100 ? 4 : 0;
}

// Blocks as the system addresses them, where their number fits the field; else as the medium has them, which leaves
// their product the same.
void putBlocks(const ScsiDevice& device, SasPhysicalDriveRecord& image)
{
    if (device.sectors > std::numeric_limits<std::uint64_t>::max() / bytesOfSector) return;
    const std::uint64_t bytes = device.sectors * bytesOfSector;
    image.size = static_cast<std::uint32_t>(std::min(bytes >> 20, most32));
    for (const std::uint64_t block : {device.logicalBlock, device.physicalBlock}) {
        if (block == 0 || block > most32 || bytes % block != 0 || bytes / block > most32) continue;
        image.blockSize = static_cast<std::uint32_t>(block);
        image.blockCount = static_cast<std::uint32_t>(bytes / block);
        return;
    }
    if (device.logicalBlock <= most32) image.blockSize = static_cast<std::uint32_t>(device.logicalBlock);
}

void putSolidState(const DriveFacts& facts, SasPhysicalDriveRecord& image)
{
    constexpr std::uint8_t solidState = 3;
    image.mediaType = solidState;
    image.ssdWearStatus = -1; // not known, or worn out
    for (const DrivePathFacts& path : facts.paths) {
        if (!path.answer) continue;
        if (path.answer->powerOnHours) image.ssdPowerOnHours = *path.answer->powerOnHours;
        if (const std::optional<std::uint32_t> used = path.answer->enduranceUsed) {
            image.ssdEnduranceUsed = *used;
            image.ssdLifeRemaining = *used < 100 ? 100 - *used : 0;
            image.ssdWearStatus = static_cast<std::int8_t>(*used < 100 ? 0 : -1);
        }
    }
}

const SlotState* slotStateOf(const ScsiDevice& device, const DeviceAnswers& answers)
{
    if (device.slotDirectory.empty()) return nullptr;
    const std::string enclosureDevice = parentOf(parentOf(parentOf(device.slotDirectory)));
    for (auto found = answers.lower_bound(enclosureDevice + '#'); found != answers.end(); ++found) {
        if (found->first.compare(0, enclosureDevice.size() + 1, enclosureDevice + '#') != 0) break;
        const auto slot = found->second->slots.find(device.slotDirectory);
        if (slot != found->second->slots.end()) return &slot->second;
    }
    return nullptr;
}

DriveFacts factsOf(const DrivePlan& drive, const std::vector<BoxPlan>& boxes, const DeviceAnswers& answers)
{
    DriveFacts facts;
    for (const ScsiDevice* path : drive.paths) {
        const auto found = answers.find(askingKey(*path));
        facts.paths.push_back({path, found == answers.end() ? nullptr : found->second.get()});
        if (drive.place && !facts.slot) facts.slot = slotHealthOf(*path, boxes[drive.place->box]);
        if (!facts.slotState) facts.slotState = slotStateOf(*path, answers);
    }
    return facts;
}

// Connectors are named by a number and I or E for internal or external.
std::uint8_t placementOf(const std::string& port)
{
    if (port.size() < 2) return 0;
    return port.back() == 'I' ? 2 : port.back() == 'E' ? 3 : 0;
}

void putIdentity(const DrivePlan& drive, const DriveFacts& facts, SasPhysicalDriveRecord& image)
{
    const ScsiDevice& device = *drive.paths.front();
    std::string serial = device.serial;
    std::string firmware = device.revision;
    for (const DrivePathFacts& path : facts.paths) {
        if (path.answer && serial.empty()) serial = path.answer->serial;
        if (path.answer && path.answer->firmware.size() > firmware.size()) firmware = path.answer->firmware;
    }
    std::string inquiry = device.vendor;
    inquiry.resize(std::max<std::size_t>(inquiry.size(), 8), ' ');
    if (inquiry.back() != ' ') inquiry += ' '; // readers split at the blank, also where the vendor fills its field
    putText(image.inquiry, inquiry + device.model);
    putText(image.firmwareRevision, firmware);
    putText(image.serialNumber, serial);
    const std::uint64_t name = naaOf(device.wwid) != 0 ? naaOf(device.wwid) : device.sasAddress;
    if (name != 0) putText(image.name, hex16(name));
    if (!device.blockName.empty()) putWhole(image.osName, "/dev/" + device.blockName);
}

// What tells the drives at the ports of an adapter apart: the bay that the driver names, else the port itself, or the
// phy of an expander.
std::uint64_t deviceAtPort(const ScsiDevice& device, const std::string& port)
{
    if (device.pathInfo && device.pathInfo->bay) return *device.pathInfo->bay;
    if (device.hbaPort.empty()) return device.address.target;
    if (device.enclosureIdentifier != 0 && device.bay) return *device.bay; // a bay of no enclosure is always 0
    const std::uint64_t phy = device.phy.value_or(0);
    return device.expander.empty() ? wholeNumber(port).value_or(phy) : phy;
}

} // namespace

std::vector<DrivePlan> groupDrives(const LiveMachine& machine)
{
    std::vector<DrivePlan> drives;
    std::map<std::string, std::size_t> known;
    for (const LiveHba& hba : machine.hbas) {
        for (const ScsiDevice& device : machine.devices) {
            if (!device.isDisk() || hbaOf(machine, device) != &hba || isFirmwareVolume(device, hba)) continue;
            std::string identity = diskIdentity(device);
            if (identity.empty()) identity = "at " + lastOf(device.path);
            const auto [entry, isNew] = known.emplace(identity, drives.size());
            if (isNew) {
                drives.emplace_back();
                drives.back().identity = identity;
                drives.back().host = hba.host;
            }
            drives[entry->second].paths.push_back(&device);
        }
    }
    return drives;
}

void placeDrive(DrivePlan& drive, const std::vector<BoxPlan>& boxes, PortNames& ports)
{
    const ScsiDevice* placed = drive.paths.front();
    for (const ScsiDevice* path : drive.paths) {
        if (path->address.host != drive.host || drive.inBay()) continue;
        const std::optional<BoxPlace> place = placeOf(*path, boxes);
        if (!place || (drive.place && !place->bay)) continue;
        drive.place = place;
        placed = path;
    }
    drive.port = ports.of(*placed);
    if (!drive.inBay()) drive.device = deviceAtPort(*placed, drive.port);
}

std::optional<std::uint32_t> wishedNumber(const DrivePlan& drive, const std::vector<BoxPlan>& boxes)
{
    if (drive.inBay()) return numberByPlace(boxes[drive.place->box].number, *drive.place->bay);
    const ScsiDevice& device = *drive.paths.front();
    if (device.hbaPort.empty() && !device.pathInfo)
        return device.address.channel < 3 && device.address.target < 256
                   ? numberByPlace(0, device.address.channel * 256U + device.address.target)
                   : std::nullopt;
    return numberByPlace(0, drive.device);
}

std::string locationText(const DrivePlan& drive, const std::vector<BoxPlan>& boxes)
{
    if (!drive.inBay()) return "Port " + drive.port + " Device " + std::to_string(drive.device);
    return "Port " + drive.port + " Box " + std::to_string(boxes[drive.place->box].number) + " Bay " +
           std::to_string(*drive.place->bay);
}

SasPhysicalDriveRecord driveImage(const DrivePlan& drive, const std::vector<BoxPlan>& boxes,
                                  const DeviceAnswers& answers)
{
    constexpr std::uint8_t notConfigured = 4;
    constexpr std::uint8_t hotSwappable = 2;
    constexpr std::uint8_t noCarrier = 2;
    const ScsiDevice& device = *drive.paths.front();
    const DriveFacts facts = factsOf(drive, boxes, answers);
    SasPhysicalDriveRecord image{};
    image.hbaNumber = drive.host;
    image.driveNumber = drive.number.value_or(0);
    image.status = driveStatus(facts);
    // Until an array claims it. A disk that the adapter shows without a block device may be in a volume of its own.
    image.usage = device.blockName.empty() ? std::uint8_t{0} : notConfigured;
    image.interface = static_cast<std::uint8_t>(device.transport);
    image.placement = placementOf(drive.port);
    image.carrierAuthStatus = noCarrier;
    if (drive.place) {
        image.hotPlug = hotSwappable;
        image.boxIdentifier = boxIdentifierBase + boxes[drive.place->box].number;
    }
    const std::string location = locationText(drive, boxes);
    putText(image.location, location);
    putText(image.hotPlugLocation, location);
    putIdentity(drive, facts, image);
    putBlocks(device, image);
    std::optional<std::uint16_t> rotation = device.rotation;
    for (const DrivePathFacts& path : facts.paths) {
        if (path.answer && rotation.value_or(0) == 0) rotation = path.answer->rotation;
    }
    image.rotationalSpeed = speedCode(rotation.value_or(0));
    if (rotation == 1) putSolidState(facts, image);
    return image;
}

} // namespace KDV
