#include "host/session.hpp"

#include <algorithm>
#include <cctype>

namespace mw {
namespace {

bool sameLetters(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](unsigned char x, unsigned char y) {
               return std::tolower(x) == std::tolower(y);
           });
}

constexpr const char* kProgram = "meterwick-widget-host: ";

}  // namespace

DisplayDecision decideDisplay(const DisplayFacts& facts) {
    const std::string backend = facts.gdkBackend.value_or("");
    if (backend == "x11") return {facts.x11 ? DisplayRoute::x11 : DisplayRoute::noDisplay, {}};
    if (backend == "wayland" && facts.wayland)
        return {facts.layerShell ? DisplayRoute::layerShell : DisplayRoute::plainWindows,
                facts.layerShell ? std::string()
                                 : std::string(kProgram) +
                                       "GDK_BACKEND=wayland and this compositor offers no layer-shell, so widgets are "
                                       "ordinary windows that the compositor places and stacks"};
    if (facts.wayland) {
        if (facts.layerShell) return {DisplayRoute::layerShell, {}};
        if (facts.x11)
            return {DisplayRoute::viaXWayland,
                    std::string(kProgram) +
                        "this compositor offers no layer-shell, so widgets run through XWayland to keep their "
                        "places and stay below other windows"};
        return {DisplayRoute::plainWindows,
                std::string(kProgram) +
                    "this compositor offers neither layer-shell nor X11 (XWayland), so widgets are ordinary windows "
                    "that the compositor places and stacks"};
    }
    return {facts.x11 ? DisplayRoute::x11 : DisplayRoute::noDisplay, {}};
}

bool desktopIs(std::string_view currentDesktop, std::string_view desktop) {
    while (!currentDesktop.empty()) {
        const auto colon = currentDesktop.find(':');
        if (sameLetters(currentDesktop.substr(0, colon), desktop)) return true;
        if (colon == std::string_view::npos) break;
        currentDesktop.remove_prefix(colon + 1);
    }
    return false;
}

X11Hints x11Hints(std::string_view currentDesktop, std::optional<std::string_view> override) {
    if (override && sameLetters(*override, "desktop")) return {X11WindowType::desktop};
    if (override && sameLetters(*override, "utility")) return {X11WindowType::utility};
    if (desktopIs(currentDesktop, "XFCE")) return {X11WindowType::utility};
    return {X11WindowType::desktop};
}

}  // namespace mw
