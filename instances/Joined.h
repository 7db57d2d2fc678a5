// Texts put together from texts and numbers: joined({"StorageVolume:", record->logicalDriveNumber}). Record fields end
// with the field, numbers are written in unsigned decimal.
#pragma once

#include "records/Records.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

namespace KDV {

// One piece: a view of what it was made from, except for the digits of a number. Only ever an argument of joined.
class TextPiece {
public:
    // A literal or a field of a record.
    template <std::size_t capacity>
    TextPiece(const char (&field)[capacity]) noexcept : _text(textOf(field))
    {
    }

    template <class Pointer, class = std::enable_if_t<std::is_same_v<Pointer, const char*>>>
    TextPiece(const Pointer& text) : _text(text)
    {
    }

    TextPiece(std::string_view text) noexcept : _text(text) {}
    TextPiece(const std::string& text) noexcept : _text(text) {}
    TextPiece(std::uint32_t number) noexcept;
    TextPiece(const TextPiece&) = delete;
    TextPiece& operator=(const TextPiece&) = delete;

    std::string_view text() const noexcept { return _text; }

private:
    std::string_view _text;
    char _digits[10];
};

// One allocation at most.
std::string joined(std::initializer_list<TextPiece> pieces);

} // namespace KDV
