// Values as queries compare them, and the three answers that a condition has. Plain values; texts are views that must
// outlive the comparison. Integers of all CIM widths compare exactly, also with reals.
#pragma once

#include <cstdint>
#include <string_view>

namespace KDV::Host {

// A comparison with NULL, or of kinds that have no order in common, is neither true nor false.
enum class Truth : std::uint8_t { False, Unknown, True };

enum class ValueClass : std::uint8_t {
    Null,
    Boolean,
    Integer,
    Real,
    Text,
    DateTime, // the 25 characters of DSP0004
    Other,    // an array as a whole, an embedded object: only NULL or not NULL
};

struct QueryValue {
    ValueClass kind = ValueClass::Null;
    bool boolean = false;
    bool negative = false;       // of integers
    std::uint64_t magnitude = 0; // of integers
    double real = 0;
    std::string_view text;

    static QueryValue ofBoolean(bool value) noexcept;
    static QueryValue ofSigned(std::int64_t value) noexcept;
    static QueryValue ofUnsigned(std::uint64_t value) noexcept;
    static QueryValue ofReal(double value) noexcept;
    static QueryValue ofText(std::string_view value) noexcept;
    static QueryValue ofDateTime(std::string_view value) noexcept;
    static QueryValue other() noexcept;
};

enum class Comparison : std::uint8_t { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

Truth compare(const QueryValue& left, Comparison comparison, const QueryValue& right) noexcept;

constexpr Truth truthOf(bool value) noexcept { return value ? Truth::True : Truth::False; }
constexpr Truth negated(Truth value) noexcept
{
    return value == Truth::True ? Truth::False : value == Truth::False ? Truth::True : Truth::Unknown;
}

} // namespace KDV::Host
