#include "hostxml/ReplyBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace KDV::Host {

namespace {
constexpr std::size_t smallest = 4096;
}

ReplyBuffer::~ReplyBuffer() { std::free(_begin); }

void ReplyBuffer::grow(std::size_t count)
{
    const std::size_t used = size();
    const std::size_t capacity = std::max({smallest, used + count, used * 2});
    auto* block = static_cast<char*>(std::realloc(_begin, capacity));
    if (!block) throw std::bad_alloc();
    _begin = block;
    _end = block + used;
    _limit = block + capacity;
}

void ReplyBuffer::trim(std::size_t capacity) noexcept
{
    if (static_cast<std::size_t>(_limit - _begin) <= capacity || size() > capacity) return;
    const std::size_t used = size();
    if (auto* block = static_cast<char*>(std::realloc(_begin, capacity))) {
        _begin = block;
        _end = block + used;
        _limit = block + capacity;
    }
}

} // namespace KDV::Host
