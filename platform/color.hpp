#pragma once
// The one colour value of the code base: a plain sRGB colour, or one of the
// system's semantic colours (label hierarchy, accent, window background) that
// the drawing layer resolves for an appearance only when a display list is
// painted (render/color.hpp holds their values). Colour rules in the model
// return either kind, and views draw with the same values.
//
// Opacity has two verbs: `withAlpha` replaces a colour's opacity, and
// `withOpacity` multiplies it (fading something already translucent keeps
// it proportionally fainter). A semantic colour's alpha scales the alpha the
// appearance gives it. Equality compares the resulting value, so a colour
// equals itself however it was built: rgb(r, g, b, 0.5) and
// rgb(r, g, b).withOpacity(0.5) are the same colour.
//
// A plain colour may carry a contrast floor: when painted, a colour that
// stands out from the window background by less than the floor is made
// lighter (dark appearance) or darker (light appearance) just enough to reach
// it, keeping its hue. Brand and status colours use `legible`, so that a
// brand of pure black or pure white never vanishes.

#include <cstdint>

namespace mw {

class Color {
public:
    enum class Kind : std::uint8_t {
        rgb,
        primary,
        secondary,
        tertiary,
        quaternary,
        accent,
        windowBackground,
    };

    // Transparent black.
    constexpr Color() = default;

    // Components and opacity in 0..1 (values outside are clamped at paint time).
    static constexpr Color rgb(double r, double g, double b, double a = 1.0) { return Color(Kind::rgb, r, g, b, a); }
    // 0..255 components, e.g. rgb8(217, 119, 87).
    static constexpr Color rgb8(int r, int g, int b, double a = 1.0) {
        return rgb(r / 255.0, g / 255.0, b / 255.0, a);
    }
    static constexpr Color white(double a = 1.0) { return rgb(1, 1, 1, a); }
    static constexpr Color black(double a = 1.0) { return rgb(0, 0, 0, a); }
    static constexpr Color gray(double level, double a = 1.0) { return rgb(level, level, level, a); }
    static constexpr Color clear() { return rgb(0, 0, 0, 0); }
    // A plain colour of the model's own (a brand or a status), kept legible
    // against the window background in either appearance.
    static constexpr Color legible(double r, double g, double b, double a = 1.0) {
        return rgb(r, g, b, a).withContrastFloor(kLegibleContrast);
    }

    static constexpr Color primary(double a = 1.0) { return Color(Kind::primary, 0, 0, 0, a); }
    static constexpr Color secondary(double a = 1.0) { return Color(Kind::secondary, 0, 0, 0, a); }
    static constexpr Color tertiary(double a = 1.0) { return Color(Kind::tertiary, 0, 0, 0, a); }
    static constexpr Color quaternary(double a = 1.0) { return Color(Kind::quaternary, 0, 0, 0, a); }
    static constexpr Color accent(double a = 1.0) { return Color(Kind::accent, 0, 0, 0, a); }
    static constexpr Color windowBackground(double a = 1.0) { return Color(Kind::windowBackground, 0, 0, 0, a); }

    // The same colour with opacity `alpha` in place of its own.
    constexpr Color withAlpha(double alpha) const {
        Color c = *this;
        c.alpha_ = alpha;
        return c;
    }
    // The same colour with its opacity multiplied by `factor` (0..1).
    constexpr Color withOpacity(double factor) const { return withAlpha(alpha_ * factor); }

    // A plain colour that, when painted, is adjusted to stand out from the
    // window background by at least `ratio`; semantic colours are returned
    // unchanged.
    constexpr Color withContrastFloor(double ratio) const {
        Color c = *this;
        if (kind_ == Kind::rgb) c.contrastFloor_ = ratio;
        return c;
    }

    constexpr Kind kind() const { return kind_; }
    constexpr bool isSemantic() const { return kind_ != Kind::rgb; }
    // sRGB components; zero for semantic colours.
    constexpr double red() const { return red_; }
    constexpr double green() const { return green_; }
    constexpr double blue() const { return blue_; }
    constexpr double alpha() const { return alpha_; }
    constexpr double contrastFloor() const { return contrastFloor_; }

    bool operator==(const Color&) const = default;

    // The floor `legible` sets: enough that a brand of pure black shows on
    // the dark surface and pure white on the light one.
    static constexpr double kLegibleContrast = 1.5;

private:
    constexpr Color(Kind kind, double r, double g, double b, double a)
        : kind_(kind), red_(r), green_(g), blue_(b), alpha_(a) {}

    Kind kind_ = Kind::rgb;
    double red_ = 0;
    double green_ = 0;
    double blue_ = 0;
    double alpha_ = 0;
    double contrastFloor_ = 0;
};

}  // namespace mw
