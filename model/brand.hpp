#pragma once
// Brand colours of the tools and the data of their small monochrome marks.

#include <optional>
#include <string>
#include <string_view>

#include "payload/records.hpp"
#include "platform/color.hpp"

namespace mw {

// "#D97757", "d97757" (whitespace around allowed) → the legible sRGB colour; absent
// unless exactly six characters remain that read as one base-16 number.
std::optional<Color> colorFromHex(std::string_view text);

// The built-in six-digit colour text of a tool (exact, case-sensitive match
// on the whole toolID); unknown tools get a neutral grey, never empty.
std::string_view brandHexText(std::string_view toolID);

// The snapshot's own brand colour, else its tool's built-in one, else accent.
Color toolColor(const WidgetToolSnapshot& snapshot);

// A tool's small logo, drawn as a single-colour mask.
struct ProviderMark {
    std::string toolID;
    Color color;
    double size = 14;  // points, square
    bool operator==(const ProviderMark&) const = default;
};

// The asset the mark looks up: "provider-" + toolID.
std::string providerMarkAssetName(std::string_view toolID);
inline std::string providerMarkAssetName(const ProviderMark& mark) { return providerMarkAssetName(mark.toolID); }

// The inset of the placeholder drawn when no such asset exists.
inline double providerMarkPlaceholderInset(const ProviderMark& mark) { return mark.size * 0.2; }

}  // namespace mw
