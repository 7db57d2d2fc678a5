// Bytes put aside: the first in memory, what is beyond in a temporary file that has no name. Used where a result must
// be taken from a provider at once although its client takes it slowly or later. One thread at a time. Appending throws
// std::system_error when there is no room in the file system; reading the same if the disk fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace KDV::Host {

class SpillStore {
public:
    static constexpr std::size_t defaultMemory = 1u << 20;

    explicit SpillStore(std::size_t memory = defaultMemory) : _limit(memory) {}
    SpillStore(const SpillStore&) = delete;
    SpillStore& operator=(const SpillStore&) = delete;
    ~SpillStore();

    void append(std::string_view bytes);
    std::uint64_t size() const noexcept { return _memory.size() + _fileSize; }
    std::uint64_t inFile() const noexcept { return _fileSize; }
    // Copies up to `size` bytes from `offset` on; how many there were.
    std::size_t read(std::uint64_t offset, char* to, std::size_t size) const;

private:
    void openFile();

    std::size_t _limit;
    std::string _memory;
    int _file = -1;
    std::uint64_t _fileSize = 0;
};

} // namespace KDV::Host
