#include "common/IdList.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace KDV {

bool IdList::contains(std::uint32_t id) const noexcept { return std::binary_search(begin(), end(), id); }

void IdList::makeRoom(std::uint32_t size)
{
    if (size <= _capacity) return;
    if (size > std::numeric_limits<std::uint32_t>::max() / 2) throw std::bad_alloc();
    // A third in reserve: lists of thousands of ids would waste most with more. Six fill the smallest block of a heap.
    const std::uint32_t capacity = std::max({size, _capacity + _capacity / 3, 6u});
    const bool onHeap = _capacity > inPlace;
    void* const block = std::realloc(onHeap ? _ids : nullptr, capacity * sizeof(std::uint32_t));
    if (!block) throw std::bad_alloc();
    if (!onHeap) std::memcpy(block, _few, sizeof _few);
    _ids = static_cast<std::uint32_t*>(block);
    _capacity = capacity;
}

void IdList::append(std::uint32_t id)
{
    if (_size > 0 && *(end() - 1) == id) return;
    makeRoom(_size + 1);
    ids()[_size++] = id;
}

void IdList::merge(const std::uint32_t* first, const std::uint32_t* last)
{
    if (first == last) return;
    makeRoom(_size + static_cast<std::uint32_t>(last - first));
    std::uint32_t* const all = ids();
    std::copy(first, last, all + _size);
    const std::uint32_t* const added = all + _size + (last - first);
    if (_size > 0 && all[_size - 1] >= *first)
        std::inplace_merge(all, all + _size, all + (added - all)); // does without memory when there is none
    _size = static_cast<std::uint32_t>(std::unique(all, all + (added - all)) - all);
}

void IdList::erase(const std::uint32_t* first, const std::uint32_t* last) noexcept
{
    std::uint32_t* const all = ids();
    std::uint32_t* const stop = all + _size;
    std::uint32_t* kept = stop;       // end of what is kept so far, once something was taken out
    const std::uint32_t* rest = stop; // what was not looked at yet
    const std::uint32_t* from = all;
    for (; first != last; ++first) {
        const std::uint32_t* const found = std::lower_bound(from, static_cast<const std::uint32_t*>(stop), *first);
        if (found == stop) break;
        if (*found != *first) {
            from = found;
            continue;
        }
        if (kept == stop)
            kept = all + (found - all);
        else
            kept = std::copy(rest, found, kept);
        rest = from = found + 1;
    }
    if (kept != stop) kept = std::copy(rest, static_cast<const std::uint32_t*>(stop), kept);
    _size = static_cast<std::uint32_t>(kept - all);
}

void IdList::renumber(const std::uint32_t* renumbered) noexcept
{
    std::uint32_t* const all = ids();
    for (std::uint32_t i = 0; i < _size; ++i)
        all[i] = renumbered[all[i]];
}

void IdList::clear() noexcept
{
    if (_capacity > inPlace) std::free(_ids);
    _size = 0;
    _capacity = inPlace;
    _few[0] = _few[1] = 0;
}

} // namespace KDV
