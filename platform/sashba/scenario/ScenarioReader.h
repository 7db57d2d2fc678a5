// Reads the text of a scenario file. Pure: text in, scenario or problems out; nothing of a text with a problem is used.
// Throws std::bad_alloc only.
#pragma once

#include "sashba/scenario/Problems.h"
#include "sashba/scenario/Scenario.h"

#include <optional>
#include <string_view>

namespace KDV {

// More elements than any machine has; keeps a hostile file from filling the memory below 4 GiB.
constexpr std::size_t mostElements = 200000;
constexpr std::size_t mostChanges = 100000;

std::optional<Scenario> readScenario(std::string_view text, Problems& problems);

} // namespace KDV
