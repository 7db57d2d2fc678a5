// A scenario as read: the machine at the start and what happens to it. Plain values; the reader makes it, the source
// plays it.
#pragma once

#include "sashba/Machine.h"
#include "sashba/RecordTree.h"

#include <cstdint>
#include <string>
#include <vector>

namespace KDV {

enum class ChangeAction : std::uint8_t { Set, Pull, Insert };

struct Change {
    ChangeAction action = ChangeAction::Set;
    ElementPosition position;
    RecordPatch patch;              // of a set
    SasPhysicalDriveRecord drive{}; // of an insert
    std::string place;              // in the file, for the log
    std::uint64_t due = 0;          // pass or milliseconds, by the track it stands in
};

// Changes on one measure of time, in the order in which they are due.
struct Track {
    std::vector<Change> changes;
    std::uint64_t round = 0; // length after which the changes are due again; 0 never
};

struct Scenario {
    Machine machine;
    Track passes;
    Track milliseconds;
};

} // namespace KDV
