#include "sashba/sysfs/BoxPlan.h"

#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/DeviceReader.h"
#include "sashba/sysfs/DeviceText.h"

#include <algorithm>
#include <limits>

namespace KDV {
namespace {

BoxPlan& boxNamed(std::vector<BoxPlan>& boxes, const std::string& key)
{
    for (BoxPlan& box : boxes) {
        if (box.key == key) return box;
    }
    boxes.emplace_back();
    boxes.back().key = key;
    return boxes.back();
}

void fillIfEmpty(std::string& text, const std::string& value)
{
    if (text.empty()) text = value;
}

const DeviceAnswer* answerOf(const ScsiDevice& device, const DeviceAnswers& answers)
{
    const auto found = answers.find(askingKey(device));
    return found == answers.end() ? nullptr : found->second.get();
}

// A processor that sits behind an expander speaks for the enclosure of that expander.
void addProcessor(const LiveMachine& machine, const ScsiDevice& device, const DeviceAnswers& answers,
                  const SysfsTree& tree, std::vector<BoxPlan>& boxes)
{
    const auto entry = std::find_if(machine.enclosures.begin(), machine.enclosures.end(),
                                    [&device](const LiveEnclosure& e) { return e.device == device.path; });
    const DeviceAnswer* answer = answerOf(device, answers);
    const EnclosureState* state = answer && answer->enclosure ? &*answer->enclosure : nullptr;
    std::uint64_t id = entry != machine.enclosures.end() ? entry->id : 0;
    if (id == 0) id = device.enclosureIdentifier != 0 ? device.enclosureIdentifier : naaOf(device.wwid);
    const std::string identity = diskIdentity(device);
    BoxPlan& box = boxNamed(boxes, id != 0 ? "enclosure " + hex16(id)
                                           : "processor " + (identity.empty() ? device.path : identity));
    box.id = id;
    fillIfEmpty(box.vendor, device.vendor);
    fillIfEmpty(box.model, device.model);
    fillIfEmpty(box.revision, device.revision);
    fillIfEmpty(box.serial, device.serial);
    fillIfEmpty(box.port, device.pathInfo && !device.pathInfo->port.empty() ? device.pathInfo->port
                                                                            : portName(device.hbaPort, tree));
    if (!box.wish && device.pathInfo && device.pathInfo->box && *device.pathInfo->box <= 254)
        box.wish = static_cast<std::uint8_t>(*device.pathInfo->box);
    if (!device.expander.empty()) box.expanders.push_back(device.expander);
    if (entry != machine.enclosures.end()) {
        box.enclosures.push_back(entry->path);
        if (!box.bays) box.bays = entry->components;
    }
    if (!answer) return;
    box.hung = box.hung || answer->hung;
    for (const auto& [directory, slot] : answer->slots)
        box.slotStates.push_back(&slot);
    if (state && !box.state) {
        box.state = state;
        if (!box.bays) box.bays = state->bays;
    }
}

bool hasExpander(const std::vector<BoxPlan>& boxes, const std::string& expander)
{
    return std::any_of(boxes.begin(), boxes.end(), [&expander](const BoxPlan& box) {
        return std::find(box.expanders.begin(), box.expanders.end(), expander) != box.expanders.end();
    });
}

void addExpanders(const LiveMachine& machine, const LiveHba& hba, const SysfsTree& tree, std::vector<BoxPlan>& boxes)
{
    for (const LiveExpander& expander : machine.expanders) {
        if (expander.host != hba.host || hasExpander(boxes, expander.path)) continue;
        const std::string key = expander.sasAddress != 0 ? hex16(expander.sasAddress) : expander.path;
        BoxPlan& box = boxNamed(boxes, "expander " + key);
        box.id = expander.sasAddress;
        fillIfEmpty(box.vendor, expander.vendor);
        fillIfEmpty(box.model, expander.model);
        fillIfEmpty(box.revision, expander.revision);
        fillIfEmpty(box.port, portName(expander.hbaPort, tree));
        box.expanders.push_back(expander.path);
    }
}

// Boxes that only the path information of their disks names.
void addNamedBoxes(const LiveMachine& machine, const LiveHba& hba, std::vector<BoxPlan>& boxes)
{
    for (const ScsiDevice& device : machine.devices) {
        if (device.address.host != hba.host || !device.isDisk() || !device.pathInfo || !device.pathInfo->box) continue;
        const std::uint64_t number = *device.pathInfo->box;
        if (number == 0 || number > 254 || placeOf(device, boxes)) continue;
        BoxPlan& box = boxNamed(boxes, "box " + std::to_string(number));
        box.wish = static_cast<std::uint8_t>(number);
        fillIfEmpty(box.port, device.pathInfo->port);
    }
}

// The number by which the adapter's driver calls the box of a disk that the enclosure class puts into it.
void takeWishes(const LiveMachine& machine, const LiveHba& hba, std::vector<BoxPlan>& boxes)
{
    for (const ScsiDevice& device : machine.devices) {
        if (device.address.host != hba.host || !device.isDisk() || !device.pathInfo || !device.pathInfo->box) continue;
        const std::uint64_t number = *device.pathInfo->box;
        const std::optional<BoxPlace> place = placeOf(device, boxes);
        if (!place || boxes[place->box].wish || number == 0 || number > 254) continue;
        BoxPlan& box = boxes[place->box];
        box.wish = static_cast<std::uint8_t>(number);
        if (!device.pathInfo->port.empty()) box.port = device.pathInfo->port;
    }
}

std::uint64_t levelOf(const BoxPlan& box, const LiveMachine& machine)
{
    std::uint64_t level = std::numeric_limits<std::uint64_t>::max();
    for (const LiveExpander& expander : machine.expanders) {
        if (std::find(box.expanders.begin(), box.expanders.end(), expander.path) != box.expanders.end())
            level = std::min(level, expander.level);
    }
    return level == std::numeric_limits<std::uint64_t>::max() ? 0 : level;
}

} // namespace

std::string askingKey(const ScsiDevice& device) { return device.path + '#' + std::to_string(device.identity); }

std::string portName(const std::string& hbaPort, const SysfsTree& tree)
{
    if (hbaPort.empty()) return {};
    for (const std::string& name : tree.names(hbaPort)) {
        const std::size_t colon = name.rfind(':');
        if (name.compare(0, 4, "phy-") == 0 && colon != std::string::npos)
            return std::to_string(wholeNumber(name.substr(colon + 1)).value_or(0));
    }
    const std::string port = lastOf(hbaPort);
    return std::to_string(wholeNumber(port.substr(port.rfind(':') + 1)).value_or(0));
}

std::optional<BoxPlace> placeOf(const ScsiDevice& disk, const std::vector<BoxPlan>& boxes)
{
    const auto where = [&boxes](auto matches) {
        return static_cast<std::size_t>(std::find_if(boxes.begin(), boxes.end(), matches) - boxes.begin());
    };
    if (!disk.slotDirectory.empty()) {
        const std::string enclosure = parentOf(disk.slotDirectory);
        const std::size_t box = where([&enclosure](const BoxPlan& plan) {
            return std::find(plan.enclosures.begin(), plan.enclosures.end(), enclosure) != plan.enclosures.end();
        });
        if (box < boxes.size()) return BoxPlace{box, disk.slot ? disk.slot : disk.bay};
    }
    if (disk.enclosureIdentifier != 0) {
        const std::size_t box = where([&disk](const BoxPlan& plan) { return plan.id == disk.enclosureIdentifier; });
        if (box < boxes.size()) return BoxPlace{box, disk.bay};
    }
    for (std::size_t box = 0; box < boxes.size() && disk.sasAddress != 0; ++box) {
        if (const SlotHealth* slot = slotHealthOf(disk, boxes[box]))
            return BoxPlace{box, slot->slot ? std::optional<std::uint64_t>(*slot->slot) : disk.phy};
    }
    if (!disk.expander.empty()) {
        const std::size_t box = where([&disk](const BoxPlan& plan) {
            return std::find(plan.expanders.begin(), plan.expanders.end(), disk.expander) != plan.expanders.end();
        });
        if (box < boxes.size()) return BoxPlace{box, disk.enclosureIdentifier != 0 && disk.bay ? disk.bay : disk.phy};
    }
    if (disk.pathInfo && disk.pathInfo->box) {
        const std::string key = "box " + std::to_string(*disk.pathInfo->box);
        const std::size_t box = where([&key, &disk](const BoxPlan& plan) {
            return plan.key == key || (plan.wish && *plan.wish == *disk.pathInfo->box);
        });
        if (box < boxes.size()) return BoxPlace{box, disk.pathInfo->bay};
    }
    return std::nullopt;
}

const SlotHealth* slotHealthOf(const ScsiDevice& disk, const BoxPlan& box)
{
    if (!box.state || disk.sasAddress == 0) return nullptr;
    for (const SlotHealth& slot : box.state->slots) {
        if (std::find(slot.sasAddresses.begin(), slot.sasAddresses.end(), disk.sasAddress) != slot.sasAddresses.end())
            return &slot;
    }
    return nullptr;
}

std::vector<BoxPlan> planBoxes(const LiveMachine& machine, const LiveHba& hba, const DeviceAnswers& answers,
                               const SysfsTree& tree, BoxNumbering& numbering)
{
    std::vector<BoxPlan> boxes;
    for (const ScsiDevice& device : machine.devices) {
        if (device.address.host == hba.host && device.type == ScsiDevice::enclosureServices)
            addProcessor(machine, device, answers, tree, boxes);
    }
    addExpanders(machine, hba, tree, boxes);
    takeWishes(machine, hba, boxes);
    addNamedBoxes(machine, hba, boxes);
    for (BoxPlan& box : boxes)
        box.level = levelOf(box, machine);
    std::sort(boxes.begin(), boxes.end(), [](const BoxPlan& left, const BoxPlan& right) {
        if (left.port != right.port) return naturalLess(left.port, right.port);
        return left.level != right.level ? left.level < right.level : left.key < right.key;
    });
    std::vector<BoxPlan> numbered;
    for (const bool wished : {true, false}) { // who has a name of its own goes first
        for (BoxPlan& box : boxes) {
            if (box.wish.has_value() != wished) continue;
            const std::optional<std::uint8_t> number = numbering.assign(box.key, box.wish);
            box.number = number.value_or(std::uint8_t{0});
        }
    }
    std::copy_if(boxes.begin(), boxes.end(), std::back_inserter(numbered),
                 [](const BoxPlan& b) { return b.number != 0; });
    return numbered;
}

} // namespace KDV
