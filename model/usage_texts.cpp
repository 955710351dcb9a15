#include "model/usage_texts.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace mw {

long long percentValue(double percent) {
    if (std::isnan(percent)) return 0;
    return static_cast<long long>(std::clamp(percent, 0.0, 999.0));
}

std::string percentText(double percent) {
    return std::to_string(percentValue(percent)) + "%";
}

std::string countdownText(double seconds) {
    if (std::isnan(seconds)) return "now";
    // Keeps the integer conversion defined; a century is far beyond any reset.
    constexpr double kLongest = 100.0 * 366 * 86400;
    const double whole = std::round(std::clamp(seconds, -kLongest, kLongest));
    const long long minutes = static_cast<long long>(whole / 60);
    if (minutes < 1) return "now";
    char text[32];
    std::snprintf(text, sizeof text, "%lld:%02lld", minutes / 60, minutes % 60);
    return text;
}

}  // namespace mw
