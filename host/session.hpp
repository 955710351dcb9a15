#pragma once
// How the host puts its windows on the desktop it finds itself on, decided
// from facts the program gathers at start: which displays it can reach,
// whether the compositor offers layer-shell, and which desktop it runs in.

#include <optional>
#include <string>
#include <string_view>

namespace mw {

// The desktop entry's id: also the Wayland app id and the X11 WM_CLASS of
// every widget window, so docks and task switchers match them to the entry.
inline constexpr const char* kDesktopEntryID = "app.meterwick.WidgetHost";

struct DisplayFacts {
    bool wayland = false;                    // a Wayland display is reachable (WAYLAND_DISPLAY)
    bool x11 = false;                        // an X display is reachable (DISPLAY), XWayland included
    bool layerShell = false;                 // the Wayland compositor offers zwlr_layer_shell_v1
    std::optional<std::string> gdkBackend;   // GDK_BACKEND as set by the user
    bool operator==(const DisplayFacts&) const = default;
};

enum class DisplayRoute {
    layerShell,    // Wayland with layer-shell surfaces on the bottom layer
    x11,           // X11 windows with the desktop hints (a real X server)
    viaXWayland,   // Wayland without layer-shell: X11 windows through XWayland
    plainWindows,  // Wayland with neither: ordinary windows the compositor places
    noDisplay,     // nothing to show windows on
};

struct DisplayDecision {
    DisplayRoute route = DisplayRoute::noDisplay;
    // One line for stderr saying why, when the route is not the obvious one.
    std::string notice;
    bool operator==(const DisplayDecision&) const = default;
};

// A user's GDK_BACKEND that names one backend is obeyed; otherwise Wayland
// with layer-shell is preferred, then X11 (through XWayland when the session
// is Wayland), then plain Wayland windows.
DisplayDecision decideDisplay(const DisplayFacts& facts);

enum class X11WindowType { desktop, utility };

// The X11 hints a widget window carries. Every choice keeps it below normal
// windows, on every workspace and out of task lists and pagers; the window
// type decides whether "Show desktop" leaves it in place.
struct X11Hints {
    X11WindowType type = X11WindowType::desktop;
    bool operator==(const X11Hints&) const = default;
};

// The hints for a desktop named by XDG_CURRENT_DESKTOP (a colon-separated
// list such as "ubuntu:GNOME"), overridden by MW_HOST_WINDOW_TYPE
// ("desktop" or "utility") when that is valid. A desktop-type window stays
// below everything and survives "Show desktop" on openbox, mutter and KWin;
// Xfce's own desktop is a full-screen desktop-type window that would cover
// it, and xfwm4 keeps keep-below utility windows through "Show desktop".
X11Hints x11Hints(std::string_view currentDesktop, std::optional<std::string_view> override = std::nullopt);

// Whether XDG_CURRENT_DESKTOP names `desktop` among its entries, ignoring case.
bool desktopIs(std::string_view currentDesktop, std::string_view desktop);

}  // namespace mw
