#pragma once
// Colours of the drawing layer: a plain sRGB value with opacity, or one of the
// system's semantic colours (label hierarchy, accent, window background) that
// are resolved for an appearance only when a display list is painted.
//
// The label hierarchy keeps AppKit's shape (black or white at falling
// opacities) but with opacities chosen for small text on the window colour:
// secondary reaches at least 4.5:1 and tertiary at least 3:1 against the
// window background (and against a card tinted with primary at 0.05) in both
// appearances, while each stays visibly dimmer than the one above it.
//
//   name              light                      dark
//   primary           black  at 0.85             white at 0.85
//   secondary         black  at 0.62             white at 0.62
//   tertiary          black  at 0.47             white at 0.44
//   quaternary        black  at 0.10             white at 0.10
//   accent            #007AFF                    #0A84FF
//   windowBackground  #ECECEC                    #323232
//
// A plain colour may carry a contrast floor: when painted, a colour that
// stands out from the window background by less than the floor is made
// lighter (dark appearance) or darker (light appearance) just enough to
// reach it, keeping its hue. On the dark surface the floor is a quarter
// step higher, where the ratio flatters near-black colours. Brand colours use it so that a brand of pure
// black or pure white never vanishes.

#include <cstdint>
#include <string>
#include <string_view>

namespace mw::render {

enum class Appearance { light, dark };

// Raw values "light" / "dark"; parse returns false for anything else.
std::string_view appearanceName(Appearance appearance);
bool parseAppearance(std::string_view text, Appearance& out);

// A resolved colour: sRGB components and opacity, each 0..1.
struct RGBA {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 1;
    bool operator==(const RGBA&) const = default;
};

// "#RRGGBBAA", upper-case hex, each channel rounded to the nearest of 0..255.
std::string toHex(RGBA color);

// WCAG relative luminance of the opaque colour (alpha ignored).
double relativeLuminance(RGBA color);
// WCAG contrast ratio (1 to 21) of `foreground`, composited over the opaque
// `background` by its alpha, against that background.
double contrastRatio(RGBA foreground, RGBA background);
// The opaque colour behind every widget in `appearance`.
RGBA surfaceColor(Appearance appearance);
// `color` with its HSL lightness moved away from `background` just enough
// for an opaque contrast of `ratio` (as far as black or white allows);
// unchanged when it already reaches it. Alpha is kept.
RGBA withContrastFloor(RGBA color, RGBA background, double ratio);

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
    static constexpr Color rgb(double r, double g, double b, double a = 1.0) {
        return Color(Kind::rgb, r, g, b, a);
    }
    // 0..255 components, e.g. rgb8(217, 119, 87).
    static constexpr Color rgb8(int r, int g, int b, double a = 1.0) {
        return rgb(r / 255.0, g / 255.0, b / 255.0, a);
    }
    static constexpr Color white(double a = 1.0) { return rgb(1, 1, 1, a); }
    static constexpr Color black(double a = 1.0) { return rgb(0, 0, 0, a); }
    static constexpr Color gray(double level, double a = 1.0) { return rgb(level, level, level, a); }
    static constexpr Color clear() { return rgb(0, 0, 0, 0); }

    static constexpr Color primary() { return Color(Kind::primary); }
    static constexpr Color secondary() { return Color(Kind::secondary); }
    static constexpr Color tertiary() { return Color(Kind::tertiary); }
    static constexpr Color quaternary() { return Color(Kind::quaternary); }
    static constexpr Color accent() { return Color(Kind::accent); }
    static constexpr Color windowBackground() { return Color(Kind::windowBackground); }

    // The same colour with its opacity multiplied by `factor` (0..1).
    constexpr Color withOpacity(double factor) const {
        Color c = *this;
        c.opacity_ *= factor;
        return c;
    }

    // A plain colour that, when painted, is adjusted to stand out from the
    // window background by at least `ratio` (see above). Semantic colours
    // are returned unchanged.
    constexpr Color withContrastFloor(double ratio) const {
        Color c = *this;
        if (kind_ == Kind::rgb) c.contrastFloor_ = ratio;
        return c;
    }
    constexpr double contrastFloor() const { return contrastFloor_; }

    constexpr Kind kind() const { return kind_; }
    constexpr bool isSemantic() const { return kind_ != Kind::rgb; }
    // The extra opacity applied on top of the base colour (1 unless withOpacity was used).
    constexpr double opacity() const { return opacity_; }

    // The sRGB value in `appearance`: the base colour with its alpha times opacity().
    RGBA resolve(Appearance appearance) const;

    bool operator==(const Color&) const = default;

private:
    constexpr explicit Color(Kind kind, double r = 0, double g = 0, double b = 0, double a = 1)
        : kind_(kind), r_(r), g_(g), b_(b), a_(a) {}

    Kind kind_ = Kind::rgb;
    double r_ = 0;
    double g_ = 0;
    double b_ = 0;
    double a_ = 0;
    double opacity_ = 1;
    double contrastFloor_ = 0;
};

// Raw name of a colour kind: "rgb", "primary", "secondary", …
std::string_view colorKindName(Color::Kind kind);

}  // namespace mw::render
