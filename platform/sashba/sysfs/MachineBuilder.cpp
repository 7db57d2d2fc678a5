#include "sashba/sysfs/MachineBuilder.h"

#include "sashba/sysfs/DrivePlan.h"
#include "sashba/sysfs/RecordText.h"
#include "sashba/sysfs/VolumePlan.h"

#include <algorithm>
#include <set>

namespace KDV {
namespace {

std::string hbaAddress(const LiveHba& hba)
{
    if (!hba.pciAddress.empty()) return hba.pciAddress;
    const std::string device = parentOf(hba.path); // "devices/platform/HISI0162:01"
    return lastOf(parentOf(device)) == "platform" ? lastOf(device) : "host" + std::to_string(hba.host);
}

// Its serial number or SAS address tells an adapter from every other one, also after it was moved; where there is
// neither, or two that ought to be different are not, its address in the machine does.
std::string hbaName(const LiveHba& hba, bool withAddress)
{
    constexpr std::size_t mostIdentity = 48;
    std::string identity = hba.serial.substr(0, mostIdentity);
    if (identity.empty() && hba.sasAddress != 0) identity = hex16(hba.sasAddress);
    if (identity.empty() || withAddress)
        identity += (identity.empty() ? "" : " ") + hbaAddress(hba).substr(0, mostIdentity / 2);
    std::string name = hba.model.empty() ? hba.driver : hba.model;
    if (name.empty()) name = "SAS HBA";
    name.resize(std::min(name.size(), sizeof(SasHbaRecord::name) - 2 - identity.size())); // it must not push that out
    return name + " " + identity;
}

// The host's state is all that the kernel tells of an adapter's health. Recovery passes; a host that goes has failed.
void putHbaStatus(const LiveHba& hba, SasHbaRecord& image)
{
    if (hba.state == "running") {
        image.controllerStatus = 2;
        image.arraySystemStatus = 2;
    } else if (hba.state == "recovery") {
        image.arraySystemStatus = 3;
    } else if (hba.state == "cancel" || hba.state == "del" || hba.state == "cancel/recovery" ||
               hba.state == "del/recovery" || hba.state == "deleted/recovery" || hba.state == "offline") {
        image.controllerStatus = 3;
        image.arraySystemStatus = 4;
    }
}

SasHbaRecord hbaImage(const LiveHba& hba, const std::string& name)
{
    constexpr std::uint8_t genericModel = 2;
    constexpr std::uint8_t unknownSlot = 255;
    SasHbaRecord image{};
    image.hbaNumber = hba.host;
    image.slotNumber = hba.slot.value_or(unknownSlot);
    image.modelCode = genericModel;
    if (hba.slot)
        putText(image.logicalLocation, "Slot " + std::to_string(*hba.slot));
    else if (!hba.pciAddress.empty())
        putText(image.logicalLocation, "PCI " + hba.pciAddress);
    putText(image.firmwareVersion, hba.firmware);
    putText(image.name, name);
    putHbaStatus(hba, image);
    return image;
}

SasStorageBoxRecord boxImage(const BoxPlan& box, const LiveHba& hba)
{
    SasStorageBoxRecord image{};
    image.hbaNumber = hba.host;
    image.boxNumber = box.number;
    putText(image.model, box.model);
    putText(image.firmwareVersion, box.revision);
    putText(image.manufacturer, box.vendor);
    putText(image.serialNumber, box.serial);
    putText(image.name, "Port " + box.port + " Box " + std::to_string(box.number));
    image.driveBays = static_cast<std::uint8_t>(std::min<std::uint64_t>(box.bays.value_or(0), 255));
    if (!box.port.empty()) image.locationCode = box.port.back() == 'I' ? 2 : box.port.back() == 'E' ? 3 : 0;
    if (!box.states.empty()) { // every processor of a box sees all its parts
        const EnclosureState& state = *box.states.front();
        image.status = state.status;
        image.fanStatus = state.fans;
        image.powerStatus = state.power;
        image.temperatureStatus = state.temperature;
    }
    return image;
}

Element<SasPhysicalDriveRecord>* findDrive(MachineHba& hba, std::uint32_t number)
{
    const auto found = std::find_if(hba.physicalDrives.begin(), hba.physicalDrives.end(),
                                    [number](const auto& drive) { return drive.key.number == number; });
    return found == hba.physicalDrives.end() ? nullptr : &*found;
}

void addVolumes(const LiveMachine& live, const LiveHba& hba, const DrivesByPath& drives, const DeviceAnswers& answers,
                MachineHba& made)
{
    const VolumesOfHba volumes = volumesOf(live, hba, drives, answers);
    for (const SasLogicalDriveRecord& image : volumes.volumes) {
        made.logicalDrives.emplace_back();
        made.logicalDrives.back().key.number = image.logicalDriveNumber;
        made.logicalDrives.back().image = image;
    }
    for (const auto& [number, usage] : volumes.usages) {
        if (auto* drive = findDrive(made, number)) drive->image.usage = usage;
    }
}

} // namespace

bool isFirmwareVolume(const ScsiDevice& device, const LiveHba& hba)
{
    if (device.raidClass) return true;
    // Volumes have a channel of their own there and no port. Their class comes after the device and goes before it.
    if ((hba.driver == "mpt3sas" || hba.driver == "mpt2sas") && device.address.channel == 1 && device.hbaPort.empty())
        return true;
    if (hba.driver == "megaraid_sas") return device.address.channel >= 2; // the lower channels are disks passed through
    return !device.raidLevel.empty() && device.raidLevel != "N/A";
}

// Clients keep it as a key, so it stays when another adapter of the same name comes.
const std::string& MachineBuilder::nameOf(const LiveHba& hba, const std::vector<LiveHba>& all)
{
    Numbers& numbers = _numbers[hba.host];
    const std::string plain = hbaName(hba, false);
    if (numbers.plainName == plain) return numbers.name;
    const auto same = std::count_if(all.begin(), all.end(),
                                    [&plain](const LiveHba& other) { return hbaName(other, false) == plain; });
    numbers.plainName = plain;
    return numbers.name = hbaName(hba, same > 1);
}

Machine MachineBuilder::build(const LiveMachine& live, const DeviceAnswers& answers)
{
    Machine machine;
    _wantsAnotherPass = false;
    std::vector<DrivePlan> drives = groupDrives(live);
    DrivesByPath byPath;
    PortNames ports(_tree);
    for (const LiveHba& hba : live.hbas) {
        machine.emplace_back();
        MachineHba& made = machine.back();
        made.hba.key.number = hba.host;
        made.hba.image = hbaImage(hba, nameOf(hba, live.hbas));
        const std::vector<BoxPlan> boxes = planBoxes(live, hba, answers, ports, _numbers[hba.host].boxes);
        for (const BoxPlan& box : boxes) {
            made.storageBoxes.emplace_back();
            made.storageBoxes.back().key.number = box.number;
            made.storageBoxes.back().image = boxImage(box, hba);
        }
        for (const DrivePlan* drive : numberDrives(hba, boxes, drives, ports)) {
            made.physicalDrives.emplace_back();
            made.physicalDrives.back().key.number = *drive->number;
            made.physicalDrives.back().image = driveImage(*drive, boxes, answers);
            for (const ScsiDevice* path : drive->paths)
                byPath[path->path] = {hba.host, *drive->number};
        }
        std::sort(made.physicalDrives.begin(), made.physicalDrives.end(),
                  [](const auto& left, const auto& right) { return left.key.number < right.key.number; });
    }
    for (std::size_t i = 0; i < machine.size(); ++i)
        addVolumes(live, live.hbas[i], byPath, answers, machine[i]);
    return machine;
}

// The drives of the HBA that have a number now.
std::vector<const DrivePlan*> MachineBuilder::numberDrives(const LiveHba& hba, const std::vector<BoxPlan>& boxes,
                                                           std::vector<DrivePlan>& drives, PortNames& ports)
{
    std::vector<DrivePlan*> own;
    std::vector<NumberWish> wishes;
    for (DrivePlan& drive : drives) {
        if (drive.host != hba.host) continue;
        placeDrive(drive, boxes, ports);
        own.push_back(&drive);
        wishes.push_back({drive.identity, wishedNumber(drive, boxes), drive.place && drive.place->told});
    }
    DriveNumbering& numbering = _numbers[hba.host].drives;
    const auto given = numbering.assign(wishes);
    _wantsAnotherPass = _wantsAnotherPass || numbering.waiting();
    std::vector<const DrivePlan*> numbered;
    for (std::size_t i = 0; i < own.size(); ++i) {
        own[i]->number = given[i];
        if (given[i]) numbered.push_back(own[i]);
    }
    return numbered;
}

} // namespace KDV
