#pragma once
// Whole-number rounding for the model's texts.

#include <cmath>
#include <cstdint>

namespace mw {

// Nearest whole number, halves away from zero. Not-a-number reads as 0 and
// values beyond ±2^53 are held there, so the conversion is always defined.
inline std::int64_t roundHalfAway(double value) {
    constexpr double kLimit = 9007199254740992.0;  // 2^53
    if (std::isnan(value)) return 0;
    const double rounded = std::round(value);
    if (rounded > kLimit) return static_cast<std::int64_t>(kLimit);
    if (rounded < -kLimit) return -static_cast<std::int64_t>(kLimit);
    return static_cast<std::int64_t>(rounded);
}

// Toward zero, with the same guards.
inline std::int64_t truncateTowardZero(double value) { return roundHalfAway(std::trunc(value)); }

}  // namespace mw
