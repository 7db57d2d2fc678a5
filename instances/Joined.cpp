#include "instances/Joined.h"

#include <charconv>

namespace KDV {

TextPiece::TextPiece(std::uint32_t number) noexcept
{
    const auto written = std::to_chars(_digits, _digits + sizeof _digits, number);
    _text = {_digits, static_cast<std::size_t>(written.ptr - _digits)};
}

std::string joined(std::initializer_list<TextPiece> pieces)
{
    std::size_t size = 0;
    for (const TextPiece& piece : pieces)
        size += piece.text().size();
    std::string text;
    text.reserve(size);
    for (const TextPiece& piece : pieces)
        text += piece.text();
    return text;
}

} // namespace KDV
