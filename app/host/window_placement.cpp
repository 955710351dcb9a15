#include "app/host/window_placement.hpp"

#include <gtk-layer-shell/gtk-layer-shell.h>

#include <cmath>

namespace mw::host {

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

    if (display.route == DisplayRoute::layerShell && gtk_layer_is_supported()) {
        gtk_layer_init_for_window(window);
        gtk_layer_set_namespace(window, "meterwick-widget");
        gtk_layer_set_layer(window, GTK_LAYER_SHELL_LAYER_BOTTOM);
        gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_TOP, TRUE);
        gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_LEFT, TRUE);
        gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_ON_DEMAND);
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
    if (gtk_layer_get_monitor(window_) != monitor) gtk_layer_set_monitor(window_, monitor);
    origin_ = monitor != nullptr ? origin : WidgetPosition{};
}

void WindowPlacement::moveTo(WidgetPosition position) {
    asked_ = position;
    if (layerShell_) {
        // Margins count from the corner of the surface's own output.
        gtk_layer_set_margin(window_, GTK_LAYER_SHELL_EDGE_LEFT, position.x - origin_.x);
        gtk_layer_set_margin(window_, GTK_LAYER_SHELL_EDGE_TOP, position.y - origin_.y);
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
