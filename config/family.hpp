#pragma once
// The sizes a widget can be placed in. Raw values equal the case names; they
// are what the host stores for a placed widget and what the command line takes.

#include <array>
#include <optional>
#include <string_view>

namespace mw {

enum class WidgetFamily { systemSmall, systemMedium, systemLarge, systemExtraLarge };

struct WidgetSize {
    double width = 0;
    double height = 0;
    bool operator==(const WidgetSize&) const = default;
};

struct WidgetFamilyCase {
    WidgetFamily value;
    std::string_view raw;
    WidgetSize size;  // points
};

inline constexpr std::array<WidgetFamilyCase, 4> kWidgetFamilies{{
    {WidgetFamily::systemSmall, "systemSmall", {170, 170}},
    {WidgetFamily::systemMedium, "systemMedium", {364, 170}},
    {WidgetFamily::systemLarge, "systemLarge", {364, 382}},
    {WidgetFamily::systemExtraLarge, "systemExtraLarge", {780, 382}},
}};

constexpr std::string_view rawValue(WidgetFamily family) {
    for (const auto& c : kWidgetFamilies)
        if (c.value == family) return c.raw;
    return {};
}

constexpr WidgetSize widgetSize(WidgetFamily family) {
    for (const auto& c : kWidgetFamilies)
        if (c.value == family) return c.size;
    return {};
}

// Unknown text maps to no family.
constexpr std::optional<WidgetFamily> widgetFamilyFromRaw(std::string_view raw) {
    for (const auto& c : kWidgetFamilies)
        if (c.raw == raw) return c.value;
    return std::nullopt;
}

}  // namespace mw
