#include "app/host/window_input.hpp"

namespace mw::host {
namespace {

// How long a window the window manager moves must rest before the move is
// taken as ended.
constexpr guint kRestMilliseconds = 500;

double dragThreshold(GtkWidget* widget) {
    gint threshold = 8;
    g_object_get(gtk_widget_get_settings(widget), "gtk-dnd-drag-threshold", &threshold, nullptr);
    return threshold;
}

PointerButton buttonOf(guint button) {
    if (button == GDK_BUTTON_PRIMARY) return PointerButton::primary;
    if (button == GDK_BUTTON_SECONDARY) return PointerButton::secondary;
    return PointerButton::other;
}

WidgetKey keyOf(const GdkEventKey* event) {
    if (event->keyval == GDK_KEY_Menu) return WidgetKey::menu;
    if (event->keyval == GDK_KEY_F10 && (event->state & GDK_SHIFT_MASK) != 0) return WidgetKey::shiftF10;
    if (event->keyval == GDK_KEY_Return || event->keyval == GDK_KEY_KP_Enter || event->keyval == GDK_KEY_space)
        return WidgetKey::activate;
    return WidgetKey::other;
}

GtkWidget* menuItem(GtkWidget* menu, const char* label, std::function<void()> activate) {
    GtkWidget* item = gtk_menu_item_new_with_label(label);
    // The item lives as long as the menu; the handler with it.
    connectForLife<void(GtkMenuItem*)>(item, "activate",
                                       [activate = std::move(activate)](GtkMenuItem*) { activate(); });
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    return item;
}

}  // namespace

WindowInput::WindowInput(GtkWindow* window, MoveMode mode, bool screenPoints, Callbacks callbacks)
    : window_(window),
      mode_(mode),
      callbacks_(std::move(callbacks)),
      gesture_(mode, dragThreshold(GTK_WIDGET(window))) {
    auto* widget = GTK_WIDGET(window);
    gtk_widget_add_events(
        widget, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK | GDK_KEY_PRESS_MASK);
    // Points in one frame for a whole gesture: the screen when the window
    // manager moves the window, the surface as it was at the press when the
    // host moves it.
    const auto pointOf = [this, screenPoints](double x, double y, double rootX, double rootY) {
        return mode_ == MoveMode::windowManager || screenPoints ? PointerPoint{rootX, rootY} : PointerPoint{x, y};
    };
    press_ = connect<gboolean(GtkWidget*, GdkEventButton*)>(
        widget, "button-press-event", [=, this](GtkWidget*, GdkEventButton* e) {
            if (e->type != GDK_BUTTON_PRESS) return TRUE;  // double and triple clicks add nothing
            perform(
                gesture_.press(buttonOf(e->button), pointOf(e->x, e->y, e->x_root, e->y_root), callbacks_.position()),
                reinterpret_cast<GdkEvent*>(e));
            return TRUE;
        });
    motion_ = connect<gboolean(GtkWidget*, GdkEventMotion*)>(
        widget, "motion-notify-event", [=, this](GtkWidget*, GdkEventMotion* e) {
            perform(gesture_.motion(pointOf(e->x, e->y, e->x_root, e->y_root)), reinterpret_cast<GdkEvent*>(e));
            return TRUE;
        });
    release_ = connect<gboolean(GtkWidget*, GdkEventButton*)>(
        widget, "button-release-event", [=, this](GtkWidget*, GdkEventButton* e) {
            auto action = gesture_.release(buttonOf(e->button), pointOf(e->x, e->y, e->x_root, e->y_root));
            if (action.kind == GestureAction::Kind::openLink) action.at = {e->x, e->y};  // window points
            perform(action, reinterpret_cast<GdkEvent*>(e));
            return TRUE;
        });
    key_ = connect<gboolean(GtkWidget*, GdkEventKey*)>(widget, "key-press-event", [this](GtkWidget*, GdkEventKey* e) -> gboolean {
        if (e->keyval == GDK_KEY_Escape) {
            callbacks_.leave();
            return TRUE;
        }
        if (e->keyval == GDK_KEY_Tab || e->keyval == GDK_KEY_KP_Tab || e->keyval == GDK_KEY_ISO_Left_Tab) {
            const bool back = e->keyval == GDK_KEY_ISO_Left_Tab || (e->state & GDK_SHIFT_MASK) != 0;
            callbacks_.tab(!back, e->time);
            return TRUE;
        }
        const auto key = keyOf(e);
        // Enter on a focused row is that row's: the window passes it on.
        if (key == WidgetKey::activate && gtk_window_get_focus(window_) != nullptr) return FALSE;
        const auto action = keyAction(key);
        perform(action, reinterpret_cast<GdkEvent*>(e));
        return action.kind != GestureAction::Kind::none ? TRUE : FALSE;
    });
    if (mode_ == MoveMode::windowManager)
        configure_ = connect<gboolean(GtkWidget*, GdkEventConfigure*)>(
            widget, "configure-event", [this](GtkWidget*, GdkEventConfigure*) {
                if (gesture_.moving())
                    restTimer_ = timeoutOnce(kRestMilliseconds,
                                             [this] { perform(gesture_.moveEnded(callbacks_.position()), nullptr); });
                return FALSE;
            });
}

void WindowInput::perform(const GestureAction& action, const GdkEvent* event) {
    switch (action.kind) {
        case GestureAction::Kind::none:
            return;
        case GestureAction::Kind::openMenu:
            if (event != nullptr && event->type == GDK_KEY_PRESS)
                gtk_menu_popup_at_widget(GTK_MENU(menu()), GTK_WIDGET(window_), GDK_GRAVITY_CENTER,
                                         GDK_GRAVITY_NORTH_WEST, event);
            else
                gtk_menu_popup_at_pointer(GTK_MENU(menu()), event);
            return;
        case GestureAction::Kind::beginMove:
            // The window manager moves the window; configure events say where to.
            gtk_window_begin_move_drag(window_, GDK_BUTTON_PRIMARY, static_cast<int>(action.at.x),
                                       static_cast<int>(action.at.y),
                                       event != nullptr ? gdk_event_get_time(event) : GDK_CURRENT_TIME);
            return;
        case GestureAction::Kind::moveTo:
            callbacks_.moveTo(action.position);
            return;
        case GestureAction::Kind::saveAt:
            callbacks_.moved(action.position);
            return;
        case GestureAction::Kind::openLink:
            callbacks_.clicked(action.at);
            return;
    }
}

GtkWidget* WindowInput::menu() {
    if (menu_ != nullptr) return menu_;
    menu_ = gtk_menu_new();
    editItem_ = menuItem(menu_, "Edit Widget…", [this] { callbacks_.edit(); });
    menuItem(menu_, "Remove Widget", [this] { callbacks_.remove(); });
    gtk_menu_shell_append(GTK_MENU_SHELL(menu_), gtk_separator_menu_item_new());
    menuItem(menu_, "Add Widget…", [this] { callbacks_.add(); });
    gtk_widget_show_all(menu_);
    gtk_widget_set_sensitive(editItem_, editable_);
    gtk_menu_attach_to_widget(GTK_MENU(menu_), GTK_WIDGET(window_), nullptr);
    return menu_;
}

void WindowInput::setEditable(bool editable) {
    editable_ = editable;
    if (editItem_ != nullptr) gtk_widget_set_sensitive(editItem_, editable);
}

}  // namespace mw::host
