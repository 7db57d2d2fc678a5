// Dates and intervals: the 25 characters of DSP0004 and their function table.
#include "broker/Calls.h"
#include "broker/DateTimeText.h"

#include <cstdio>
#include <ctime>

namespace KDV::Host {
namespace {

constexpr std::uint64_t microsecondsPerSecond = 1000000;

// Days since 1970-01-01 of a date of the Gregorian calendar.
std::int64_t daysOf(std::int64_t year, unsigned month, unsigned day)
{
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const auto yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month + (month > 2 ? -3u : 9u)) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

bool digitsAt(const char* text, unsigned from, unsigned count, unsigned& value)
{
    value = 0;
    for (unsigned i = from; i < from + count; ++i) {
        if (text[i] < '0' || text[i] > '9') return false;
        value = value * 10 + static_cast<unsigned>(text[i] - '0');
    }
    return true;
}

} // namespace

bool isDateTimeText(std::string_view text, bool strict)
{
    if (text.size() != 25) return false;
    const char sign = text[21];
    if (sign != '+' && sign != '-' && sign != ':') return false;
    if (!strict) return true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool separator = i == 14 || i == 21;
        const bool digit = (text[i] >= '0' && text[i] <= '9') || text[i] == '*';
        if (i == 14 ? text[i] != '.' : !separator && !digit) return false;
    }
    if (sign == ':') return text.substr(22) == "000";
    unsigned month = 0;
    unsigned day = 0;
    const bool known = digitsAt(text.data(), 4, 2, month) && digitsAt(text.data(), 6, 2, day);
    return !known || (month >= 1 && month <= 12 && day >= 1 && day <= 31);
}

bool dateTimeToBinary(const char* text, std::uint64_t& microseconds)
{
    unsigned micro = 0;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    if (!digitsAt(text, 8, 2, hour) || !digitsAt(text, 10, 2, minute) || !digitsAt(text, 12, 2, second) ||
        !digitsAt(text, 15, 6, micro))
        return false;
    std::int64_t days = 0;
    std::int64_t offset = 0;
    if (text[21] == ':') {
        unsigned written = 0;
        if (!digitsAt(text, 0, 8, written)) return false;
        days = written;
    } else {
        unsigned year = 0;
        unsigned month = 0;
        unsigned day = 0;
        unsigned minutes = 0;
        if (!digitsAt(text, 0, 4, year) || !digitsAt(text, 4, 2, month) || !digitsAt(text, 6, 2, day) ||
            !digitsAt(text, 22, 3, minutes))
            return false;
        days = daysOf(year, month, day);
        offset = (text[21] == '-' ? -1 : 1) * static_cast<std::int64_t>(minutes) * 60;
    }
    const std::int64_t seconds = days * 86400 + hour * 3600ll + minute * 60ll + second - offset;
    if (seconds < 0) return false;
    microseconds = static_cast<std::uint64_t>(seconds) * microsecondsPerSecond + micro;
    return true;
}

void dateTimeFromBinary(std::uint64_t microseconds, bool interval, bool localTime, char (&text)[26])
{
    const std::uint64_t seconds = microseconds / microsecondsPerSecond;
    const auto micro = static_cast<unsigned>(microseconds % microsecondsPerSecond);
    char buffer[64];
    if (interval) {
        const auto days = static_cast<unsigned>(seconds / 86400 % 100000000);
        const auto rest = static_cast<unsigned>(seconds % 86400);
        std::snprintf(buffer, sizeof buffer, "%08u%02u%02u%02u.%06u:000", days, rest / 3600, rest / 60 % 60, rest % 60,
                      micro);
    } else {
        const auto when = static_cast<std::time_t>(seconds);
        std::tm parts{};
        if (!(localTime ? localtime_r(&when, &parts) : gmtime_r(&when, &parts)) || parts.tm_year + 1900 > 9999)
            parts = std::tm{};
        const long offset = localTime ? parts.tm_gmtoff / 60 : 0;
        std::snprintf(buffer, sizeof buffer, "%04d%02d%02d%02d%02d%02d.%06u%c%03ld", parts.tm_year + 1900,
                      parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec, micro,
                      offset < 0 ? '-' : '+', offset < 0 ? -offset : offset);
    }
    std::snprintf(text, sizeof text, "%.25s", buffer);
}

namespace {

CMPIUint64 getBinaryFormat(const CMPIDateTime* self, CMPIStatus* status)
{
    return answer<DateTimeObject, CMPIUint64>(self, status, 0, [](DateTimeObject& date, CMPIStatus& outcome) {
        std::uint64_t microseconds = 0;
        if (!dateTimeToBinary(date.text, microseconds)) outcome = failed(CMPI_RC_ERR_FAILED);
        return static_cast<CMPIUint64>(microseconds);
    });
}

CMPIString* getStringFormat(const CMPIDateTime* self, CMPIStatus* status)
{
    return answer<DateTimeObject, CMPIString*>(self, status, nullptr, [](DateTimeObject& date, CMPIStatus&) {
        if (!date.lentText) date.lentText = makeString(Placement::inside(date.head, date.memory), {date.text, 25});
        return date.lentText;
    });
}

CMPIBoolean isInterval(const CMPIDateTime* self, CMPIStatus* status)
{
    return answer<DateTimeObject, CMPIBoolean>(self, status, 0, [](DateTimeObject& date, CMPIStatus&) {
        return static_cast<CMPIBoolean>(date.text[21] == ':');
    });
}

} // namespace

CMPIDateTimeFT dateTimeTable(Profile profile)
{
    return {objectTableVersion(profile),
            release<DateTimeObject, CMPIDateTime>,
            cloneObject<DateTimeObject, CMPIDateTime>,
            getBinaryFormat,
            getStringFormat,
            isInterval};
}

} // namespace KDV::Host
