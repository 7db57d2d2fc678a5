#include "sashba/scenario/TimelineReader.h"

#include "sashba/scenario/ScenarioReader.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

namespace KDV {
namespace {

constexpr std::uint64_t mostPasses = 1000000000;
constexpr std::uint64_t mostSeconds = 1000000000; // some 30 years

template <class Record, class Index>
void indexList(const std::vector<Element<Record>>& list, ElementKind kind, std::uint32_t hba, Index& index)
{
    for (std::uint32_t i = 0; i < list.size(); ++i)
        index.emplace(std::make_tuple(kind, hba, list[i].key.number, list[i].key.occurrence), i);
}

std::string namesOf(std::initializer_list<std::string_view> names)
{
    std::string all;
    for (const std::string_view name : names)
        all += (all.empty() ? "" : ", ") + inQuotes(name);
    return all;
}

} // namespace

TimelineReader::TimelineReader(Problems& problems, Scenario& scenario)
    : _problems(problems), _scenario(scenario), _elements(problems), _fields(problems)
{
}

void TimelineReader::read(const JsonNode& root)
{
    readRounds(root.member("repeatEvery"));
    const JsonNode* timeline = root.member("timeline");
    if (!timeline) return;
    const JsonNode::Array* changes = timeline->array();
    if (!changes) {
        _problems.add("/timeline", "expected an array of changes, found " + timeline->description());
        return;
    }
    if (changes->size() > mostChanges) {
        _problems.add("/timeline", "expected at most " + std::to_string(mostChanges) + " changes");
        return;
    }
    indexMachine();
    for (std::size_t i = 0; i < changes->size(); ++i)
        readChange((*changes)[i], childPlace("/timeline", i));

    for (Track* track : {&_scenario.passes, &_scenario.milliseconds}) {
        std::stable_sort(track->changes.begin(), track->changes.end(),
                         [](const Change& a, const Change& b) { return a.due < b.due; });
        checkRound(*track);
    }
}

// Elements are indexed by the position of their HBA; an HBA number that two HBAs share means the first one.
void TimelineReader::indexMachine()
{
    const Machine& machine = _scenario.machine;
    for (std::uint32_t i = 0; i < machine.size(); ++i) {
        const std::uint32_t number = machine[i].hba.key.number;
        _positions.emplace(Target(ElementKind::Hba, 0, number, machine[i].hba.key.occurrence), i);
        indexList(machine[i].physicalDrives, ElementKind::PhysicalDrive, i, _positions);
        indexList(machine[i].logicalDrives, ElementKind::LogicalDrive, i, _positions);
        indexList(machine[i].storageBoxes, ElementKind::StorageBox, i, _positions);
    }
}

void TimelineReader::readRounds(const JsonNode* repeatEvery)
{
    if (!repeatEvery) return;
    if (!repeatEvery->object()) {
        _problems.add("/repeatEvery",
                      "expected an object with \"passes\" or \"seconds\" or both, found " + repeatEvery->description());
        return;
    }
    for (const JsonMember& member : *repeatEvery->object()) {
        const std::string place = childPlace("/repeatEvery", member.name);
        if (member.name == "passes") {
            if (_fields.readNumber(member.node, place, mostPasses, _scenario.passes.round) && !_scenario.passes.round)
                _problems.add(place, "expected at least 1 pass");
        } else if (member.name == "seconds") {
            if (readSeconds(member.node, place, _scenario.milliseconds.round) && !_scenario.milliseconds.round)
                _problems.add(place, "expected at least 0.001 seconds");
        } else {
            _fields.refuseUnknown("/repeatEvery", member.name, {"passes", "seconds"});
        }
    }
}

// A change that is due only after the round is over would never come.
void TimelineReader::checkRound(const Track& track)
{
    for (const Change& change : track.changes) {
        if (track.round != 0 && change.due > track.round)
            _problems.add(change.place, "expected to be due within the round that \"repeatEvery\" gives");
    }
}

void TimelineReader::readChange(const JsonNode& node, const std::string& place)
{
    if (!node.object()) {
        _problems.add(place, "expected a change (an object), found " + node.description());
        return;
    }
    bool known = true;
    for (const JsonMember& member : *node.object()) {
        const std::vector<std::string_view> names = {"atPass",       "afterSeconds", "hba",        "physicalDrive",
                                                     "logicalDrive", "storageBox",   "set",        "pull",
                                                     "insert",       "occurrence",   "description"};
        if (std::find(names.begin(), names.end(), std::string_view(member.name)) == names.end()) {
            _fields.refuseUnknown(place, member.name, names);
            known = false;
        }
    }
    Change change;
    change.place = place;
    Track* track = readDue(node, place, change);
    const bool readable = readAction(node, place, change);
    if (track && readable && known) track->changes.push_back(std::move(change));
}

Track* TimelineReader::readDue(const JsonNode& node, const std::string& place, Change& change)
{
    const JsonNode* pass = node.member("atPass");
    const JsonNode* seconds = node.member("afterSeconds");
    if ((pass != nullptr) == (seconds != nullptr)) {
        _problems.add(place, "expected either \"atPass\" or \"afterSeconds\"");
        return nullptr;
    }
    if (seconds)
        return readSeconds(*seconds, childPlace(place, "afterSeconds"), change.due) ? &_scenario.milliseconds : nullptr;
    if (!_fields.readNumber(*pass, childPlace(place, "atPass"), mostPasses, change.due)) return nullptr;
    if (change.due == 0) {
        _problems.add(childPlace(place, "atPass"), "expected at least 1: pass 0 is the machine as the file has it");
        return nullptr;
    }
    return &_scenario.passes;
}

bool TimelineReader::readSeconds(const JsonNode& node, const std::string& place, std::uint64_t& milliseconds)
{
    if (const auto* whole = std::get_if<std::uint64_t>(&node.value); whole && *whole <= mostSeconds) {
        milliseconds = *whole * 1000;
        return true;
    }
    if (const auto* real = std::get_if<double>(&node.value);
        real && *real >= 0 && *real <= static_cast<double>(mostSeconds)) {
        milliseconds = static_cast<std::uint64_t>(std::llround(*real * 1000));
        return true;
    }
    _problems.add(place, "expected seconds from 0 to " + std::to_string(mostSeconds) + ", found " + node.description());
    return false;
}

bool TimelineReader::readAction(const JsonNode& node, const std::string& place, Change& change)
{
    const int actions = (node.member("set") ? 1 : 0) + (node.member("pull") ? 1 : 0) + (node.member("insert") ? 1 : 0);
    if (actions != 1) {
        _problems.add(place, "expected exactly one of " + namesOf({"set", "pull", "insert"}));
        return false;
    }
    if (!readHba(node, place, change)) return false;
    if (node.member("set")) return readSet(node, place, change);
    for (const std::string_view name : {"physicalDrive", "logicalDrive", "storageBox"}) {
        if (node.member(name)) {
            _problems.add(childPlace(place, name), "expected only beside \"set\"");
            return false;
        }
    }
    return node.member("pull") ? readPull(node, place, change) : readInsert(node, place, change);
}

bool TimelineReader::readHba(const JsonNode& node, const std::string& place, Change& change)
{
    const JsonNode* hba = node.member("hba");
    if (!hba) {
        _problems.add(childPlace(place, "hba"), "expected the number of an HBA, found nothing");
        return false;
    }
    std::uint64_t number = 0;
    if (!_fields.readNumber(*hba, childPlace(place, "hba"), 0xFFFFFFFF, number)) return false;
    const auto found = _positions.find(Target(ElementKind::Hba, 0, static_cast<std::uint32_t>(number), 0));
    if (found == _positions.end()) {
        _problems.add(childPlace(place, "hba"),
                      "expected the number of an HBA in \"hbas\", found " + std::to_string(number));
        return false;
    }
    change.position.hba = found->second;
    return true;
}

bool TimelineReader::readSet(const JsonNode& node, const std::string& place, Change& change)
{
    struct Named {
        std::string_view name;
        ElementKind kind;
    };
    int targets = 0;
    change.action = ChangeAction::Set;
    for (const Named& named :
         {Named{"physicalDrive", ElementKind::PhysicalDrive}, Named{"logicalDrive", ElementKind::LogicalDrive},
          Named{"storageBox", ElementKind::StorageBox}}) {
        const JsonNode* number = node.member(named.name);
        if (!number) continue;
        if (++targets > 1) {
            _problems.add(place, "expected at most one of " + namesOf({"physicalDrive", "logicalDrive", "storageBox"}));
            return false;
        }
        change.position.kind = named.kind;
        std::uint32_t occurrence = 0;
        if (!readOccurrence(node, place, occurrence) ||
            !findTarget(*number, childPlace(place, named.name), occurrence, change))
            return false;
    }
    if (targets == 0 && node.member("occurrence")) {
        _problems.add(childPlace(place, "occurrence"), "expected only beside an element of the HBA");
        return false;
    }
    change.patch = _elements.readChange(*node.member("set"), childPlace(place, "set"), change.position.kind);
    return true;
}

bool TimelineReader::readOccurrence(const JsonNode& node, const std::string& place, std::uint32_t& occurrence)
{
    const JsonNode* given = node.member("occurrence");
    if (!given) return true;
    std::uint64_t number = 0;
    if (!_fields.readNumber(*given, childPlace(place, "occurrence"), mostElements, number)) return false;
    if (number == 0) {
        _problems.add(childPlace(place, "occurrence"), "expected at least 1, the first element with the number");
        return false;
    }
    occurrence = static_cast<std::uint32_t>(number - 1);
    return true;
}

bool TimelineReader::findTarget(const JsonNode& number, const std::string& place, std::uint32_t occurrence,
                                Change& change)
{
    std::uint64_t wanted = 0;
    if (!_fields.readNumber(number, place, 0xFFFFFFFF, wanted)) return false;
    const auto found = _positions.find(
        Target(change.position.kind, change.position.hba, static_cast<std::uint32_t>(wanted), occurrence));
    if (found == _positions.end()) {
        _problems.add(place, "expected the number of an element of this HBA, found " + std::to_string(wanted));
        return false;
    }
    change.position.element = found->second;
    return true;
}

bool TimelineReader::readPull(const JsonNode& node, const std::string& place, Change& change)
{
    std::uint32_t occurrence = 0;
    change.action = ChangeAction::Pull;
    change.position.kind = ElementKind::PhysicalDrive;
    return readOccurrence(node, place, occurrence) &&
           findTarget(*node.member("pull"), childPlace(place, "pull"), occurrence, change);
}

// A number alone brings the drive back as the file describes it; an object is another disk in its place.
bool TimelineReader::readInsert(const JsonNode& node, const std::string& place, Change& change)
{
    const JsonNode& insert = *node.member("insert");
    const std::string insertPlace = childPlace(place, "insert");
    std::uint32_t occurrence = 0;
    change.action = ChangeAction::Insert;
    change.position.kind = ElementKind::PhysicalDrive;
    if (!readOccurrence(node, place, occurrence)) return false;
    MachineHba& hba = _scenario.machine[change.position.hba];
    if (!insert.object()) {
        if (!findTarget(insert, insertPlace, occurrence, change)) return false;
        change.drive = hba.physicalDrives[change.position.element].image;
        return true;
    }
    if (insert.member("duplicateNumber")) {
        _problems.add(childPlace(insertPlace, "duplicateNumber"), "expected only in \"physicalDrives\"");
        return false;
    }
    std::uint32_t number = 0;
    if (!_elements.readWhole(insert, insertPlace, ElementKind::PhysicalDrive, hba.hba.key.number,
                             reinterpret_cast<unsigned char*>(&change.drive), number))
        return false;
    const auto found = _positions.find(Target(ElementKind::PhysicalDrive, change.position.hba, number, occurrence));
    if (found != _positions.end()) {
        change.position.element = found->second;
    } else if (occurrence > 0) {
        _problems.add(childPlace(place, "occurrence"), "expected a drive of this number that \"physicalDrives\" has");
        return false;
    } else {
        addAbsentDrive(number, change);
    }
    return true;
}

void TimelineReader::addAbsentDrive(std::uint32_t number, Change& change)
{
    auto& drives = _scenario.machine[change.position.hba].physicalDrives;
    change.position.element = static_cast<std::uint32_t>(drives.size());
    Element<SasPhysicalDriveRecord>& drive = drives.emplace_back();
    drive.key.number = number;
    drive.image = change.drive;
    drive.present = false;
    _positions.emplace(Target(ElementKind::PhysicalDrive, change.position.hba, number, 0), change.position.element);
}

} // namespace KDV
