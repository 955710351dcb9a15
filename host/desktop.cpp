#include "host/desktop.hpp"

#include <algorithm>
#include <cctype>

namespace mw {
namespace {

std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return std::tolower(c); });
    return out;
}

bool isDarkThemeName(std::string_view name) {
    const auto lower = lowered(name);
    for (const std::string_view suffix : {"-dark", ":dark"})
        if (lower.size() > suffix.size() && lower.compare(lower.size() - suffix.size(), suffix.size(), suffix) == 0)
            return true;
    return false;
}

}  // namespace

render::Appearance desktopAppearance(const DesktopPreferences& preferences) {
    render::Appearance appearance = render::Appearance::light;
    if (preferences.forced && render::parseAppearance(*preferences.forced, appearance)) return appearance;
    if (preferences.portalColorScheme == 1u) return render::Appearance::dark;
    if (preferences.portalColorScheme == 2u) return render::Appearance::light;
    return preferences.gtkPreferDark || isDarkThemeName(preferences.gtkThemeName) ? render::Appearance::dark
                                                                                  : render::Appearance::light;
}

std::optional<WatchAnchor> watchAnchor(const std::filesystem::path& target,
                                       const std::function<bool(const std::filesystem::path&)>& isDirectory) {
    const auto path = target.lexically_normal();
    if (!path.is_absolute() || !path.has_relative_path()) return std::nullopt;
    auto child = path.filename().empty() ? path.parent_path() : path;  // "/a/b/" names "/a/b"
    for (auto parent = child.parent_path(); child != parent; child = parent, parent = parent.parent_path())
        if (isDirectory(parent)) return WatchAnchor{parent, child.filename().string()};
    return std::nullopt;
}

}  // namespace mw
