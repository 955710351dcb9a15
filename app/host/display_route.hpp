#pragma once
// How this host shows its windows, settled before GTK opens a display: the
// route (layer-shell, X11, X11 through XWayland, plain Wayland windows) and
// the X11 hints for this desktop.

#include "host/session.hpp"

namespace mw::host {

struct HostDisplay {
    DisplayRoute route = DisplayRoute::noDisplay;
    X11Hints x11;
    bool operator==(const HostDisplay&) const = default;
};

// Looks at the environment and the Wayland compositor, points GDK_BACKEND at
// the backend the route needs, sets the program name (WM_CLASS's first
// part), and says on stderr in one line why when the route is not the
// obvious one. Call first thing, before GTK is initialised.
HostDisplay chooseDisplay();

}  // namespace mw::host
