// Every association class with what it must publish, written down by hand: the catalogue that the tests hold the code
// against. Ends are given in the order of the constructor.
#pragma once

#include "common/CmpiManagedInstanceAssociation.h"
#include "logger/Logger.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace KDV::Test {

// The host's computer system as an end: a path and not an instance.
inline constexpr char computerSystem[] = "KDV_ComputerSystem";

// What an association writes into the log while it answers.
enum class Says {
    Nothing,         // built on a generic base, or one of the silent classes
    OnlyGetInstance, // built on a generic base, with properties of its own
    Everything,      // its own three operations
};

struct Given {
    const CmpiManagedInstance* first;
    const CmpiManagedInstance* second;
    const CmpiCpp::CmpiObjectPath* computerSystem;
};

struct Entry {
    const char* className;
    const char* first;  // class of the first end given to the constructor
    const char* second; // class of the second
    const char* role;   // the role that is published first ...
    bool isFirst;       // ... names the first end given
    const char* otherRole;
    bool asksFirst; // getAssociatedPath asks the first end given before the second
    Says says;
    std::vector<std::string> further; // "type name value"
    std::unique_ptr<CmpiManagedInstanceAssociation> (*make)(const Logger& logger, const Given& ends);
};

inline void PrintTo(const Entry& entry, std::ostream* out) { *out << entry.className; }

const std::vector<Entry>& catalogue();

} // namespace KDV::Test
