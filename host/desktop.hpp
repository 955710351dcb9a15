#pragma once
// What the host reads from its surroundings, decided without a toolkit: the
// light or dark appearance from the desktop's settings, and which directory
// to watch for the application's payload.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/container.hpp"
#include "render/color.hpp"

namespace mw {

// The desktop's preferences as far as they are known.
struct DesktopPreferences {
    std::optional<std::string> forced;               // MW_HOST_APPEARANCE: "light" or "dark" overrides the rest
    std::optional<std::uint32_t> portalColorScheme;  // org.freedesktop.appearance color-scheme: 0 none, 1 dark, 2 light
    bool gtkPreferDark = false;                      // gtk-application-prefer-dark-theme
    std::string gtkThemeName;                        // gtk-theme-name (or GTK_THEME), e.g. "Adwaita-dark"
    bool operator==(const DesktopPreferences&) const = default;
};

// The forced value when valid, else the portal's explicit choice, else the
// toolkit's: dark when it prefers dark or its theme is a "-dark" variant
// ("Adwaita-dark", "Adwaita:dark"); light otherwise.
render::Appearance desktopAppearance(const DesktopPreferences& preferences);

// Where to watch for `target` (a directory) to appear or be replaced: its
// nearest ancestor that exists, and the name of the next component down
// from there. Nothing for a relative or root path.
struct WatchAnchor {
    std::filesystem::path directory;
    std::string child;
    bool operator==(const WatchAnchor&) const = default;
};
std::optional<WatchAnchor> watchAnchor(const std::filesystem::path& target,
                                       const std::function<bool(const std::filesystem::path&)>& isDirectory);

}  // namespace mw
