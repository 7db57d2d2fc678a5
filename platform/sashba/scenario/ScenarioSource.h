// A machine that a scenario file describes. Reads the file when the lists are made and again when it changes, and plays
// its timeline: a pass is a refresh since the file was read. A file that cannot be used leaves the last good state (at
// the start: no HBA) and gives one error a version.
#pragma once

#include "sashba/scenario/Scenario.h"
#include "sashba/scenario/Timeline.h"
#include "sashba/scenario/WatchedFile.h"
#include "sashba/source/Source.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace KDV {

// What the source takes from its surroundings; tests put their own in place.
struct ScenarioSurroundings {
    std::function<std::chrono::steady_clock::time_point()> clock = std::chrono::steady_clock::now;
    std::function<void(const std::string&)> reportError;
    std::function<void(const std::string&)> reportInfo;
};

class ScenarioSource final : public Source {
public:
    ScenarioSource(std::string path, ScenarioSurroundings surroundings);
    ~ScenarioSource() override;

    void load(RecordTree& tree) override;
    void refresh(RecordTree& tree) override;

private:
    bool takeUpFile(RecordTree& tree);
    bool begin(RecordTree& tree);
    void playDue(RecordTree& tree);
    void play(const Change& change, RecordTree& tree);

    WatchedFile _file;
    ScenarioSurroundings _surroundings;
    TrackPlayer _passes;
    TrackPlayer _milliseconds;
    std::chrono::steady_clock::time_point _begun;
    std::uint64_t _pass = 0;
    bool _playing = false; // a usable file was read once
};

} // namespace KDV
