#pragma once
// One placed widget on the desktop: an undecorated window of the family's
// size that keeps the widget's timeline and shows its entry for now. It is
// put together from small pieces (placement, input, surface, schedule) and
// asks the host for everything else through `WidgetWindowCallbacks`.

#include <gtk/gtk.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/host/glib_support.hpp"
#include "app/host/widget_access.hpp"
#include "app/host/widget_schedule.hpp"
#include "app/host/widget_surface.hpp"
#include "app/host/window_input.hpp"
#include "app/host/window_placement.hpp"
#include "bundle/bundle.hpp"
#include "host/monitors.hpp"
#include "host/placements.hpp"

namespace mw::host {

// What a window needs from the host; each call concerns this window's widget.
struct WidgetWindowCallbacks {
    std::function<render::Appearance()> appearance;
    // Build a timeline for this placement and hand it to `done` on the main loop.
    std::function<void(const PlacedWidget& placed, const WidgetDeclaration& widget, WidgetSchedule::Built done)> build;
    // The widget's place changed (a drag, or a clamp into its monitor): the
    // offset from its monitor's corner and the monitor's identity.
    std::function<void(WidgetPosition offset, const std::optional<std::string>& monitor)> moved;
    std::function<void()> editRequested;
    std::function<void()> removeRequested;
    // "Add Widget…" from this widget's menu; `near` is where it stands, in
    // desktop coordinates.
    std::function<void(WidgetPosition near)> addRequested;
    // A link of this widget was followed; `widget` is where the widget is, in
    // desktop coordinates, for a window the link opens beside it.
    std::function<void(const std::string& url, GdkRectangle widget)> openURL;
    // Where the data was looked for and what was found, for the tooltip of
    // a widget that shows a read problem.
    std::function<std::string()> dataProblem;
    // Tab went past this widget's last link (Shift+Tab its first): the
    // keyboard focus goes on to the next widget (`focusNextWidget`).
    std::function<void(bool forward, guint32 time)> focusNext;
    std::function<void()> timerFired;
    std::optional<std::filesystem::path> snapshotDirectory;  // MW_HOST_SNAPSHOT_DIR
    HostDisplay display;
    GtkApplication* application = nullptr;  // the windows belong to it: app id, WM_CLASS, lifetime
};

class WidgetWindow {
  public:
    WidgetWindow(PlacedWidget placed, ResolvedPlacement resolved, WidgetWindowCallbacks callbacks);
    ~WidgetWindow();
    WidgetWindow(const WidgetWindow&) = delete;
    WidgetWindow& operator=(const WidgetWindow&) = delete;

    const PlacedWidget& placed() const { return placed_; }
    const WidgetDeclaration& widget() const { return *resolved_.widget; }

    // A new stored form of this widget: a new kind, family or option asks
    // the provider again; a new position moves the window.
    void update(const PlacedWidget& placed, const ResolvedPlacement& resolved);
    // Asks for a new timeline now; `done` once it is shown.
    void reload(std::function<void()> done = {});
    // `done` once no timeline build is pending.
    void whenSettled(std::function<void()> done);
    // Looks at the wall clock again (after sleep or a clock change).
    void recheck();
    // Draws again in the host's current appearance.
    void appearanceChanged();
    // Brings the window into its monitor again after monitors came, went or
    // changed.
    void monitorsChanged();
    // Drops the snapshot files (the widget was removed).
    void removeSnapshot() const;
    // Takes the keyboard focus, on the first link (going back, the last).
    void takeFocus(bool forward, guint32 time);
    // Where the widget is, in desktop coordinates.
    GdkRectangle screenRect() const;

  private:
    // Shows the widget at its stored place, clamped into its monitor.
    void place();
    // A move ended at `desktop`: the widget belongs to the monitor under its
    // centre, clamped into it, and is saved there.
    void dropAt(WidgetPosition desktop);
    // Shows the widget at `placement`, storing it when it says so.
    void keep(const Placement& placement);
    void showAt(const Placement& placement);
    std::pair<int, int> pixelSize() const;
    void showEntry(const AnyTimeline& timeline, std::size_t entry);
    void presentationChanged();
    void openLinkAt(PointerPoint at) const;

    ObjectRef<GtkWidget> window_;  // first: outlives every piece that refers to it
    PlacedWidget placed_;
    ResolvedPlacement resolved_;
    WidgetWindowCallbacks callbacks_;
    WindowPlacement placement_;
    WidgetSurface surface_;
    std::unique_ptr<WidgetAccess> access_;
    std::unique_ptr<WindowInput> input_;
    WidgetSchedule schedule_;
    Connection draw_, scale_;
};

// Tab order between widgets: as they stand on the desktop, top to bottom,
// then left to right, wrapping. Gives the focus to the one after (or before)
// the widget `from` among `windows`.
void focusNextWidget(const std::vector<WidgetWindow*>& windows, const WidgetWindow& from, bool forward,
                     guint32 time);

}  // namespace mw::host
