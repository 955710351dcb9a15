#pragma once
// The desktop's monitors as GDK reports them, in the host layer's terms.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "app/host/glib_support.hpp"
#include "host/monitors.hpp"

namespace mw::host {

std::vector<Monitor> desktopMonitors(GdkDisplay* display);

// The GDK monitor `monitor` was read from; nullptr when it has gone since.
GdkMonitor* gdkMonitorOf(GdkDisplay* display, const Monitor& monitor);

// Tells once a burst of changes has settled that monitors came or went, or
// that the work area of one changed (a panel appeared, moved or resized).
// GDK reads the X11 work area afresh on each call but says nothing when it
// changes, so on X11 the root window's _NET_WORKAREA is watched; on Wayland
// a layer-shell compositor keeps surfaces clear of panels itself.
class MonitorWatch {
  public:
    MonitorWatch(GdkDisplay* display, std::function<void()> changed);
    ~MonitorWatch();
    MonitorWatch(const MonitorWatch&) = delete;
    MonitorWatch& operator=(const MonitorWatch&) = delete;

  private:
    static GdkFilterReturn rootEvent(GdkXEvent* event, GdkEvent*, gpointer self);
    void settle();

    std::function<void()> changed_;
    GdkWindow* root_ = nullptr;  // X11 only: filtered for _NET_WORKAREA
    unsigned long workareaAtom_ = 0;
    Source settle_;
    Connection added_, removed_;
};

}  // namespace mw::host
