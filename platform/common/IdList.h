// An ascending list of object ids that takes sixteen bytes and no memory of its own up to two ids: the collection keeps
// several hundred thousand of them, most with a single id. Not locked. Only append and merge can run out of memory;
// they change nothing then.
#pragma once

#include <cstdint>

namespace KDV {

class IdList {
public:
    IdList() noexcept = default;
    IdList(const IdList&) = delete;
    IdList& operator=(const IdList&) = delete;
    ~IdList() { clear(); }

    std::uint32_t size() const noexcept { return _size; }
    bool empty() const noexcept { return _size == 0; }
    const std::uint32_t* begin() const noexcept { return _capacity > inPlace ? _ids : _few; }
    const std::uint32_t* end() const noexcept { return begin() + _size; }
    bool contains(std::uint32_t id) const noexcept;

    // Must be greater than all that are there; the last one again changes nothing.
    void append(std::uint32_t id);

    // Adds ascending ids; those that are there already stay single.
    void merge(const std::uint32_t* first, const std::uint32_t* last);

    // Takes ascending ids out; those that are not there are passed over.
    void erase(const std::uint32_t* first, const std::uint32_t* last) noexcept;

    // Puts renumbered[id] in the place of each id; the new numbers keep the order.
    void renumber(const std::uint32_t* renumbered) noexcept;

    void clear() noexcept;

private:
    static constexpr std::uint32_t inPlace = 2;
    std::uint32_t* ids() noexcept { return _capacity > inPlace ? _ids : _few; }
    void makeRoom(std::uint32_t size);

    std::uint32_t _size = 0;
    std::uint32_t _capacity = inPlace;
    union {
        std::uint32_t _few[inPlace] = {0, 0};
        std::uint32_t* _ids;
    };
};

} // namespace KDV
