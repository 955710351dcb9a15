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

constexpr bool isLeap(std::int64_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

constexpr unsigned daysInMonth(std::int64_t y, unsigned m) {
    constexpr unsigned table[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && isLeap(y) ? 29 : table[m - 1];
}

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

    const std::int64_t days = daysFromCivil(*year, static_cast<unsigned>(*month), static_cast<unsigned>(*day));
    const std::int64_t unix = days * 86400 + *hour * 3600 + *minute * 60 + *second - offsetSeconds;
    return Date::fromUnix(static_cast<double>(unix));
}

std::string formatISO8601(Date date) {
    const double unixSeconds = std::floor(date.unixSeconds());
    // Outside years 1 to 9999 the text form has no meaning; clamp instead of overflowing.
    constexpr double kFirst = -62135596800.0, kLast = 253402300799.0;
    if (std::isnan(unixSeconds)) return formatISO8601(kDistantPast);
    auto total = static_cast<std::int64_t>(std::clamp(unixSeconds, kFirst, kLast));
    std::int64_t days = total / 86400;
    std::int64_t rest = total % 86400;
    if (rest < 0) {
        rest += 86400;
        days -= 1;
    }
    const Civil c = civilFromDays(days);
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%04lld-%02u-%02uT%02lld:%02lld:%02lldZ", static_cast<long long>(c.year),
                  c.month, c.day, static_cast<long long>(rest / 3600), static_cast<long long>(rest / 60 % 60),
                  static_cast<long long>(rest % 60));
    return buffer;
}

}  // namespace mw
