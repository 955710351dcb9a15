#pragma once
// Where the drawing layer finds its files, and the symbol-name table.

#include <optional>
#include <string>
#include <string_view>

namespace mw::render {

// The asset directory: $MW_ASSET_DIR when set and non-empty, else the first
// meterwick-widgets/assets that exists under <program>/../share,
// <program>/../../share and each of $XDG_DATA_DIRS (default
// /usr/local/share:/usr/share). No path of the build machine is compiled in.
std::string assetDirectory();

// The full path of asset `name` ("AppIcon", "AppIcon.svg", "provider-claude");
// without an extension ".svg" then ".png" are tried. Nothing when absent.
std::optional<std::string> assetPath(std::string_view name);
inline bool assetExists(std::string_view name) { return assetPath(name).has_value(); }

// The icon file (relative to the asset directory, e.g. "symbols/link.svg")
// drawn for an SF Symbol name; nothing for an unmapped name.
std::optional<std::string_view> symbolFile(std::string_view symbolName);

}  // namespace mw::render
