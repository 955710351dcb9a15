#pragma once
// How the drawing layer resolves a `Color` (platform/color.hpp) for an
// appearance, and the contrast arithmetic behind its legibility rules.
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
// A plain colour's contrast floor is a quarter step higher on the dark
// surface, where the ratio flatters near-black colours.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/color.hpp"

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

// The sRGB value of `color` in `appearance`: a semantic colour takes the
// appearance's value with its alpha scaled by the colour's; a plain colour
// with a contrast floor is moved to reach it (see above). Components are
// clamped to 0..1.
RGBA resolve(const Color& color, Appearance appearance);

}  // namespace mw::render
