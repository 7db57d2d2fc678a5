// Any bytes as a scenario: read it, build the tree, play its timeline, and walk every record as the provider would. A
// text ends inside its field, a count that a walk follows ends at the array, a list ends.
#include "sashba/RecordTree.h"
#include "sashba/scenario/ScenarioReader.h"
#include "sashba/scenario/Timeline.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

// A check that no build switches off.
void require(bool holds)
{
    if (!holds) std::abort();
}

template <std::size_t capacity>
void checkText(const char (&field)[capacity])
{
    const std::string_view text = KDV::textOf(field);
    require(text.size() < capacity);
    for (const char letter : text)
        require(static_cast<unsigned char>(letter) >= 0x20 && letter != 0x7F);
}

std::size_t walkDrives(const KDV::SasHbaRecord& hba)
{
    std::size_t drives = 0;
    for (auto* drive = hba.physicalDrives.get(); drive; drive = drive->next.get()) {
        ++drives;
        require(drive->oldStatus == 0 && drive->acknowledged == 0);
        checkText(drive->hotPlugLocation);
        checkText(drive->location);
        checkText(drive->inquiry);
        checkText(drive->firmwareRevision);
        checkText(drive->serialNumber);
        checkText(drive->osName);
        checkText(drive->name);
    }
    return drives;
}

std::size_t walk(const KDV::SasHbaRecord* head)
{
    std::size_t elements = 0;
    for (auto* hba = head; hba; hba = hba->next.get()) {
        ++elements;
        checkText(hba->name);
        checkText(hba->firmwareVersion);
        checkText(hba->logicalLocation);
        elements += walkDrives(*hba);
        for (auto* volume = hba->logicalDrives.get(); volume; volume = volume->next.get()) {
            ++elements;
            require(volume->oldRedundancyState == 0);
            checkText(volume->osName);
        }
        for (auto* box = hba->storageBoxes.get(); box; box = box->next.get()) {
            ++elements;
            require(box->oldFanStatus == 0 && box->oldPowerStatus == 0 && box->oldTemperatureStatus == 0);
            checkText(box->name);
            checkText(box->serialNumber);
        }
    }
    return elements;
}

void play(const KDV::Change& change, KDV::RecordTree& tree)
{
    switch (change.action) {
    case KDV::ChangeAction::Set:
        return tree.write(change.position, change.patch);
    case KDV::ChangeAction::Pull:
        return tree.pullDrive(change.position);
    case KDV::ChangeAction::Insert:
        return tree.insertDrive(change.position, change.drive);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    KDV::Problems problems;
    auto scenario = KDV::readScenario({reinterpret_cast<const char*>(data), size}, problems);
    require(scenario.has_value() == problems.empty());
    if (!scenario) {
        require(!problems.text().empty());
        return 0;
    }
    KDV::RecordTree tree;
    tree.take(scenario->machine);
    const std::size_t atFirst = walk(tree.head());
    KDV::TrackPlayer passes(std::move(scenario->passes));
    KDV::TrackPlayer milliseconds(std::move(scenario->milliseconds));
    const auto playOne = [&tree](const KDV::Change& change) { play(change, tree); };
    for (std::uint64_t pass = 1; pass < 6; ++pass) {
        passes.advanceTo(pass, playOne);
        milliseconds.advanceTo(pass * 7000, playOne);
        walk(tree.head());
    }
    tree.take(scenario->machine);
    require(walk(tree.head()) == atFirst);
    return 0;
}
