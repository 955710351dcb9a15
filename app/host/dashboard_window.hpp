#pragma once
// A tool's Full Dashboard in a small normal window: the Dashboard widget
// resolved to one tool key at its extra-large size, opened from a
// meterwick://tool/KEY link that nothing else on the desktop handles. It
// keeps its own timeline, follows light and dark, and closes with Escape.

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>

#include "app/host/glib_support.hpp"
#include "app/host/widget_schedule.hpp"
#include "host/placements.hpp"
#include "render/display_list.hpp"

namespace mw::host {

class DashboardWindow {
  public:
    struct Callbacks {
        std::function<render::Appearance()> appearance;
        std::function<void(const PlacedWidget& placed, const WidgetDeclaration& widget, WidgetSchedule::Built done)> build;
        std::function<void()> closed;  // the user closed it; the host lets it go
        GtkApplication* application = nullptr;
    };

    // Opens beside `from` (the widget the link came from, in desktop
    // coordinates) where the window manager lets a window choose its place.
    DashboardWindow(std::string toolKey, std::optional<GdkRectangle> from, Callbacks callbacks);
    ~DashboardWindow();
    DashboardWindow(const DashboardWindow&) = delete;
    DashboardWindow& operator=(const DashboardWindow&) = delete;

    const std::string& toolKey() const { return placed_.parameters.at("tool"); }
    void present();
    bool visible() const { return gtk_widget_get_visible(window_.get()) != FALSE; }
    void reload() { schedule_.reload(); }
    void recheck() { schedule_.recheck(); }
    void appearanceChanged() { gtk_widget_queue_draw(window_.get()); }

  private:
    void show(const AnyTimeline& timeline, std::size_t entry);

    ObjectRef<GtkWidget> window_;
    PlacedWidget placed_;
    Callbacks callbacks_;
    WidgetSchedule schedule_;
    render::DisplayList list_;
    Connection draw_, key_, delete_;
};

}  // namespace mw::host
