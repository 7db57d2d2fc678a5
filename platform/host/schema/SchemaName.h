// Names of the schema compare without regard to ASCII case. The hash and the comparison here agree with each other,
// allocate nothing and read no locale; they may be called from any thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace KDV::Host {

constexpr char lowerCase(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

constexpr bool sameName(std::string_view a, std::string_view b) noexcept
{
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && lowerCase(a[i]) != lowerCase(b[i])) return false;
    return true;
}

constexpr std::uint32_t nameHash(std::string_view name) noexcept
{
    std::uint32_t hash = 2166136261u;
    for (char c : name)
        hash = (hash ^ static_cast<unsigned char>(lowerCase(c))) * 16777619u;
    return hash ^ (hash >> 15);
}

struct NameHash {
    std::size_t operator()(std::string_view name) const noexcept { return nameHash(name); }
};
struct NameEqual {
    bool operator()(std::string_view a, std::string_view b) const noexcept { return sameName(a, b); }
};

} // namespace KDV::Host
