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

void addId(BoxPlan& box, std::uint64_t id)
{
    if (id != 0 && std::find(box.ids.begin(), box.ids.end(), id) == box.ids.end()) box.ids.push_back(id);
}

std::optional<std::uint8_t> wishOf(const ScsiDevice& device)
{
    const std::uint64_t number = device.pathInfo ? device.pathInfo->box.value_or(0) : 0;
    return number >= 1 && number <= 254 ? std::optional<std::uint8_t>(static_cast<std::uint8_t>(number)) : std::nullopt;
}

// A processor that sits behind an expander speaks for the enclosure of that expander.
void addProcessor(const LiveMachine& machine, const ScsiDevice& device, const DeviceAnswers& answers, PortNames& ports,
                  std::vector<BoxPlan>& boxes)
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
    addId(box, id);
    fillIfEmpty(box.vendor, device.vendor);
    fillIfEmpty(box.model, device.model);
    fillIfEmpty(box.revision, device.revision);
    fillIfEmpty(box.serial, device.serial);
    fillIfEmpty(box.port, ports.of(device));
    if (!box.wish) box.wish = wishOf(device);
    if (!device.expander.empty()) box.expanders.push_back(device.expander);
    if (entry != machine.enclosures.end()) {
        box.enclosures.push_back(entry->path);
        if (box.bays.value_or(0) == 0) box.bays = entry->components;
    }
    if (!state) return;
    addId(box, state->logicalId);
    box.states.push_back(state);
    fillIfEmpty(box.vendor, state->vendor);
    fillIfEmpty(box.model, state->product);
    fillIfEmpty(box.revision, state->revision);
    if (box.bays.value_or(0) == 0) box.bays = state->bays;
}

template <class List, class Value>
bool holds(const List& list, const Value& value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

// As many as there are when none does.
template <class Matches>
std::size_t firstBox(const std::vector<BoxPlan>& boxes, Matches matches)
{
    return static_cast<std::size_t>(std::find_if(boxes.begin(), boxes.end(), matches) - boxes.begin());
}

std::size_t boxWithExpander(const std::vector<BoxPlan>& boxes, const std::string& expander)
{
    return firstBox(boxes, [&expander](const BoxPlan& box) { return holds(box.expanders, expander); });
}

// The box that says itself that the disk is in it, or of which the disk's adapter says so.
std::size_t boxByEnclosure(const ScsiDevice& disk, const std::vector<BoxPlan>& boxes)
{
    std::size_t box = boxes.size();
    if (!disk.slotDirectory.empty()) {
        const std::string enclosure = parentOf(disk.slotDirectory);
        box = firstBox(boxes, [&enclosure](const BoxPlan& plan) { return holds(plan.enclosures, enclosure); });
    }
    if (box == boxes.size() && disk.enclosureIdentifier != 0)
        box = firstBox(boxes, [&disk](const BoxPlan& plan) { return holds(plan.ids, disk.enclosureIdentifier); });
    if (box == boxes.size() && disk.sasAddress != 0)
        box = firstBox(boxes, [&disk](const BoxPlan& plan) { return slotHealthOf(disk, plan) != nullptr; });
    return box;
}

// The number of the bay, from who knows it best: the enclosure class, the adapter, the box, the driver; at last the
// wiring. A bay that the adapter gives without an enclosure is always 0 and means nothing.
void findBay(const ScsiDevice& disk, const BoxPlan& box, BoxPlace& place)
{
    const auto plausible = [](const std::optional<std::uint64_t>& bay) { return bay && *bay < baysOfABox; };
    const SlotHealth* slot = slotHealthOf(disk, box);
    if (plausible(disk.slot)) {
        place.bay = disk.slot;
        place.told = true;
    } else if (disk.enclosureIdentifier != 0 && plausible(disk.bay)) {
        place.bay = disk.bay;
    } else if (slot) {
        place.bay = slot->slot ? std::uint64_t{*slot->slot} : std::uint64_t{slot->order};
        place.told = true;
    } else if (disk.pathInfo && plausible(disk.pathInfo->bay)) {
        place.bay = disk.pathInfo->bay;
    } else if (!disk.expander.empty() && plausible(disk.phy)) {
        place.bay = disk.phy;
    }
}

// Large boxes have expanders inside that no processor sits behind; the box of their disks is theirs.
void adoptExpanders(const LiveMachine& machine, const LiveHba& hba, std::vector<BoxPlan>& boxes)
{
    for (const ScsiDevice& disk : machine.devices) {
        if (disk.address.host != hba.host || !disk.isDisk() || disk.expander.empty()) continue;
        if (boxWithExpander(boxes, disk.expander) != boxes.size()) continue;
        const std::size_t box = boxByEnclosure(disk, boxes);
        if (box < boxes.size()) boxes[box].expanders.push_back(disk.expander);
    }
}

void addExpanders(const LiveMachine& machine, const LiveHba& hba, PortNames& ports, std::vector<BoxPlan>& boxes)
{
    for (const LiveExpander& expander : machine.expanders) {
        if (expander.host != hba.host || boxWithExpander(boxes, expander.path) != boxes.size()) continue;
        const std::string key = expander.sasAddress != 0 ? hex16(expander.sasAddress) : expander.path;
        BoxPlan& box = boxNamed(boxes, "expander " + key);
        addId(box, expander.sasAddress);
        fillIfEmpty(box.vendor, expander.vendor);
        fillIfEmpty(box.model, expander.model);
        fillIfEmpty(box.revision, expander.revision);
        fillIfEmpty(box.port, ports.ofPort(expander.hbaPort));
        box.expanders.push_back(expander.path);
    }
}

// Boxes that only the path information of their disks names.
void addNamedBoxes(const LiveMachine& machine, const LiveHba& hba, PortNames& ports, std::vector<BoxPlan>& boxes)
{
    for (const ScsiDevice& device : machine.devices) {
        if (device.address.host != hba.host || !device.isDisk()) continue;
        const std::optional<std::uint8_t> number = wishOf(device);
        if (!number || placeOf(device, boxes)) continue;
        BoxPlan& box = boxNamed(boxes, "box " + std::to_string(*number));
        box.wish = number;
        fillIfEmpty(box.port, ports.of(device));
    }
}

// The number by which the adapter's driver calls the box of a disk that the enclosure class puts into it.
void takeWishes(const LiveMachine& machine, const LiveHba& hba, std::vector<BoxPlan>& boxes)
{
    for (const ScsiDevice& device : machine.devices) {
        if (device.address.host != hba.host || !device.isDisk()) continue;
        const std::optional<std::uint8_t> number = wishOf(device);
        const std::optional<BoxPlace> place = number ? placeOf(device, boxes) : std::nullopt;
        if (!place || boxes[place->box].wish) continue;
        BoxPlan& box = boxes[place->box];
        box.wish = number;
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

// By whatever it may be known first: when a box is plugged in, its expanders are there before its processor is, and the
// processor before it has answered.
std::vector<std::string> namesOf(const BoxPlan& box, const LiveMachine& machine)
{
    std::vector<std::string> names{box.key};
    for (const std::uint64_t id : box.ids)
        names.push_back("enclosure " + hex16(id));
    for (const LiveExpander& expander : machine.expanders) {
        if (expander.sasAddress != 0 && holds(box.expanders, expander.path))
            names.push_back("expander " + hex16(expander.sasAddress));
    }
    return names;
}

} // namespace

std::string askingKey(const ScsiDevice& device) { return device.path + '#' + std::to_string(device.identity); }

std::string PortNames::of(const ScsiDevice& device)
{
    if (device.pathInfo && !device.pathInfo->port.empty()) return device.pathInfo->port;
    return device.hbaPort.empty() ? std::to_string(device.address.channel) : ofPort(device.hbaPort);
}

std::string PortNames::ofPort(const std::string& hbaPort)
{
    const auto [known, isNew] = _known.try_emplace(hbaPort);
    if (!isNew) return known->second;
    for (const std::string& name : _tree.names(hbaPort)) {
        const std::size_t colon = name.rfind(':');
        if (name.compare(0, 4, "phy-") == 0 && colon != std::string::npos)
            return known->second = std::to_string(wholeNumber(name.substr(colon + 1)).value_or(0));
    }
    const std::string port = lastOf(hbaPort);
    return known->second = std::to_string(wholeNumber(port.substr(port.rfind(':') + 1)).value_or(0));
}

std::optional<BoxPlace> placeOf(const ScsiDevice& disk, const std::vector<BoxPlan>& boxes)
{
    std::size_t box = boxByEnclosure(disk, boxes);
    if (box == boxes.size() && !disk.expander.empty()) box = boxWithExpander(boxes, disk.expander);
    if (const std::optional<std::uint8_t> number = wishOf(disk); number && box == boxes.size())
        box = firstBox(boxes, [&number](const BoxPlan& plan) { return plan.wish == number; });
    if (box == boxes.size()) return std::nullopt;
    BoxPlace place;
    place.box = box;
    findBay(disk, boxes[box], place);
    return place;
}

const SlotHealth* slotHealthOf(const ScsiDevice& disk, const BoxPlan& box)
{
    if (disk.sasAddress == 0) return nullptr;
    for (const EnclosureState* state : box.states) {
        for (const SlotHealth& slot : state->slots) {
            const auto& all = slot.sasAddresses;
            if (std::find(all.begin(), all.end(), disk.sasAddress) != all.end()) return &slot;
        }
    }
    return nullptr;
}

std::vector<BoxPlan> planBoxes(const LiveMachine& machine, const LiveHba& hba, const DeviceAnswers& answers,
                               PortNames& ports, BoxNumbering& numbering)
{
    std::vector<BoxPlan> boxes;
    for (const ScsiDevice& device : machine.devices) {
        if (device.address.host == hba.host && device.type == ScsiDevice::enclosureServices)
            addProcessor(machine, device, answers, ports, boxes);
    }
    adoptExpanders(machine, hba, boxes);
    addExpanders(machine, hba, ports, boxes);
    takeWishes(machine, hba, boxes);
    addNamedBoxes(machine, hba, ports, boxes);
    for (BoxPlan& box : boxes)
        box.level = levelOf(box, machine);
    std::sort(boxes.begin(), boxes.end(), [](const BoxPlan& left, const BoxPlan& right) {
        if (left.port != right.port) return naturalLess(left.port, right.port);
        return left.level != right.level ? left.level < right.level : left.key < right.key;
    });
    std::vector<BoxPlan> numbered;
    numbering.beginRound();
    for (const bool wished : {true, false}) { // who has a name of its own goes first
        for (BoxPlan& box : boxes) {
            if (box.wish.has_value() != wished) continue;
            const std::optional<std::uint8_t> number = numbering.assign(namesOf(box, machine), box.wish);
            box.number = number.value_or(std::uint8_t{0});
        }
    }
    std::copy_if(boxes.begin(), boxes.end(), std::back_inserter(numbered),
                 [](const BoxPlan& b) { return b.number != 0; });
    return numbered;
}

} // namespace KDV
