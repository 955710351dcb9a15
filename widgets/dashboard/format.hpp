#pragma once
// The number texts of the dashboard's token table: token counts with grouped
// thousands or in a compact form, and costs in dollars.

#include <cstdint>
#include <string>

#include "payload/records.hpp"

namespace mw {

// Every digit, thousands grouped with ",": 1284310 → "1,284,310",
// -1000 → "-1,000", 999 → "999".
std::string groupedCount(std::int64_t value);

// Three significant digits with K, M, B or T, trailing zeros dropped:
// 999 → "999", 1000 → "1K", 1284310 → "1.28M", 12843100 → "12.8M". A value
// that rounds up to the next unit takes it (999950 → "1M"). Beyond 999T the
// power of ten is written out ("9.22e18").
std::string compactCount(std::int64_t value);

// Dollars and cents, the dollars grouped, rounded to the cent with halves
// away from zero: 14.375 → "$14.38", 1284.5 → "$1,284.50", -3.5 → "-$3.50".
// A cost too large for whole cents is written with its power of ten
// ("$1.2e20"); not-a-number and infinities read "—".
std::string dollarText(double value);

// The same in the compact form: "$402.18" stays, 12840.5 → "$12.8K".
std::string compactDollarText(double value);

// How the table writes its figures: every cell alike, so the columns read
// the same way. Grouped while every grouped text fits in `maxChars`
// characters, otherwise compact.
enum class NumberStyle : std::uint8_t { grouped, compact };
NumberStyle tokenNumberStyle(const WidgetTokenSummary& tokens, std::size_t maxChars);

std::string countText(std::int64_t value, NumberStyle style);

// A history day "2026-11-09" as the chart's axis writes it: "Nov 9". A text
// that is not such a date is returned as it is.
std::string shortDayText(const std::string& day);
std::string costText(double value, NumberStyle style);

}  // namespace mw
