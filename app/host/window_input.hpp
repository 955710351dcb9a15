#pragma once
// A widget window's input: presses, drags, clicks, the context menu and the
// menu keys, turned into the few things a widget does through callbacks.
// The decisions themselves are `PointerGesture` and `keyAction`.

#include <gtk/gtk.h>

#include <functional>

#include "app/host/glib_support.hpp"
#include "host/gesture.hpp"

namespace mw::host {

class WindowInput {
  public:
    struct Callbacks {
        std::function<WidgetPosition()> position;    // where the window is now
        std::function<void(WidgetPosition)> moveTo;  // move the window (host-moved windows)
        std::function<void(WidgetPosition)> moved;   // a move ended here: keep it
        std::function<void(PointerPoint)> clicked;   // a click at this point, in window points
        std::function<void()> edit;
        std::function<void()> remove;
        std::function<void()> add;
        std::function<void()> leave;  // Escape: the keyboard focus leaves the rows
        // Tab (forward) or Shift+Tab, at the time of the key press.
        std::function<void(bool forward, guint32 time)> tab;
    };

    // Pointer points are taken on the screen when the window manager moves
    // the window or `screenPoints` says the backend gives reliable root
    // coordinates (X11); else in the surface as it was at the press
    // (layer-shell surfaces have no screen coordinates).
    WindowInput(GtkWindow* window, MoveMode mode, bool screenPoints, Callbacks callbacks);
    WindowInput(const WindowInput&) = delete;
    WindowInput& operator=(const WindowInput&) = delete;

    // A move is under way: positions from the store wait until it ends.
    bool moving() const { return gesture_.moving(); }
    void setEditable(bool editable);

  private:
    void perform(const GestureAction& action, const GdkEvent* event);
    // The menu, built the first time it is asked for: most widgets never show it.
    GtkWidget* menu();

    GtkWindow* window_;
    MoveMode mode_;
    Callbacks callbacks_;
    PointerGesture gesture_;
    GtkWidget* menu_ = nullptr;  // owned by the window it is attached to
    GtkWidget* editItem_ = nullptr;
    bool editable_ = true;
    Source restTimer_;  // a window-manager move ends when the window rests
    Connection press_, motion_, release_, configure_, key_;
};

}  // namespace mw::host
