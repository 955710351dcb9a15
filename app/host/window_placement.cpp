#include "app/host/window_placement.hpp"

#include <dlfcn.h>
#include <gtk-layer-shell/gtk-layer-shell.h>

#include <cmath>

#include "app/host/glib_support.hpp"

namespace mw::host {
namespace {

// gtk-layer-shell, opened the first time a window asks for a layer surface:
// on X11 and on compositors without the layer shell it is never mapped.
struct LayerShell {
    decltype(&gtk_layer_is_supported) isSupported = nullptr;
    decltype(&gtk_layer_init_for_window) initForWindow = nullptr;
    decltype(&gtk_layer_set_namespace) setNamespace = nullptr;
    decltype(&gtk_layer_set_layer) setLayer = nullptr;
    decltype(&gtk_layer_set_anchor) setAnchor = nullptr;
    decltype(&gtk_layer_set_keyboard_mode) setKeyboardMode = nullptr;
    decltype(&gtk_layer_get_monitor) getMonitor = nullptr;
    decltype(&gtk_layer_set_monitor) setMonitor = nullptr;
    decltype(&gtk_layer_set_margin) setMargin = nullptr;

    bool complete() const {
        return isSupported && initForWindow && setNamespace && setLayer && setAnchor && setKeyboardMode &&
               getMonitor && setMonitor && setMargin;
    }
};

template <class F>
void lookUp(void* library, const char* name, F& function) {
    function = reinterpret_cast<F>(dlsym(library, name));
}

// Null when the library is missing or lacks a call; the windows are then
// plain Wayland windows, and the reason is said once.
const LayerShell* layerShellLibrary() {
    static const LayerShell* const loaded = []() -> const LayerShell* {
        static LayerShell calls;
        void* library = dlopen("libgtk-layer-shell.so.0", RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            report(std::string("cannot open gtk-layer-shell, widgets are plain windows: ") + dlerror());
            return nullptr;
        }
        lookUp(library, "gtk_layer_is_supported", calls.isSupported);
        lookUp(library, "gtk_layer_init_for_window", calls.initForWindow);
        lookUp(library, "gtk_layer_set_namespace", calls.setNamespace);
        lookUp(library, "gtk_layer_set_layer", calls.setLayer);
        lookUp(library, "gtk_layer_set_anchor", calls.setAnchor);
        lookUp(library, "gtk_layer_set_keyboard_mode", calls.setKeyboardMode);
        lookUp(library, "gtk_layer_get_monitor", calls.getMonitor);
        lookUp(library, "gtk_layer_set_monitor", calls.setMonitor);
        lookUp(library, "gtk_layer_set_margin", calls.setMargin);
        if (calls.complete()) return &calls;
        report("cannot use gtk-layer-shell, widgets are plain windows: the library lacks a call the host needs");
        return nullptr;
    }();
    return loaded;
}

}  // namespace

WindowPlacement::WindowPlacement(GtkWindow* window, const HostDisplay& display) : window_(window) {
    gtk_window_set_decorated(window, FALSE);
    gtk_window_set_resizable(window, FALSE);
    gtk_window_set_skip_taskbar_hint(window, TRUE);
    gtk_window_set_skip_pager_hint(window, TRUE);
    // Focus comes from a click or the keyboard (its rows can be reached with
    // Tab), never from being shown.
    gtk_window_set_accept_focus(window, TRUE);
    gtk_window_set_focus_on_map(window, FALSE);
    gtk_widget_set_app_paintable(GTK_WIDGET(window), TRUE);

    // Transparent corners need a compositor; without one the window is cut
    // to the drawn shape instead.
    GdkScreen* screen = gtk_widget_get_screen(GTK_WIDGET(window));
    if (GdkVisual* visual = gdk_screen_get_rgba_visual(screen); visual != nullptr && gdk_screen_is_composited(screen)) {
        gtk_widget_set_visual(GTK_WIDGET(window), visual);
        composited_ = true;
    }

    const LayerShell* shell = display.route == DisplayRoute::layerShell ? layerShellLibrary() : nullptr;
    if (shell != nullptr && shell->isSupported()) {
        shell->initForWindow(window);
        shell->setNamespace(window, "meterwick-widget");
        shell->setLayer(window, GTK_LAYER_SHELL_LAYER_BOTTOM);
        shell->setAnchor(window, GTK_LAYER_SHELL_EDGE_TOP, TRUE);
        shell->setAnchor(window, GTK_LAYER_SHELL_EDGE_LEFT, TRUE);
        shell->setKeyboardMode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_ON_DEMAND);
        layerShell_ = true;
        return;
    }
    // A desktop-type window stays below everything and is left in place by
    // "Show desktop"; where the desktop's own window would cover it, a
    // keep-below utility window instead.
    gtk_window_set_type_hint(window, display.x11.type == X11WindowType::desktop ? GDK_WINDOW_TYPE_HINT_DESKTOP
                                                                               : GDK_WINDOW_TYPE_HINT_UTILITY);
    gtk_window_set_keep_below(window, TRUE);
    gtk_window_stick(window);
}

void WindowPlacement::resize(WidgetSize size) {
    const int width = static_cast<int>(std::ceil(size.width));
    const int height = static_cast<int>(std::ceil(size.height));
    gtk_widget_set_size_request(GTK_WIDGET(window_), width, height);
    gtk_window_resize(window_, width, height);
}

void WindowPlacement::setMonitor(GdkMonitor* monitor, WidgetPosition origin) {
    if (!layerShell_) return;  // X11 windows stand in desktop coordinates
    if (layerShellLibrary()->getMonitor(window_) != monitor) layerShellLibrary()->setMonitor(window_, monitor);
    origin_ = monitor != nullptr ? origin : WidgetPosition{};
}

void WindowPlacement::moveTo(WidgetPosition position) {
    asked_ = position;
    if (layerShell_) {
        // Margins count from the corner of the surface's own output.
        layerShellLibrary()->setMargin(window_, GTK_LAYER_SHELL_EDGE_LEFT, position.x - origin_.x);
        layerShellLibrary()->setMargin(window_, GTK_LAYER_SHELL_EDGE_TOP, position.y - origin_.y);
    } else {
        gtk_window_move(window_, position.x, position.y);
    }
}

WidgetPosition WindowPlacement::position() const {
    if (layerShell_) return asked_;
    int x = 0;
    int y = 0;
    gtk_window_get_position(window_, &x, &y);
    return {x, y};
}

}  // namespace mw::host
