#pragma once
// The short texts of the Focus widget: percentages and reset countdowns. The
// upper-cased tool name comes from platform/text.hpp.

#include <string>
#include <string_view>

#include "platform/text.hpp"

namespace mw {

// A percentage as a whole number: clamped to 0..999, the fraction dropped.
// Not-a-number reads 0.
long long percentValue(double percent);

// percentValue followed by "%": 42.9 → "42%", 1500 → "999%", −3 → "0%".
std::string percentText(double percent);

// Time until a reset as hours and minutes, "3:05", "0:45"; "now" under a
// whole minute (and for a reset already past). Seconds are rounded to whole
// seconds first (halves away from zero), then truncated to minutes.
std::string countdownText(double seconds);

}  // namespace mw
