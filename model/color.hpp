#pragma once
// The model's colour value: either a plain sRGB colour with opacity, or one of
// the appearance-dependent styles (primary, secondary, tertiary, accent,
// window background) that only the drawing layer can resolve. Both are values
// of one type so that colour rules can return either.

#include <cstddef>
#include <cstdint>

#include "payload/hash.hpp"

namespace mw {

enum class ColorStyle : std::uint8_t { rgb, primary, secondary, tertiary, accent, windowBackground };

struct Color {
    ColorStyle style = ColorStyle::rgb;
    double red = 0;  // sRGB components in 0..1; unused by the styles
    double green = 0;
    double blue = 0;
    double opacity = 1;

    static constexpr Color rgb(double red, double green, double blue, double opacity = 1) {
        return Color{ColorStyle::rgb, red, green, blue, opacity};
    }
    static constexpr Color styled(ColorStyle style, double opacity = 1) { return Color{style, 0, 0, 0, opacity}; }
    static constexpr Color primary(double opacity = 1) { return styled(ColorStyle::primary, opacity); }
    static constexpr Color secondary(double opacity = 1) { return styled(ColorStyle::secondary, opacity); }
    static constexpr Color tertiary(double opacity = 1) { return styled(ColorStyle::tertiary, opacity); }
    static constexpr Color accent(double opacity = 1) { return styled(ColorStyle::accent, opacity); }
    static constexpr Color windowBackground(double opacity = 1) {
        return styled(ColorStyle::windowBackground, opacity);
    }

    constexpr bool isStyle() const { return style != ColorStyle::rgb; }
    constexpr Color withOpacity(double value) const {
        Color copy = *this;
        copy.opacity = value;
        return copy;
    }

    bool operator==(const Color&) const = default;
};

// The warning amber of the freshness mark: data ten minutes old or older.
constexpr Color freshnessAmber() { return Color::rgb(0.98, 0.62, 0.16); }

// The progress colour of a usage ring: the application's danger level 2 is a
// warning, 3 is critical; every other level keeps the brand colour.
constexpr Color usageRingColor(std::int64_t dangerLevel, Color brand) {
    if (dangerLevel == 2) return Color::rgb(0.98, 0.66, 0.18);
    if (dangerLevel == 3) return Color::rgb(0.93, 0.30, 0.30);
    return brand;
}

}  // namespace mw

template <>
struct std::hash<mw::Color> {
    std::size_t operator()(const mw::Color& c) const noexcept {
        return mw::hashOf(static_cast<int>(c.style), c.red, c.green, c.blue, c.opacity);
    }
};
