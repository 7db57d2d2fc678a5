#include "broker/Memory.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace KDV::Host {
namespace {

constexpr std::size_t largestChunk = 256 * 1024;
// Every block starts on this boundary, so that whatever is put behind its head is aligned.
constexpr std::size_t alignment = 16;
static_assert(sizeof(Block) % alignment == 0 && BlockPool::smallestBlock % alignment == 0);

void* systemMemory(std::size_t size)
{
    void* at = std::malloc(size);
    if (!at) throw std::bad_alloc();
    return at;
}

// 0 for up to 128 bytes, then one for each doubling.
std::uint32_t classOf(std::size_t size) noexcept
{
    if (size <= BlockPool::smallestBlock) return 0;
    const auto bits = static_cast<std::uint32_t>(64 - __builtin_clzll(size - 1)); // size <= 2^bits
    return bits - 7 < BlockPool::madeToMeasure ? bits - 7 : BlockPool::madeToMeasure;
}
static_assert(BlockPool::smallestBlock == 1u << 7);

} // namespace

Block* BlockPool::take(std::size_t size)
{
    const std::uint32_t sizeClass = classOf(size);
    Block*& freed = _free[sizeClass];
    if (freed && freed->size >= size) {
        Block* block = freed;
        freed = block->next;
        return block;
    }
    if (sizeClass < madeToMeasure) return carve(sizeClass);
    const std::size_t whole = alignment + size;
    auto* chunk = static_cast<Chunk*>(systemMemory(whole));
    chunk->next = _chunks;
    _chunks = chunk;
    _bytes += whole;
    auto* block = reinterpret_cast<Block*>(reinterpret_cast<char*>(chunk) + alignment);
    block->size = static_cast<std::uint32_t>(size);
    block->sizeClass = madeToMeasure;
    return block;
}

Block* BlockPool::carve(std::uint32_t sizeClass)
{
    const std::size_t size = smallestBlock << sizeClass;
    if (size > static_cast<std::size_t>(_end - _next)) {
        const std::size_t whole = _nextChunk > size * 2 ? _nextChunk : size * 2;
        auto* chunk = static_cast<Chunk*>(systemMemory(whole));
        chunk->next = _chunks;
        _chunks = chunk;
        _bytes += whole;
        _next = reinterpret_cast<char*>(chunk) + alignment;
        _end = reinterpret_cast<char*>(chunk) + whole;
        if (_nextChunk < largestChunk) _nextChunk *= 2;
    }
    auto* block = reinterpret_cast<Block*>(_next);
    _next += size;
    block->size = static_cast<std::uint32_t>(size);
    block->sizeClass = sizeClass;
    return block;
}

void BlockPool::giveBack(Block* block) noexcept
{
    block->next = _free[block->sizeClass];
    _free[block->sizeClass] = block;
}

void BlockPool::reset() noexcept
{
    while (_chunks) {
        Chunk* next = _chunks->next;
        std::free(_chunks);
        _chunks = next;
    }
    for (Block*& freed : _free)
        freed = nullptr;
    _next = _end = nullptr;
    _bytes = 0;
}

Memory* Memory::create(BlockPool* pool, std::size_t firstBlock)
{
    const std::size_t size = sizeof(Block) + sizeof(Memory) + ((firstBlock + 7) & ~std::size_t{7});
    Block* block = nullptr;
    if (pool) {
        block = pool->take(size);
    } else {
        block = static_cast<Block*>(systemMemory(size));
        block->size = static_cast<std::uint32_t>(size);
        block->sizeClass = BlockPool::madeToMeasure;
    }
    block->next = nullptr;
    auto* memory = reinterpret_cast<Memory*>(block + 1);
    memory->_pool = pool;
    memory->_blocks = block;
    memory->_next = reinterpret_cast<char*>(memory + 1);
    memory->_end = reinterpret_cast<char*>(block) + block->size;
    return memory;
}

void Memory::destroy() noexcept
{
    // The first block holds this object itself.
    BlockPool* pool = _pool;
    for (Block* block = _blocks; block;) {
        Block* next = block->next;
        if (pool)
            pool->giveBack(block);
        else
            std::free(block);
        block = next;
    }
}

void* Memory::allocateSlow(std::size_t size)
{
    constexpr std::size_t usual = 4096;
    const std::size_t wanted = sizeof(Block) + (size > usual - sizeof(Block) ? size : usual - sizeof(Block));
    Block* block = nullptr;
    if (_pool) {
        block = _pool->take(wanted);
    } else {
        block = static_cast<Block*>(systemMemory(wanted));
        block->size = static_cast<std::uint32_t>(wanted);
        block->sizeClass = BlockPool::madeToMeasure;
    }
    block->next = _blocks;
    _blocks = block;
    _next = reinterpret_cast<char*>(block + 1) + size;
    _end = reinterpret_cast<char*>(block) + block->size;
    return block + 1;
}

std::string_view Memory::copy(std::string_view text)
{
    auto* at = static_cast<char*>(allocate(text.size() + 1));
    if (!text.empty()) std::memcpy(at, text.data(), text.size());
    at[text.size()] = '\0';
    return {at, text.size()};
}

} // namespace KDV::Host
