// Bytes that a device or a file gave, seen without owning them. Reading past the end gives zeros, so that a truncated
// page reads as one whose missing part is empty; where that matters the reader asks for the size first. Pure, no locks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace KDV {

class ByteView {
public:
    ByteView() = default;
    ByteView(const std::uint8_t* data, std::size_t size) : _data(data), _size(size) {}
    explicit ByteView(std::string_view bytes)
        : _data(reinterpret_cast<const std::uint8_t*>(bytes.data())), _size(bytes.size())
    {
    }

    std::size_t size() const noexcept { return _size; }
    bool empty() const noexcept { return _size == 0; }

    std::uint8_t u8(std::size_t at) const noexcept { return at < _size ? _data[at] : std::uint8_t{0}; }
    std::uint16_t u16(std::size_t at) const noexcept { return static_cast<std::uint16_t>(bigEndian(at, 2)); }
    std::uint32_t u32(std::size_t at) const noexcept { return static_cast<std::uint32_t>(bigEndian(at, 4)); }
    std::uint64_t u64(std::size_t at) const noexcept { return bigEndian(at, 8); }

    // As much of the part as there is.
    ByteView part(std::size_t from, std::size_t bytes) const noexcept
    {
        const std::size_t start = std::min(from, _size);
        return {_data + start, std::min(bytes, _size - start)};
    }
    ByteView from(std::size_t at) const noexcept { return part(at, _size); }

    std::string_view chars() const noexcept { return {reinterpret_cast<const char*>(_data), _size}; }

private:
    std::uint64_t bigEndian(std::size_t at, std::size_t bytes) const noexcept
    {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            value = value << 8 | u8(at + i);
        return value;
    }

    const std::uint8_t* _data = nullptr;
    std::size_t _size = 0;
};

} // namespace KDV
