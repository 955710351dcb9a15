#include "render/color.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace mw::render {

namespace {

struct SemanticValue {
    Color::Kind kind;
    RGBA light;
    RGBA dark;
};

// One row per kind: the values of both appearances.
constexpr SemanticValue kColorTable[] = {
    {Color::Kind::rgb, {}, {}},
    {Color::Kind::primary, {0, 0, 0, 0.85}, {1, 1, 1, 0.85}},
    {Color::Kind::secondary, {0, 0, 0, 0.62}, {1, 1, 1, 0.62}},
    {Color::Kind::tertiary, {0, 0, 0, 0.47}, {1, 1, 1, 0.44}},
    {Color::Kind::quaternary, {0, 0, 0, 0.10}, {1, 1, 1, 0.10}},
    {Color::Kind::accent, {0.0, 122 / 255.0, 1.0, 1}, {10 / 255.0, 132 / 255.0, 1.0, 1}},
    {Color::Kind::windowBackground, {236 / 255.0, 236 / 255.0, 236 / 255.0, 1},
     {50 / 255.0, 50 / 255.0, 50 / 255.0, 1}},
};

constexpr const SemanticValue& row(Color::Kind kind) {
    for (const auto& r : kColorTable) {
        if (r.kind == kind) return r;
    }
    return kColorTable[0];
}

constexpr double kDarkFloorStep = 0.25;

double clamp01(double v) { return std::isnan(v) ? 0.0 : std::clamp(v, 0.0, 1.0); }

}  // namespace

std::string_view appearanceName(Appearance appearance) {
    return appearance == Appearance::dark ? "dark" : "light";
}

bool parseAppearance(std::string_view text, Appearance& out) {
    if (text == "light") {
        out = Appearance::light;
        return true;
    }
    if (text == "dark") {
        out = Appearance::dark;
        return true;
    }
    return false;
}

RGBA resolve(const Color& color, Appearance appearance) {
    const SemanticValue& semantic = row(color.kind());
    const RGBA base = color.isSemantic()
                          ? (appearance == Appearance::dark ? semantic.dark : semantic.light)
                          : RGBA{color.red(), color.green(), color.blue(), 1};
    RGBA out{clamp01(base.r), clamp01(base.g), clamp01(base.b), clamp01(base.a * color.alpha())};
    if (!color.isSemantic() && color.contrastFloor() > 1) {
        // The ratio's flare term overstates how far a near-black colour stands
        // out from a dark surface (pure black on it measures 1.64:1 and is all
        // but invisible), so the floor is a quarter step higher there.
        const double floor =
            appearance == Appearance::dark ? color.contrastFloor() + kDarkFloorStep : color.contrastFloor();
        out = withContrastFloor(out, surfaceColor(appearance), floor);
    }
    return out;
}

namespace {

double linear(double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); }

struct HSL {
    double h, s, l;
};

HSL toHSL(RGBA c) {
    const double hi = std::max({c.r, c.g, c.b}), lo = std::min({c.r, c.g, c.b});
    const double l = (hi + lo) / 2;
    if (hi - lo < 1e-12) return {0, 0, l};
    const double d = hi - lo;
    const double s = l > 0.5 ? d / (2 - hi - lo) : d / (hi + lo);
    double h = 0;
    if (hi == c.r) {
        h = (c.g - c.b) / d + (c.g < c.b ? 6 : 0);
    } else if (hi == c.g) {
        h = (c.b - c.r) / d + 2;
    } else {
        h = (c.r - c.g) / d + 4;
    }
    return {h / 6, s, l};
}

RGBA fromHSL(HSL v, double alpha) {
    if (v.s <= 0) return {v.l, v.l, v.l, alpha};
    const double q = v.l < 0.5 ? v.l * (1 + v.s) : v.l + v.s - v.l * v.s;
    const double p = 2 * v.l - q;
    auto channel = [p, q](double t) {
        if (t < 0) t += 1;
        if (t > 1) t -= 1;
        if (t < 1.0 / 6) return p + (q - p) * 6 * t;
        if (t < 0.5) return q;
        if (t < 2.0 / 3) return p + (q - p) * (2.0 / 3 - t) * 6;
        return p;
    };
    return {clamp01(channel(v.h + 1.0 / 3)), clamp01(channel(v.h)), clamp01(channel(v.h - 1.0 / 3)), alpha};
}

double opaqueContrast(RGBA a, RGBA b) {
    const double la = relativeLuminance(a), lb = relativeLuminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

}  // namespace

double relativeLuminance(RGBA c) {
    return 0.2126 * linear(clamp01(c.r)) + 0.7152 * linear(clamp01(c.g)) + 0.0722 * linear(clamp01(c.b));
}

double contrastRatio(RGBA fg, RGBA bg) {
    const double a = clamp01(fg.a);
    const RGBA shown{fg.r * a + bg.r * (1 - a), fg.g * a + bg.g * (1 - a), fg.b * a + bg.b * (1 - a), 1};
    return opaqueContrast(shown, bg);
}

RGBA surfaceColor(Appearance appearance) {
    RGBA c = resolve(Color::windowBackground(), appearance);
    c.a = 1;
    return c;
}

RGBA withContrastFloor(RGBA color, RGBA background, double ratio) {
    if (!(ratio > 1) || opaqueContrast(color, background) >= ratio) return color;
    const HSL hsl = toHSL(color);
    // Away from the background: darker on a light one, lighter on a dark one.
    const double target = relativeLuminance(background) > 0.18 ? 0.0 : 1.0;
    // Bisect on the share of the way from the colour's lightness to the
    // target: the least move that reaches the ratio.
    double lo = 0, hi = 1;
    for (int i = 0; i < 40; ++i) {
        const double mid = (lo + hi) / 2;
        const RGBA trial = fromHSL({hsl.h, hsl.s, hsl.l + (target - hsl.l) * mid}, color.a);
        if (opaqueContrast(trial, background) >= ratio) {
            hi = mid;
        } else {
            lo = mid;
        }
    }
    return fromHSL({hsl.h, hsl.s, hsl.l + (target - hsl.l) * hi}, color.a);
}

std::string toHex(RGBA c) {
    auto byte = [](double v) { return static_cast<unsigned>(std::lround(clamp01(v) * 255.0)); };
    char buf[10];
    std::snprintf(buf, sizeof buf, "#%02X%02X%02X%02X", byte(c.r), byte(c.g), byte(c.b), byte(c.a));
    return buf;
}

}  // namespace mw::render
