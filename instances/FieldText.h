// A text on its way to the broker, which takes NUL-terminated texts only. Points at the text where that is terminated
// already; a record field that has no NUL, or is followed by foreign bytes, is copied to the end of the field and no
// further. Made implicitly as an argument; must not outlive what it was made from. No allocation.
#pragma once

#include "records/Records.h"

#include <cstring>
#include <string>
#include <type_traits>

namespace KDV {

class FieldText {
public:
    // A literal or a field of a record. With a NUL in its last place it ends in itself.
    template <std::size_t capacity>
    FieldText(const char (&field)[capacity]) noexcept : _text(field)
    {
        static_assert(capacity < sizeof _copy, "longer than any field of a record");
        if (field[capacity - 1] != '\0') copy(textOf(field));
    }

    template <class Pointer, class = std::enable_if_t<std::is_same_v<Pointer, const char*>>>
    FieldText(const Pointer& text) noexcept : _text(text)
    {
    }

    FieldText(const std::string& text) noexcept : _text(text.c_str()) {}
    FieldText(const FieldText&) = delete;
    FieldText& operator=(const FieldText&) = delete;

    const char* c_str() const noexcept { return _text; }

private:
    void copy(std::string_view text) noexcept
    {
        std::memcpy(_copy, text.data(), text.size());
        _copy[text.size()] = '\0';
        _text = _copy;
    }

    const char* _text;
    char _copy[144]; // set only when the text was copied
};

} // namespace KDV
