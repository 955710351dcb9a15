#pragma once
// Dates are seconds since 2001-01-01T00:00:00Z held in a double, like the
// application's own clock, so the payload's instants compare the same way here.

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace mw {

struct Date {
    double seconds = 0;  // since 2001-01-01T00:00:00Z

    static constexpr Date fromUnix(double unixSeconds) { return Date{unixSeconds - kUnixOffset}; }
    constexpr double unixSeconds() const { return seconds + kUnixOffset; }

    auto operator<=>(const Date&) const = default;
    bool operator==(const Date&) const = default;

    // 1970-01-01 lies this many seconds before the reference date.
    static constexpr double kUnixOffset = 978307200;
};

// 0001-01-01T00:00:00Z: what a never-written payload carries.
inline constexpr Date kDistantPast{-63114076800.0};

constexpr Date operator+(Date d, double s) { return Date{d.seconds + s}; }
constexpr Date operator-(Date d, double s) { return Date{d.seconds - s}; }
constexpr double operator-(Date a, Date b) { return a.seconds - b.seconds; }

// Internet date-time: YYYY-MM-DDTHH:MM:SS then Z or ±HH:MM. Fractional
// seconds, a missing zone and out-of-range fields are refused.
std::optional<Date> parseISO8601(std::string_view text);
// Always UTC with Z, whole seconds (a fraction is floored).
std::string formatISO8601(Date date);

}  // namespace mw
