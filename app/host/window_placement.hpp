#pragma once
// Where a widget window sits: on wlroots-style compositors a layer-shell
// surface on the bottom layer, placed by its margins; elsewhere an ordinary
// undecorated window with the hints that keep it on the desktop (below
// other windows, on every workspace, out of task lists).

#include <gtk/gtk.h>

#include "app/host/display_route.hpp"
#include "config/family.hpp"
#include "host/placements.hpp"

namespace mw::host {

class WindowPlacement {
  public:
    // Sets `window` up for the desktop; call before it is realized.
    WindowPlacement(GtkWindow* window, const HostDisplay& display);

    bool layerShell() const { return layerShell_; }
    // Whether a compositor blends the window (else it is cut to its shape).
    bool composited() const { return composited_; }

    void resize(WidgetSize size);
    // Puts the window on `monitor` (a layer surface on its output), whose
    // top-left corner is `origin` in desktop coordinates; nullptr lets the
    // compositor choose.
    void setMonitor(GdkMonitor* monitor, WidgetPosition origin);
    // Moves the window to `position` in desktop coordinates.
    void moveTo(WidgetPosition position);
    // Where the window manager has the window now (X11 only; else the last
    // position asked for), in desktop coordinates.
    WidgetPosition position() const;

  private:
    GtkWindow* window_;
    bool layerShell_ = false;
    bool composited_ = false;
    WidgetPosition asked_;
    WidgetPosition origin_;  // of the layer surface's output
};

}  // namespace mw::host
