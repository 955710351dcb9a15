// Legibility floors of the colours the widgets draw with: the label
// hierarchy on the widget surface and on a dashboard card, and brand colours
// held off the surface in both appearances.

#include <gtest/gtest.h>

#include "model/brand.hpp"
#include "model/pace.hpp"
#include "render/color.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {
namespace {

using render::Appearance;
using render::RGBA;

constexpr Appearance kAppearances[] = {Appearance::light, Appearance::dark};

// `top` composited over the opaque `bottom`.
RGBA over(RGBA top, RGBA bottom) {
    return {top.r * top.a + bottom.r * (1 - top.a), top.g * top.a + bottom.g * (1 - top.a),
            top.b * top.a + bottom.b * (1 - top.a), 1};
}

TEST(Contrast, LabelHierarchyMeetsItsFloorsAndStaysDistinct) {
    for (const auto appearance : kAppearances) {
        const RGBA surface = render::surfaceColor(appearance);
        // A dashboard card: the surface tinted with primary at 0.05.
        const RGBA card = over(resolve(Color::primary().withOpacity(0.05), appearance), surface);
        for (const RGBA background : {surface, card}) {
            const auto ratio = [&](Color c) { return render::contrastRatio(resolve(c, appearance), background); };
            const double primary = ratio(Color::primary());
            const double secondary = ratio(Color::secondary());
            const double tertiary = ratio(Color::tertiary());
            const std::string where{render::appearanceName(appearance)};
            EXPECT_GE(secondary, 4.5) << where;
            EXPECT_GE(tertiary, 3.0) << where;
            // Each level visibly dimmer than the one above it.
            EXPECT_GT(primary / secondary, 1.3) << where;
            EXPECT_GT(secondary / tertiary, 1.3) << where;
        }
    }
}

TEST(Contrast, BrandColoursAreAdjustedOnlyWhenTheyVanish) {
    struct Case {
        const char* hex;
        Appearance appearance;
        bool adjusted;
    };
    const Case cases[] = {
        {"000000", Appearance::dark, true},   {"FFFFFF", Appearance::light, true},
        {"000000", Appearance::light, false}, {"FFFFFF", Appearance::dark, false},
        {"FFF4B0", Appearance::light, true},  {"1B1030", Appearance::dark, true},
        {"D97757", Appearance::light, false}, {"D97757", Appearance::dark, false},
        {"6E40C9", Appearance::dark, false},  {"FF8A4C", Appearance::light, false},
        {"00B2FF", Appearance::light, false}, {"10A37F", Appearance::dark, false},
    };
    for (const auto& c : cases) {
        const Color brand = *colorFromHex(c.hex);
        const RGBA as = {brand.red(), brand.green(), brand.blue(), 1};
        const RGBA drawn = resolve(brand, c.appearance);
        const RGBA surface = render::surfaceColor(c.appearance);
        const std::string where = std::string(c.hex) + " " + std::string(render::appearanceName(c.appearance));
        if (!c.adjusted) {
            EXPECT_EQ(drawn, as) << where;
            continue;
        }
        const double ratio = render::contrastRatio(drawn, surface);
        EXPECT_GE(ratio, 1.5) << where;
        EXPECT_LT(ratio, 1.85) << where << ": moved further than needed";
        // Lighter on the dark surface, darker on the light one.
        const bool lighter = render::relativeLuminance(drawn) > render::relativeLuminance(as);
        EXPECT_EQ(lighter, c.appearance == Appearance::dark) << where;
    }
}

TEST(Contrast, AdjustmentKeepsHueAndOpacity) {
    // A pale yellow on the light surface becomes a darker yellow, not a grey.
    const RGBA drawn = resolve(Color::legible(1.0, 0.96, 0.69, 0.4), Appearance::light);
    EXPECT_DOUBLE_EQ(drawn.a, 0.4);
    EXPECT_GT(drawn.r, drawn.b + 0.2);
    EXPECT_GT(drawn.g, drawn.b + 0.2);
    // The status colours are legible as they are and are never moved.
    for (const auto appearance : kAppearances) {
        for (const Color& status : {dangerRed(), warnOrange(), underGreen()}) {
            EXPECT_EQ(resolve(status, appearance), (RGBA{status.red(), status.green(), status.blue(), 1}));
        }
    }
}

}  // namespace
}  // namespace mw
