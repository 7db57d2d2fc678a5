// Memory of broker objects: blocks of a few fixed sizes that a scope recycles, and bump allocation inside them, so that
// making, filling and releasing an object costs no call of malloc once the scope is warm. A Memory belongs to one
// object (and everything nested in it); a BlockPool belongs to one scope and one thread. Neither is locked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace KDV::Host {

struct Block {
    Block* next;
    std::uint32_t size; // whole block with this head
    std::uint32_t sizeClass;
};

class BlockPool {
public:
    BlockPool() = default;
    ~BlockPool() { reset(); }
    BlockPool(const BlockPool&) = delete;
    BlockPool& operator=(const BlockPool&) = delete;

    Block* take(std::size_t size); // at least `size` bytes with the head; std::bad_alloc
    void giveBack(Block* block) noexcept;
    void reset() noexcept;                                // frees everything, blocks in use included
    std::size_t bytes() const noexcept { return _bytes; } // taken from the system

    static constexpr std::size_t smallestBlock = 128;
    static constexpr std::uint32_t sizeClasses = 9; // 128 bytes to 32 KiB, doubling; larger ones are made to measure
    static constexpr std::uint32_t madeToMeasure = sizeClasses;

private:
    struct Chunk {
        Chunk* next;
    };
    Block* carve(std::uint32_t sizeClass);

    Block* _free[sizeClasses + 1] = {};
    Chunk* _chunks = nullptr;
    char* _next = nullptr;
    char* _end = nullptr;
    std::size_t _nextChunk = 16 * 1024; // grows, so that a small request stays small
    std::size_t _bytes = 0;
};

class Memory {
public:
    // A null pool means the heap: the memory of a clone, independent of any scope and thread.
    static Memory* create(BlockPool* pool, std::size_t firstBlock);
    void destroy() noexcept; // this too

    void* allocate(std::size_t size)
    {
        size = (size + 7) & ~std::size_t{7};
        if (size > static_cast<std::size_t>(_end - _next)) return allocateSlow(size);
        void* at = _next;
        _next += size;
        return at;
    }
    template <class T>
    T* array(std::size_t count)
    {
        return static_cast<T*>(allocate(count * sizeof(T)));
    }
    std::string_view copy(std::string_view text); // the copy ends with a NUL
    BlockPool* pool() const noexcept { return _pool; }

private:
    void* allocateSlow(std::size_t size);

    BlockPool* _pool;
    Block* _blocks;
    char* _next;
    char* _end;
};

} // namespace KDV::Host
