// The bytes that the keys of a collection's objects are read from: each region once, however many objects read it, with
// a copy of what it held when it was last looked at, and the objects that depend on it. Belongs to the collection's
// index; not locked.
#pragma once

#include "common/IdList.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

namespace KDV {

// What an object declared; kept with it until it is handed over.
struct DeclaredKeySources {
    struct Region {
        const void* bytes;
        std::size_t count;
    };
    std::vector<Region> regions;
};

class KeySources {
public:
    static constexpr std::uint32_t none = 0xffffffffu;

    // Registers an object, whose id is greater than all before. Gives the handle to remove it with; none when there is
    // nothing to watch.
    std::uint32_t add(std::uint32_t id, const DeclaredKeySources* declared);

    // Objects that go, ascending by id. Linear in what they depend on, also when thousands go at once.
    struct Leaving {
        std::uint32_t id;
        std::uint32_t handle;
    };
    void remove(const std::vector<Leaving>& objects);

    // Ascending ids of the objects that depend on bytes that differ from their copy.
    std::vector<std::uint32_t> changed() const;
    // Takes the copies anew.
    void accept() noexcept;

    void renumber(const std::uint32_t* renumbered) noexcept;

private:
    struct Region {
        const void* bytes = nullptr;
        std::uint32_t count = 0;
        std::uint32_t copy = 0; // where in _copies
        std::uint32_t next = 0; // of the free ones of this size
        IdList dependents;      // empty: free
    };
    struct Watched { // what one object depends on
        IdList regions;
        std::uint32_t next = 0; // of the free ones
    };
    struct Place {
        const void* bytes;
        std::size_t count;
        bool operator==(const Place& other) const noexcept { return bytes == other.bytes && count == other.count; }
    };
    struct PlaceHash {
        std::size_t operator()(const Place& place) const noexcept;
    };

    std::uint32_t regionAt(const Place& place);
    std::uint32_t freeRegion(std::size_t count);
    void forget(std::uint32_t region, const std::uint32_t* first, const std::uint32_t* last) noexcept;
    void giveBack(std::uint32_t handle) noexcept;
    bool differs(const Region& region) const noexcept;

    std::deque<Region> _regions;
    std::vector<unsigned char> _copies;
    std::unordered_map<Place, std::uint32_t, PlaceHash> _byPlace;
    std::unordered_map<std::size_t, std::uint32_t> _freeRegions; // first free one by size
    std::deque<Watched> _watched;
    std::uint32_t _freeWatched = none;
};

} // namespace KDV
