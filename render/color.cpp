#include "render/color.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace mw::render {

namespace {

struct SemanticValue {
    Color::Kind kind;
    std::string_view name;
    RGBA light;
    RGBA dark;
};

// One row per kind: raw name and the values of both appearances.
constexpr SemanticValue kColorTable[] = {
    {Color::Kind::rgb, "rgb", {}, {}},
    {Color::Kind::primary, "primary", {0, 0, 0, 0.85}, {1, 1, 1, 0.85}},
    {Color::Kind::secondary, "secondary", {0, 0, 0, 0.50}, {1, 1, 1, 0.55}},
    {Color::Kind::tertiary, "tertiary", {0, 0, 0, 0.26}, {1, 1, 1, 0.25}},
    {Color::Kind::quaternary, "quaternary", {0, 0, 0, 0.10}, {1, 1, 1, 0.10}},
    {Color::Kind::accent, "accent", {0.0, 122 / 255.0, 1.0, 1}, {10 / 255.0, 132 / 255.0, 1.0, 1}},
    {Color::Kind::windowBackground, "windowBackground", {236 / 255.0, 236 / 255.0, 236 / 255.0, 1},
     {50 / 255.0, 50 / 255.0, 50 / 255.0, 1}},
};

constexpr const SemanticValue& row(Color::Kind kind) {
    for (const auto& r : kColorTable) {
        if (r.kind == kind) return r;
    }
    return kColorTable[0];
}

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

std::string_view colorKindName(Color::Kind kind) { return row(kind).name; }

RGBA Color::resolve(Appearance appearance) const {
    RGBA base = kind_ == Kind::rgb ? RGBA{r_, g_, b_, a_}
                                   : (appearance == Appearance::dark ? row(kind_).dark : row(kind_).light);
    return {clamp01(base.r), clamp01(base.g), clamp01(base.b), clamp01(base.a * opacity_)};
}

std::string toHex(RGBA c) {
    auto byte = [](double v) { return static_cast<unsigned>(std::lround(clamp01(v) * 255.0)); };
    char buf[10];
    std::snprintf(buf, sizeof buf, "#%02X%02X%02X%02X", byte(c.r), byte(c.g), byte(c.b), byte(c.a));
    return buf;
}

}  // namespace mw::render
