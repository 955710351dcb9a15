#pragma once
// A widget window as assistive technology and the keyboard reach it: the
// window's accessible name and description (the widget read as a sentence),
// and one focusable, activatable child per link: each row, then the widget
// itself. The children draw nothing and take no pointer input; the widget's
// own drawing shows them, and `drawFocus` rings the one with keyboard focus.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "app/host/glib_support.hpp"
#include "host/spoken.hpp"
#include "render/color.hpp"

namespace mw::host {

class WidgetAccess {
  public:
    WidgetAccess(GtkWindow* window, std::function<void(const std::string& url)> open);
    WidgetAccess(const WidgetAccess&) = delete;
    WidgetAccess& operator=(const WidgetAccess&) = delete;

    // What the widget shows now: its name, what it reads, its links, and
    // its own link (`tapURL`, may be empty) over the whole `size`.
    void update(const std::string& name, const SpokenContent& content, const std::string& tapURL, render::Size size);
    // Rings the child with keyboard focus, if any.
    void drawFocus(cairo_t* cr, render::Appearance appearance) const;
    // Gives the keyboard focus back to the window itself.
    void leave();
    // Moves the keyboard focus to the next (or previous) link; false when it
    // would go past the last (the first), so it may go on to another widget.
    bool moveFocus(bool forward);
    // The focus arrives from another widget: the first link, or going back
    // the last.
    void enter(bool forward);

  private:
    struct Child {
        GtkWidget* button = nullptr;  // owned by the container
        std::string url;
        render::Rect rect;
        Connection clicked;
    };

    GtkWindow* window_;
    std::function<void(const std::string&)> open_;
    GtkWidget* fixed_;  // owned by the window
    std::vector<std::unique_ptr<Child>> children_;
    Connection focusChanged_, focusVisible_, active_;
};

}  // namespace mw::host
