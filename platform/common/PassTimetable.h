// When passes are due: the first a while after the start, then one at every full interval from the start of the one
// before. A pass that still runs when the next is due costs that one: the time of the next full interval counts then. A
// requested pass comes at once, or after the one that runs, and moves nothing. An interval of zero has no regular
// passes. Plain arithmetic; not locked.
#pragma once

#include "common/PassClock.h"

namespace KDV {

class PassTimetable {
public:
    using Time = PassClock::Time;

    explicit PassTimetable(Time interval) noexcept : _interval(interval) {}

    void start(Time now, Time firstAfter) noexcept;
    void request() noexcept { _requested = true; }

    // Is a pass to start now? If so it counts as running until passEnded.
    bool takePass(Time now) noexcept;
    void passEnded(Time now) noexcept;

    // When to look again, if nothing is requested and no pass ends before.
    Time nextLook() const noexcept { return _due; }

private:
    void passOver(Time now) noexcept;

    Time _interval;
    Time _due = PassClock::never;
    bool _started = false;
    bool _requested = false;
    bool _running = false;
};

} // namespace KDV
