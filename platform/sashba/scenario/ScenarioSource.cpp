#include "sashba/scenario/ScenarioSource.h"

#include "sashba/scenario/ScenarioReader.h"

#include <optional>
#include <utility>

namespace KDV {

ScenarioSource::ScenarioSource(std::string path, ScenarioSurroundings surroundings)
    : _file(std::move(path)), _surroundings(std::move(surroundings))
{
}

ScenarioSource::~ScenarioSource() = default;

void ScenarioSource::load(RecordTree& tree) { takeUpFile(tree); }

void ScenarioSource::refresh(RecordTree& tree)
{
    if (takeUpFile(tree) || !_playing) return;
    ++_pass;
    playDue(tree);
}

// True when a new machine was taken up.
bool ScenarioSource::takeUpFile(RecordTree& tree)
{
    switch (_file.look()) {
    case WatchedFile::Sight::Same:
        return false;
    case WatchedFile::Sight::NewText:
        return begin(tree);
    case WatchedFile::Sight::Unreadable:
        break;
    }
    _surroundings.reportError("scenario " + _file.path() + ": expected a readable file: " + _file.trouble() +
                              (_playing ? "; the last good state stays" : "; no HBA"));
    return false;
}

bool ScenarioSource::begin(RecordTree& tree)
{
    Problems problems;
    std::optional<Scenario> scenario = readScenario(_file.text(), problems);
    _file.forgetText();
    if (!scenario) {
        _surroundings.reportError("scenario " + _file.path() + " is not usable" +
                                  (_playing ? " (the last good state stays): " : " (no HBA): ") + problems.text());
        return false;
    }
    tree.take(scenario->machine);
    _passes = TrackPlayer(std::move(scenario->passes));
    _milliseconds = TrackPlayer(std::move(scenario->milliseconds));
    _pass = 0;
    _begun = _surroundings.clock();
    _playing = true;
    _surroundings.reportInfo("scenario " + _file.path() + " taken up: " + std::to_string(scenario->machine.size()) +
                             " HBAs");
    return true;
}

void ScenarioSource::playDue(RecordTree& tree)
{
    const auto playOne = [this, &tree](const Change& change) { play(change, tree); };
    _passes.advanceTo(_pass, playOne);
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(_surroundings.clock() - _begun);
    _milliseconds.advanceTo(static_cast<std::uint64_t>(elapsed.count()), playOne);
}

void ScenarioSource::play(const Change& change, RecordTree& tree)
{
    _surroundings.reportInfo("pass " + std::to_string(_pass) + ": " + change.place);
    switch (change.action) {
    case ChangeAction::Set:
        return tree.write(change.position, change.patch);
    case ChangeAction::Pull:
        return tree.pullDrive(change.position);
    case ChangeAction::Insert:
        return tree.insertDrive(change.position, change.drive);
    }
}

} // namespace KDV
