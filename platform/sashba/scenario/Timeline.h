// Plays the changes of a scenario: says which are due, each once a round, in order. Time is a number that only grows
// (passes or milliseconds since the scenario began). Looking costs nothing while nothing is due.
#pragma once

#include "sashba/scenario/Scenario.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace KDV {

class TrackPlayer {
public:
    TrackPlayer() = default;
    explicit TrackPlayer(Track track) : _track(std::move(track)) {}

    // Calls play(change) for every change that has become due. When whole rounds went by unseen, the last of them
    // stands for all: what counts is the state that they leave.
    template <class Play>
    void advanceTo(std::uint64_t now, Play play)
    {
        for (;;) {
            while (_next < _track.changes.size() && _roundStart + _track.changes[_next].due <= now)
                play(_track.changes[_next++]);
            if (_track.round == 0 || _track.changes.empty() || now < _roundStart + _track.round) return;
            const std::uint64_t roundsOver = (now - _roundStart) / _track.round;
            _roundStart += (roundsOver > 1 ? roundsOver - 1 : 1) * _track.round;
            _next = 0;
        }
    }

private:
    Track _track;
    std::uint64_t _roundStart = 0;
    std::size_t _next = 0; // the first change of the round that has not been played
};

} // namespace KDV
