#include "common/PassTimetable.h"

namespace KDV {

void PassTimetable::start(Time now, Time firstAfter) noexcept
{
    _started = true;
    if (_interval.count() > 0) _due = now + firstAfter;
}

// Moves on to the first time that is still to come.
void PassTimetable::passOver(Time now) noexcept
{
    if (now >= _due) _due += ((now - _due) / _interval + 1) * _interval;
}

bool PassTimetable::takePass(Time now) noexcept
{
    const bool isWanted = _started && (_requested || now >= _due);
    passOver(now);
    if (_running || !isWanted) return false;
    _requested = false;
    _running = true;
    return true;
}

void PassTimetable::passEnded(Time now) noexcept
{
    _running = false;
    passOver(now);
}

} // namespace KDV
