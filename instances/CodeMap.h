// Maps a code byte of a record to the value that is published for it. Every map has a value for all other codes, so
// that no byte from the hardware is an error; where nothing is published then, the value is an empty std::optional.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KDV {

template <class Value, std::size_t rows>
struct CodeMap {
    struct Row {
        std::uint8_t code;
        Value value;
    };

    Row table[rows];
    Value otherwise;

    constexpr Value operator[](std::uint8_t code) const noexcept
    {
        for (const Row& row : table)
            if (row.code == code) return row.value;
        return otherwise;
    }
};

} // namespace KDV
