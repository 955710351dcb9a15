#include "platform/date.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace mw {
namespace {

// Days from 1970-01-01 to the civil date y-m-d (proleptic Gregorian).
constexpr std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

struct Civil {
    std::int64_t year;
    unsigned month, day;
};

constexpr Civil civilFromDays(std::int64_t z) {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const std::int64_t y = static_cast<std::int64_t>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    return {y + (m <= 2), m, d};
}

// Like the platform's calendar, dates before 1582-10-15 are Julian, which is
// what makes the distant past (-63114076800 s) read 0001-01-01T00:00:00Z.
constexpr std::int64_t kGregorianStartDay = -141427;  // 1582-10-15 in days from 1970

constexpr std::int64_t daysFromJulian(std::int64_t y, unsigned m, unsigned d) {
    const std::int64_t a = (14 - m) / 12;
    const std::int64_t y2 = y + 4800 - a;
    const std::int64_t m2 = m + 12 * a - 3;
    return d + (153 * m2 + 2) / 5 + 365 * y2 + y2 / 4 - 32083 - 2440588;
}

constexpr Civil julianFromDays(std::int64_t days) {
    const std::int64_t c = days + 2440588 + 32082;
    const std::int64_t d = (4 * c + 3) / 1461;
    const std::int64_t e = c - 1461 * d / 4;
    const std::int64_t m = (5 * e + 2) / 153;
    return {d - 4800 + m / 10, static_cast<unsigned>(m + 3 - 12 * (m / 10)),
            static_cast<unsigned>(e - (153 * m + 2) / 5 + 1)};
}

constexpr bool isJulian(std::int64_t y, unsigned m, unsigned d) {
    return y < 1582 || (y == 1582 && (m < 10 || (m == 10 && d < 15)));
}

constexpr bool isLeap(std::int64_t y) {
    if (y < 1582) return y % 4 == 0;
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

constexpr unsigned daysInMonth(std::int64_t y, unsigned m) {
    constexpr unsigned table[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && isLeap(y) ? 29 : table[m - 1];
}

constexpr std::int64_t daysFromDate(std::int64_t y, unsigned m, unsigned d) {
    return isJulian(y, m, d) ? daysFromJulian(y, m, d) : daysFromCivil(y, m, d);
}

constexpr Civil dateFromDays(std::int64_t days) {
    return days < kGregorianStartDay ? julianFromDays(days) : civilFromDays(days);
}

static_assert(daysFromCivil(1582, 10, 15) == kGregorianStartDay);
static_assert(daysFromJulian(1582, 10, 4) == kGregorianStartDay - 1);

// Reads exactly `count` ASCII digits at text[pos].
std::optional<int> digits(std::string_view text, std::size_t pos, std::size_t count) {
    if (pos + count > text.size()) return std::nullopt;
    int value = 0;
    for (std::size_t i = pos; i < pos + count; ++i) {
        const char c = text[i];
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

// The instants that the text form can hold: 0001-01-01T00:00:00Z to
// 9999-12-31T23:59:59Z, in seconds since 1970.
constexpr double kFirstWritable = -62135769600.0, kLastWritable = 253402300799.0;

}  // namespace

std::optional<Date> parseISO8601(std::string_view t) {
    // 0         1
    // 0123456789012345678
    // YYYY-MM-DDTHH:MM:SS
    if (t.size() < 20) return std::nullopt;
    if (t[4] != '-' || t[7] != '-' || (t[10] != 'T' && t[10] != 't') || t[13] != ':' || t[16] != ':')
        return std::nullopt;
    const auto year = digits(t, 0, 4), month = digits(t, 5, 2), day = digits(t, 8, 2);
    const auto hour = digits(t, 11, 2), minute = digits(t, 14, 2), second = digits(t, 17, 2);
    if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
    if (*month < 1 || *month > 12) return std::nullopt;
    if (*day < 1 || static_cast<unsigned>(*day) > daysInMonth(*year, static_cast<unsigned>(*month)))
        return std::nullopt;
    if (*hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
    if (*year == 1582 && *month == 10 && *day > 4 && *day < 15) return std::nullopt;  // the calendar's gap

    int offsetSeconds = 0;
    const std::string_view zone = t.substr(19);
    if (zone == "Z" || zone == "z") {
        offsetSeconds = 0;
    } else if (zone.size() == 6 && (zone[0] == '+' || zone[0] == '-') && zone[3] == ':') {
        const auto oh = digits(zone, 1, 2), om = digits(zone, 4, 2);
        if (!oh || !om || *oh > 23 || *om > 59) return std::nullopt;
        offsetSeconds = (*oh * 3600 + *om * 60) * (zone[0] == '-' ? -1 : 1);
    } else {
        return std::nullopt;  // no zone, a fraction, or trailing text
    }

    const std::int64_t days = daysFromDate(*year, static_cast<unsigned>(*month), static_cast<unsigned>(*day));
    const auto unix = static_cast<double>(days * 86400 + *hour * 3600 + *minute * 60 + *second - offsetSeconds);
    // Year 0, or an offset that carries a date past either end, names an
    // instant that could not be written back.
    if (unix < kFirstWritable || unix > kLastWritable) return std::nullopt;
    return Date::fromUnix(unix);
}

std::string formatISO8601(Date date) {
    const double unixSeconds = std::floor(date.unixSeconds());
    // Outside years 1 to 9999 the text form has no meaning; clamp instead of overflowing.
    if (std::isnan(unixSeconds)) return formatISO8601(kDistantPast);
    auto total = static_cast<std::int64_t>(std::clamp(unixSeconds, kFirstWritable, kLastWritable));
    std::int64_t days = total / 86400;
    std::int64_t rest = total % 86400;
    if (rest < 0) {
        rest += 86400;
        days -= 1;
    }
    const Civil c = dateFromDays(days);
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%04lld-%02u-%02uT%02lld:%02lld:%02lldZ", static_cast<long long>(c.year),
                  c.month, c.day, static_cast<long long>(rest / 3600), static_cast<long long>(rest / 60 % 60),
                  static_cast<long long>(rest % 60));
    return buffer;
}

}  // namespace mw
