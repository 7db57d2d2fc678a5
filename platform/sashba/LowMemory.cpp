#include "sashba/LowMemory.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace KDV {
namespace {

constexpr std::size_t largestBlock = std::size_t{4} * 1024 * 1024;
constexpr std::size_t alignment = 16;

bool liesBelow4GiB(const void* start, std::size_t bytes)
{
    return reinterpret_cast<std::uintptr_t>(start) + bytes <= std::uint64_t{1} << 32;
}

void* mapAt(void* hint, std::size_t bytes, int extraFlags)
{
    void* block = mmap(hint, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | extraFlags, -1, 0);
    if (block == MAP_FAILED) return nullptr;
    if (liesBelow4GiB(block, bytes)) return block;
    munmap(block, bytes);
    return nullptr;
}

// A hint is a wish: the system puts the block elsewhere when the place is taken, and mapAt gives such a block back.
void* searchByHints(std::size_t bytes)
{
    constexpr std::uint64_t first = 0x10000000;
    constexpr std::uint64_t last = 0xF0000000;
    constexpr std::uint64_t step = 0x1000000;
    for (std::uint64_t hint = first; hint < last; hint += step) {
        if (void* block = mapAt(reinterpret_cast<void*>(static_cast<std::uintptr_t>(hint)), bytes, 0)) return block;
    }
    return nullptr;
}

void* mapLow(std::size_t bytes)
{
#ifdef MAP_32BIT
    if (void* block = mapAt(nullptr, bytes, MAP_32BIT)) return block;
#endif
    return searchByHints(bytes);
}

} // namespace

LowMemory::~LowMemory()
{
    for (const Block& block : _blocks)
        munmap(block.start, block.bytes);
}

void* LowMemory::allocate(std::size_t bytes)
{
    const std::size_t rounded = (bytes + alignment - 1) / alignment * alignment;
    if (rounded > _left) addBlock(rounded);
    void* piece = _free;
    _free += rounded;
    _left -= rounded;
    return piece;
}

void LowMemory::addBlock(std::size_t atLeast)
{
    const std::size_t bytes = std::max(_nextBlock, (atLeast + 0xFFFF) & ~std::size_t{0xFFFF});
    _blocks.reserve(_blocks.size() + 1);
    void* block = mapLow(bytes);
    if (!block) throw std::bad_alloc();
    _blocks.push_back({static_cast<char*>(block), bytes});
    _free = static_cast<char*>(block);
    _left = bytes;
    _nextBlock = std::min(bytes * 2, largestBlock);
}

} // namespace KDV
