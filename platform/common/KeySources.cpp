#include "common/KeySources.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace KDV {
namespace {

constexpr std::size_t largestRegion = 1u << 20; // records have some hundred bytes

} // namespace

std::size_t KeySources::PlaceHash::operator()(const Place& place) const noexcept
{
    return (reinterpret_cast<std::uintptr_t>(place.bytes) + place.count) * 0x9e3779b97f4a7c15u >> 16;
}

bool KeySources::differs(const Region& region) const noexcept
{
    return std::memcmp(region.bytes, &_copies[region.copy], region.count) != 0;
}

std::uint32_t KeySources::freeRegion(std::size_t count)
{
    const auto head = _freeRegions.emplace(count, none).first;
    if (head->second == none) {
        if (_copies.size() + count > 0xffffffffu) throw std::length_error("too many key sources");
        _regions.emplace_back();
        Region& region = _regions.back();
        region.count = static_cast<std::uint32_t>(count);
        region.copy = static_cast<std::uint32_t>(_copies.size());
        region.next = none;
        head->second = static_cast<std::uint32_t>(_regions.size() - 1); // free until somebody depends on it
        _copies.resize(_copies.size() + count);
    }
    return head->second;
}

// The region at a place. A new one stays among the free ones until the object is entered as its first dependent.
std::uint32_t KeySources::regionAt(const Place& place)
{
    const auto known = _byPlace.find(place);
    if (known != _byPlace.end()) return known->second;
    const std::uint32_t number = freeRegion(place.count);
    _byPlace.emplace(place, number);
    Region& region = _regions[number];
    _freeRegions[place.count] = region.next;
    region.bytes = place.bytes;
    std::memcpy(&_copies[region.copy], place.bytes, place.count);
    return number;
}

// Dependents, ascending, that no longer are.
void KeySources::forget(std::uint32_t number, const std::uint32_t* first, const std::uint32_t* last) noexcept
{
    Region& region = _regions[number];
    region.dependents.erase(first, last);
    if (!region.dependents.empty()) return;
    _byPlace.erase(Place{region.bytes, region.count});
    const auto head = _freeRegions.find(region.count);
    region.bytes = nullptr;
    region.next = head->second;
    head->second = number;
}

void KeySources::giveBack(std::uint32_t handle) noexcept
{
    _watched[handle].regions.clear();
    _watched[handle].next = _freeWatched;
    _freeWatched = handle;
}

std::uint32_t KeySources::add(std::uint32_t id, const DeclaredKeySources* declared)
{
    if (!declared || declared->regions.empty()) return none;
    if (_freeWatched == none) {
        _watched.emplace_back();
        _watched.back().next = none;
        _freeWatched = static_cast<std::uint32_t>(_watched.size() - 1);
    }
    const std::uint32_t handle = _freeWatched;
    Watched& watched = _watched[handle];
    _freeWatched = watched.next;
    try {
        for (const auto& place : declared->regions) {
            if (!place.bytes || place.count == 0) continue;
            if (place.count > largestRegion) throw std::length_error("a key source of more than a mebibyte");
            const std::uint32_t region = regionAt({place.bytes, place.count});
            watched.regions.merge(&region, &region + 1);
            _regions[region].dependents.append(id);
        }
    } catch (...) {
        for (const std::uint32_t region : watched.regions)
            forget(region, &id, &id + 1);
        giveBack(handle);
        throw;
    }
    return handle;
}

void KeySources::remove(const std::vector<Leaving>& objects)
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs; // region, object
    for (const Leaving& object : objects)
        if (object.handle != none)
            for (const std::uint32_t region : _watched[object.handle].regions)
                pairs.emplace_back(region, object.id);
    std::sort(pairs.begin(), pairs.end());
    std::vector<std::uint32_t> ids;
    ids.reserve(pairs.size());
    for (const auto& pair : pairs)
        ids.push_back(pair.second);
    for (std::size_t i = 0; i < pairs.size();) {
        std::size_t end = i;
        while (end < pairs.size() && pairs[end].first == pairs[i].first)
            ++end;
        forget(pairs[i].first, &ids[i], ids.data() + end);
        i = end;
    }
    for (const Leaving& object : objects)
        if (object.handle != none) giveBack(object.handle);
}

std::vector<std::uint32_t> KeySources::changed() const
{
    std::vector<std::uint32_t> ids;
    for (const Region& region : _regions)
        if (region.bytes && differs(region)) ids.insert(ids.end(), region.dependents.begin(), region.dependents.end());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

void KeySources::accept() noexcept
{
    for (const Region& region : _regions)
        if (region.bytes && differs(region)) std::memcpy(&_copies[region.copy], region.bytes, region.count);
}

void KeySources::renumber(const std::uint32_t* renumbered) noexcept
{
    for (Region& region : _regions)
        region.dependents.renumber(renumbered);
}

} // namespace KDV
