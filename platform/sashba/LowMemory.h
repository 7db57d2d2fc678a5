// Memory below 4 GiB for the records, whose links are 32 bits wide in every build. One arena belongs to one record
// store; pieces are zero-filled, keep their address and go back to the system only with the arena. The caller locks.
// Throws std::bad_alloc when no address below 4 GiB is free.
#pragma once

#include <cstddef>
#include <vector>

namespace KDV {

class LowMemory {
public:
    LowMemory() = default;
    ~LowMemory();
    LowMemory(const LowMemory&) = delete;
    LowMemory& operator=(const LowMemory&) = delete;

    // Aligned to 16 bytes, so that a record never shares its first word with a neighbour.
    void* allocate(std::size_t bytes);

private:
    struct Block {
        char* start;
        std::size_t bytes;
    };

    void addBlock(std::size_t atLeast);

    std::vector<Block> _blocks;
    char* _free = nullptr;
    std::size_t _left = 0;
    std::size_t _nextBlock = std::size_t{64} * 1024;
};

} // namespace KDV
