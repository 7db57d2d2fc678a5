// The path_info attribute with which some adapters' drivers say where a disk is: one line a path, for example
// "[1:0:4:0]    Direct-Access     PORT: 1I BOX: 1 BAY: 4 Active". Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace KDV {

struct PathInfo {
    std::string port;
    std::optional<std::uint64_t> box;
    std::optional<std::uint64_t> bay;
};

// Of the active path; of the first one when none says that it is active. Nothing when no line names a port, box or bay.
std::optional<PathInfo> parsePathInfo(std::string_view text);

} // namespace KDV
