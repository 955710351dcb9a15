#include "app/host/desktop_monitors.hpp"

namespace mw::host {
namespace {

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

}  // namespace mw::host
