#include "app/host/desktop_monitors.hpp"

#include <X11/Xlib.h>
#include <gdk/gdkx.h>

namespace mw::host {
namespace {

// A burst of monitor changes (a docking station, a panel sliding in) is
// handled once.
constexpr guint kSettleMilliseconds = 300;

ScreenRect rectOf(const GdkRectangle& r) {
    return {r.x, r.y, r.width, r.height};
}

Monitor monitorOf(GdkMonitor* gdk) {
    Monitor monitor;
    // GTK 3 names no connector; the model and the monitor's position stand in.
    if (const char* model = gdk_monitor_get_model(gdk); model != nullptr) monitor.model = model;
    GdkRectangle r;
    gdk_monitor_get_geometry(gdk, &r);
    monitor.geometry = rectOf(r);
    gdk_monitor_get_workarea(gdk, &r);
    monitor.workarea = rectOf(r);
    monitor.primary = gdk_monitor_is_primary(gdk) != FALSE;
    return monitor;
}

}  // namespace

std::vector<Monitor> desktopMonitors(GdkDisplay* display) {
    std::vector<Monitor> monitors;
    const int count = gdk_display_get_n_monitors(display);
    for (int i = 0; i < count; ++i)
        if (GdkMonitor* gdk = gdk_display_get_monitor(display, i); gdk != nullptr) monitors.push_back(monitorOf(gdk));
    return monitors;
}

GdkMonitor* gdkMonitorOf(GdkDisplay* display, const Monitor& monitor) {
    const int count = gdk_display_get_n_monitors(display);
    for (int i = 0; i < count; ++i)
        if (GdkMonitor* gdk = gdk_display_get_monitor(display, i); gdk != nullptr && monitorOf(gdk) == monitor)
            return gdk;
    return nullptr;
}

MonitorWatch::MonitorWatch(GdkDisplay* display, std::function<void()> changed) : changed_(std::move(changed)) {
    const auto monitorsChanged = [this](GdkDisplay*, GdkMonitor*) { settle(); };
    added_ = connect<void(GdkDisplay*, GdkMonitor*)>(display, "monitor-added", monitorsChanged);
    removed_ = connect<void(GdkDisplay*, GdkMonitor*)>(display, "monitor-removed", monitorsChanged);
    if (GDK_IS_X11_DISPLAY(display)) {
        root_ = gdk_screen_get_root_window(gdk_display_get_default_screen(display));
        workareaAtom_ = gdk_x11_get_xatom_by_name_for_display(display, "_NET_WORKAREA");
        gdk_window_set_events(root_, static_cast<GdkEventMask>(gdk_window_get_events(root_) | GDK_PROPERTY_CHANGE_MASK));
        gdk_window_add_filter(root_, rootEvent, this);
    }
}

MonitorWatch::~MonitorWatch() {
    if (root_ != nullptr) gdk_window_remove_filter(root_, rootEvent, this);
}

GdkFilterReturn MonitorWatch::rootEvent(GdkXEvent* event, GdkEvent*, gpointer self) {
    auto* watch = static_cast<MonitorWatch*>(self);
    const auto* x = static_cast<const XEvent*>(event);
    if (x->type == PropertyNotify && x->xproperty.atom == watch->workareaAtom_) watch->settle();
    return GDK_FILTER_CONTINUE;
}

void MonitorWatch::settle() {
    settle_ = timeoutOnce(kSettleMilliseconds, [this] { changed_(); });
}

}  // namespace mw::host
