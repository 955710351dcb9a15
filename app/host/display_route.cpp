#include "app/host/display_route.hpp"

#include <glib.h>
#include <wayland-client.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "platform/environment.hpp"

namespace mw::host {
namespace {

// Whether the Wayland compositor offers zwlr_layer_shell_v1; nothing when no
// compositor answers. GTK learns it only after opening its display, too late
// to choose XWayland instead, so the registry is read once on a connection
// of our own.
std::optional<bool> offersLayerShell() {
    wl_display* display = wl_display_connect(nullptr);
    if (display == nullptr) return std::nullopt;
    bool found = false;
    static const wl_registry_listener listener{
        [](void* data, wl_registry*, uint32_t, const char* interface, uint32_t) {
            if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0) *static_cast<bool*>(data) = true;
        },
        [](void*, wl_registry*, uint32_t) {},
    };
    wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, &found);
    wl_display_roundtrip(display);
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return found;
}

}  // namespace

HostDisplay chooseDisplay() {
    // Docks and task switchers match windows to the desktop entry by
    // WM_CLASS (X11) and app id (Wayland, from the GtkApplication's id).
    g_set_prgname(kDesktopEntryID);

    DisplayFacts facts;
    facts.gdkBackend = environmentVariable("GDK_BACKEND");
    facts.x11 = environmentVariable("DISPLAY").has_value();
    facts.wayland = environmentVariable("WAYLAND_DISPLAY").has_value() && facts.gdkBackend.value_or("") != "x11";
    if (facts.wayland) {
        const auto layerShell = offersLayerShell();
        facts.wayland = layerShell.has_value();  // a WAYLAND_DISPLAY nobody answers on is no session
        facts.layerShell = layerShell.value_or(false);
    }
    const auto decision = decideDisplay(facts);
    if (!decision.notice.empty()) std::fprintf(stderr, "%s\n", decision.notice.c_str());

    switch (decision.route) {
        case DisplayRoute::layerShell:
        case DisplayRoute::plainWindows:
            if (!facts.gdkBackend) g_setenv("GDK_BACKEND", "wayland", TRUE);
            break;
        case DisplayRoute::x11:
        case DisplayRoute::viaXWayland:
            g_setenv("GDK_BACKEND", "x11", TRUE);
            break;
        case DisplayRoute::noDisplay:
            std::fprintf(stderr, "meterwick-widget-host: no display to show widgets on (neither WAYLAND_DISPLAY nor "
                                 "DISPLAY names one that answers)\n");
            break;
    }
    const auto windowType = environmentVariable("MW_HOST_WINDOW_TYPE");
    return {decision.route, x11Hints(environmentVariable("XDG_CURRENT_DESKTOP").value_or(""),
                                     windowType ? std::optional<std::string_view>(*windowType) : std::nullopt)};
}

}  // namespace mw::host
