#include "widgets/dashboard/format.hpp"

#include <array>
#include <cmath>
#include <optional>
#include <cstdio>
#include <string_view>

namespace mw {

namespace {

// |value| without overflow for the most negative value.
std::uint64_t magnitude(std::int64_t value) {
    return value < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
}

std::string groupedDigits(std::uint64_t value) {
    const std::string digits = std::to_string(value);
    std::string out;
    out.reserve(digits.size() + digits.size() / 3);
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
        out += digits[i];
    }
    return out;
}

// "1.20" → "1.2", "3.00" → "3".
std::string trimmedFraction(std::string text) {
    if (text.find('.') == std::string::npos) return text;
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
    return text;
}

// Three significant digits and a power of ten: "9.22e18".
std::string scientific(double value) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%.2e", value);
    const std::string_view text(buffer);
    const auto e = text.find('e');
    if (e == std::string_view::npos) return std::string(text);
    std::string exponent(text.substr(e + 1));
    if (!exponent.empty() && exponent.front() == '+') exponent.erase(0, 1);
    while (exponent.size() > 1 && exponent.front() == '0') exponent.erase(0, 1);
    return trimmedFraction(std::string(text.substr(0, e))) + "e" + exponent;
}

// Scaled to K, M, B or T with at most three significant digits, rounded half
// up in integers so that 1,285,000 reads 1.29M and not a binary near miss.
std::string compactMagnitude(std::uint64_t value) {
    if (value < 1000) return std::to_string(value);
    constexpr std::array<std::pair<std::uint64_t, char>, 4> kUnits{
        {{1'000, 'K'}, {1'000'000, 'M'}, {1'000'000'000, 'B'}, {1'000'000'000'000, 'T'}}};
    for (const auto& [unit, suffix] : kUnits) {
        if (value / unit >= 1000) continue;
        const std::uint64_t whole = value / unit;
        for (int decimals = whole < 10 ? 2 : whole < 100 ? 1 : 0; decimals >= 0; --decimals) {
            std::uint64_t divisor = unit;
            for (int i = 0; i < decimals; ++i) divisor /= 10;
            const std::uint64_t scaled = (value / divisor) + ((value % divisor) * 2 >= divisor ? 1 : 0);
            if (scaled >= 1000) continue;  // rounded up into a fourth digit
            std::uint64_t power = 1;
            for (int i = 0; i < decimals; ++i) power *= 10;
            char buffer[32];
            std::snprintf(buffer, sizeof buffer, "%llu.%0*llu", static_cast<unsigned long long>(scaled / power),
                          decimals, static_cast<unsigned long long>(scaled % power));
            return trimmedFraction(decimals == 0 ? std::to_string(scaled) : std::string(buffer)) + suffix;
        }
        // 999.5 and up of this unit: the next unit reads 1.
    }
    return scientific(static_cast<double>(value));
}

// Whole cents of |value|, or nothing when they do not fit an integer.
std::optional<std::uint64_t> cents(double value) {
    const double c = std::round(std::fabs(value) * 100);
    if (!(c < 9.0e18)) return std::nullopt;
    return static_cast<std::uint64_t>(c);
}

}  // namespace

std::string groupedCount(std::int64_t value) {
    return (value < 0 ? "-" : "") + groupedDigits(magnitude(value));
}

std::string compactCount(std::int64_t value) {
    return (value < 0 ? "-" : "") + compactMagnitude(magnitude(value));
}

std::string dollarText(double value) {
    if (!std::isfinite(value)) return "\xE2\x80\x94";
    const auto c = cents(value);
    if (!c) return (value < 0 ? "-$" : "$") + scientific(std::fabs(value));
    char fraction[8];
    std::snprintf(fraction, sizeof fraction, ".%02llu", static_cast<unsigned long long>(*c % 100));
    // A cost that rounds to nothing carries no sign.
    return (value < 0 && *c > 0 ? "-$" : "$") + groupedDigits(*c / 100) + fraction;
}

std::string compactDollarText(double value) {
    if (!std::isfinite(value)) return "\xE2\x80\x94";
    if (std::fabs(value) < 1000) return dollarText(value);
    const auto c = cents(value);
    if (!c) return (value < 0 ? "-$" : "$") + scientific(std::fabs(value));
    const std::uint64_t dollars = *c / 100 + (*c % 100 >= 50 ? 1 : 0);
    return (value < 0 ? "-$" : "$") + compactMagnitude(dollars);
}

NumberStyle tokenNumberStyle(const WidgetTokenSummary& t, std::size_t maxChars) {
    for (const std::int64_t count :
         {t.todayInput, t.todayOutput, t.todayCache, t.monthInput, t.monthOutput, t.monthCache})
        if (groupedCount(count).size() > maxChars) return NumberStyle::compact;
    for (const double cost : {t.todayCost, t.monthCost})
        if (dollarText(cost).size() > maxChars) return NumberStyle::compact;
    return NumberStyle::grouped;
}

std::string countText(std::int64_t value, NumberStyle style) {
    return style == NumberStyle::grouped ? groupedCount(value) : compactCount(value);
}

std::string costText(double value, NumberStyle style) {
    return style == NumberStyle::grouped ? dollarText(value) : compactDollarText(value);
}

std::string shortDayText(const std::string& day) {
    static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto digits = [&day](std::size_t from, std::size_t count) {
        int value = 0;
        for (std::size_t i = from; i < from + count; ++i) {
            if (day[i] < '0' || day[i] > '9') return -1;
            value = value * 10 + (day[i] - '0');
        }
        return value;
    };
    if (day.size() != 10 || day[4] != '-' || day[7] != '-' || digits(0, 4) < 0) return day;
    const int month = digits(5, 2), dayOfMonth = digits(8, 2);
    if (month < 1 || month > 12 || dayOfMonth < 1 || dayOfMonth > 31) return day;
    return std::string(kMonths[month - 1]) + " " + std::to_string(dayOfMonth);
}

}  // namespace mw
