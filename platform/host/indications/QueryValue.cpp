#include "indications/QueryValue.h"

#include <cmath>
#include <optional>

namespace KDV::Host {

QueryValue QueryValue::ofBoolean(bool value) noexcept
{
    QueryValue made;
    made.kind = ValueClass::Boolean;
    made.boolean = value;
    return made;
}

QueryValue QueryValue::ofSigned(std::int64_t value) noexcept
{
    QueryValue made = ofUnsigned(static_cast<std::uint64_t>(value));
    if (value < 0) {
        made.negative = true;
        made.magnitude = 0 - made.magnitude;
    }
    return made;
}

QueryValue QueryValue::ofUnsigned(std::uint64_t value) noexcept
{
    QueryValue made;
    made.kind = ValueClass::Integer;
    made.magnitude = value;
    return made;
}

QueryValue QueryValue::ofReal(double value) noexcept
{
    QueryValue made;
    made.kind = ValueClass::Real;
    made.real = value;
    return made;
}

QueryValue QueryValue::ofText(std::string_view value) noexcept
{
    QueryValue made;
    made.kind = ValueClass::Text;
    made.text = value;
    return made;
}

QueryValue QueryValue::ofDateTime(std::string_view value) noexcept
{
    QueryValue made = ofText(value);
    made.kind = ValueClass::DateTime;
    return made;
}

QueryValue QueryValue::other() noexcept
{
    QueryValue made;
    made.kind = ValueClass::Other;
    return made;
}

namespace {

using Order = std::optional<int>; // none: not comparable

int sign(bool less, bool greater) noexcept { return less ? -1 : greater ? 1 : 0; }

Order orderOfIntegers(const QueryValue& left, const QueryValue& right) noexcept
{
    if (left.negative != right.negative) return left.negative ? -1 : 1;
    const int order = sign(left.magnitude<right.magnitude, left.magnitude> right.magnitude);
    return left.negative ? -order : order;
}

// 2^64 is exact as a double; everything below it that has no fraction is an integer of at most 64 bits.
Order orderOfIntegerAndReal(const QueryValue& integer, double real) noexcept
{
    constexpr double limit = 18446744073709551616.0;
    if (std::isnan(real)) return std::nullopt;
    if (real >= limit) return -1;
    if (real <= -limit) return 1;
    const double whole = std::floor(real);
    QueryValue rounded = QueryValue::ofUnsigned(static_cast<std::uint64_t>(std::fabs(whole)));
    rounded.negative = whole < 0;
    const Order order = orderOfIntegers(integer, rounded);
    return *order == 0 && real > whole ? -1 : order;
}

Order orderOfNumbers(const QueryValue& left, const QueryValue& right) noexcept
{
    if (left.kind == ValueClass::Integer && right.kind == ValueClass::Integer) return orderOfIntegers(left, right);
    if (left.kind == ValueClass::Integer) return orderOfIntegerAndReal(left, right.real);
    if (right.kind == ValueClass::Integer) {
        const Order mirrored = orderOfIntegerAndReal(right, left.real);
        return mirrored ? Order(-*mirrored) : mirrored;
    }
    if (std::isnan(left.real) || std::isnan(right.real)) return std::nullopt;
    return sign(left.real<right.real, left.real> right.real);
}

// Digits at a place of a date; none if an asterisk or anything else stands there.
std::optional<std::int64_t> digits(std::string_view text, std::size_t at, std::size_t count) noexcept
{
    std::int64_t value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9') return std::nullopt;
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

// Days since 0000-03-01 of the proleptic Gregorian calendar.
std::int64_t dayNumber(std::int64_t year, std::int64_t month, std::int64_t day) noexcept
{
    const std::int64_t shifted = month < 3 ? year - 1 : year;
    const std::int64_t monthFromMarch = (month + 9) % 12;
    return shifted * 365 + shifted / 4 - shifted / 100 + shifted / 400 + (monthFromMarch * 306 + 5) / 10 + day - 1;
}

// Microseconds of "yyyymmddhhmmss.mmmmmmsutc", in UTC, or of the interval "ddddddddhhmmss.mmmmmm:000".
std::optional<std::int64_t> microseconds(std::string_view text, bool& interval) noexcept
{
    if (text.size() != 25 || text[14] != '.') return std::nullopt;
    interval = text[21] == ':';
    if (!interval && text[21] != '+' && text[21] != '-') return std::nullopt;
    const auto hour = digits(text, 8, 2), minute = digits(text, 10, 2), second = digits(text, 12, 2);
    const auto fraction = digits(text, 15, 6), offset = digits(text, 22, 3);
    const auto year = digits(text, 0, 4), month = digits(text, 4, 2), day = digits(text, 6, 2);
    if (!hour || !minute || !second || !fraction || !offset || !year || !month || !day) return std::nullopt;
    const std::int64_t days = interval ? *digits(text, 0, 8) : dayNumber(*year, *month, *day);
    std::int64_t minutes = days * 1440 + *hour * 60 + *minute;
    if (!interval) minutes -= text[21] == '-' ? -*offset : *offset;
    return (minutes * 60 + *second) * 1'000'000 + *fraction;
}

Order orderOfDates(std::string_view left, std::string_view right) noexcept
{
    bool leftInterval = false, rightInterval = false;
    const auto leftTime = microseconds(left, leftInterval);
    const auto rightTime = microseconds(right, rightInterval);
    if (!leftTime || !rightTime || leftInterval != rightInterval) return std::nullopt;
    return sign(*leftTime<*rightTime, *leftTime> * rightTime);
}

bool isNumber(const QueryValue& value) noexcept
{
    return value.kind == ValueClass::Integer || value.kind == ValueClass::Real;
}

bool isText(const QueryValue& value) noexcept
{
    return value.kind == ValueClass::Text || value.kind == ValueClass::DateTime;
}

Order orderOf(const QueryValue& left, const QueryValue& right) noexcept
{
    if (isNumber(left) && isNumber(right)) return orderOfNumbers(left, right);
    if (!isText(left) || !isText(right)) return std::nullopt;
    if (left.kind == ValueClass::DateTime || right.kind == ValueClass::DateTime)
        return orderOfDates(left.text, right.text);
    const int order = left.text.compare(right.text);
    return sign(order<0, order> 0);
}

} // namespace

Truth compare(const QueryValue& left, Comparison comparison, const QueryValue& right) noexcept
{
    if (left.kind == ValueClass::Boolean && right.kind == ValueClass::Boolean) {
        if (comparison == Comparison::Equal || comparison == Comparison::NotEqual)
            return truthOf((left.boolean == right.boolean) == (comparison == Comparison::Equal));
        return Truth::Unknown; // booleans have no order
    }
    const Order order = orderOf(left, right);
    if (!order) return Truth::Unknown;
    switch (comparison) {
    case Comparison::Equal:
        return truthOf(*order == 0);
    case Comparison::NotEqual:
        return truthOf(*order != 0);
    case Comparison::Less:
        return truthOf(*order < 0);
    case Comparison::LessOrEqual:
        return truthOf(*order <= 0);
    case Comparison::Greater:
        return truthOf(*order > 0);
    case Comparison::GreaterOrEqual:
        return truthOf(*order >= 0);
    }
    return Truth::Unknown;
}

} // namespace KDV::Host
