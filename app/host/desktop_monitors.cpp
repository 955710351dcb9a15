#include "app/host/desktop_monitors.hpp"

#include <X11/Xlib.h>
#include <gdk/gdkwayland.h>
#include <gdk/gdkx.h>

#include <algorithm>
#include <cstring>

#include "xdg-output-unstable-v1-client-protocol.h"

namespace mw::host {
namespace {

// A burst of monitor changes (a docking station, a panel sliding in) is
// handled once.
constexpr guint kSettleMilliseconds = 300;

ScreenRect rectOf(const GdkRectangle& r) {
    return {r.x, r.y, r.width, r.height};
}

// What xdg-output tells of an output: only its name matters here.
void ignorePosition(void*, zxdg_output_v1*, int32_t, int32_t) {}
void ignoreDone(void*, zxdg_output_v1*) {}
void keepName(void* name, zxdg_output_v1*, const char* value) {
    *static_cast<std::string*>(name) = value;
}
void ignoreDescription(void*, zxdg_output_v1*, const char*) {}
const zxdg_output_v1_listener kOutputListener{ignorePosition, ignorePosition, ignoreDone, keepName, ignoreDescription};

void bindOutputManager(void* manager, wl_registry* registry, uint32_t id, const char* interface, uint32_t version) {
    // The name event came with version 2.
    if (std::strcmp(interface, zxdg_output_manager_v1_interface.name) == 0 && version >= 2)
        *static_cast<zxdg_output_manager_v1**>(manager) = static_cast<zxdg_output_manager_v1*>(
            wl_registry_bind(registry, id, &zxdg_output_manager_v1_interface, std::min(version, 3u)));
}
void ignoreRemoval(void*, wl_registry*, uint32_t) {}
const wl_registry_listener kRegistryListener{bindOutputManager, ignoreRemoval};

// The connector a Wayland compositor names the monitor's output by, asked
// once per monitor on a private event queue so GTK's own events wait; empty
// on X11 or where the compositor offers no xdg-output.
std::string connectorOf(GdkMonitor* gdk) {
    constexpr const char* kKey = "meterwick-connector";
    if (const auto* known = static_cast<const char*>(g_object_get_data(G_OBJECT(gdk), kKey)); known != nullptr)
        return known;
    std::string name;
    GdkDisplay* display = gdk_monitor_get_display(gdk);
    wl_output* output = GDK_IS_WAYLAND_DISPLAY(display) ? gdk_wayland_monitor_get_wl_output(gdk) : nullptr;
    if (output != nullptr) {
        wl_display* wl = gdk_wayland_display_get_wl_display(display);
        wl_event_queue* queue = wl_display_create_queue(wl);
        auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(wl));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
        wl_registry* registry = wl_display_get_registry(wrapper);
        zxdg_output_manager_v1* manager = nullptr;
        wl_registry_add_listener(registry, &kRegistryListener, &manager);
        wl_display_roundtrip_queue(wl, queue);
        if (manager != nullptr) {
            zxdg_output_v1* described = zxdg_output_manager_v1_get_xdg_output(manager, output);
            zxdg_output_v1_add_listener(described, &kOutputListener, &name);
            wl_display_roundtrip_queue(wl, queue);
            zxdg_output_v1_destroy(described);
            zxdg_output_manager_v1_destroy(manager);
        }
        wl_registry_destroy(registry);
        wl_proxy_wrapper_destroy(wrapper);
        wl_event_queue_destroy(queue);
    }
    g_object_set_data_full(G_OBJECT(gdk), kKey, g_strdup(name.c_str()), g_free);
    return name;
}

Monitor monitorOf(GdkMonitor* gdk) {
    Monitor monitor;
    // GTK 3 passes on no connector name; on Wayland xdg-output gives it, and
    // elsewhere the model and the monitor's position stand in.
    monitor.connector = connectorOf(gdk);
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
