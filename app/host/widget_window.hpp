#pragma once
// One placed widget on the desktop: an undecorated window of the family's
// size that keeps the widget's timeline (one timer, armed for the next entry
// or the reload date), draws the entry for now with the Cairo painter, opens
// links on click, offers the context menu and can be dragged.

#include <gtkmm.h>

#include <cstdint>
#include <memory>
#include <optional>

#include "bundle/bundle.hpp"
#include "host/placements.hpp"
#include "render/display_list.hpp"

namespace mw::host {

class HostApplication;
class EditWidgetDialog;

class WidgetWindow : public Gtk::Window {
  public:
    WidgetWindow(HostApplication& host, PlacedWidget placed, ResolvedPlacement resolved);
    ~WidgetWindow() override;

    const PlacedWidget& placed() const { return placed_; }
    const WidgetDeclaration& widget() const { return *resolved_.widget; }

    // A new stored form of this widget: a new kind, family or option asks
    // the provider again; a new position moves the window.
    void update(const PlacedWidget& placed, const ResolvedPlacement& resolved);
    // Asks the provider for a new timeline now.
    void reload();
    // Looks at the wall clock again (after sleep or a clock change).
    void recheck();
    // Draws again in the host's current appearance.
    void appearanceChanged();
    // Drops the snapshot files (the widget was removed).
    void removeSnapshot() const;

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override;
    bool on_button_press_event(GdkEventButton* event) override;
    bool on_button_release_event(GdkEventButton* event) override;
    bool on_motion_notify_event(GdkEventMotion* event) override;
    bool on_configure_event(GdkEventConfigure* event) override;

  private:
    void placeOnDesktop();
    void applySize();
    void applyPosition();
    void build(Date now);
    void step(bool justBuilt);
    void show(std::size_t entryIndex);
    void presentationChanged();
    void updateShape();
    void writeSnapshot() const;
    void openLinkAt(double x, double y) const;
    void buildMenu();
    void showEditDialog();

    HostApplication& host_;
    PlacedWidget placed_;
    ResolvedPlacement resolved_;
    bool layerShell_ = false;
    bool composited_ = false;

    std::optional<AnyTimeline> timeline_;
    std::size_t shown_ = 0;
    std::uint64_t builds_ = 0;
    render::DisplayList list_;       // the widget as laid out
    render::DisplayList shownList_;  // …and masked to its rounded outline
    sigc::connection timer_;

    struct Press {
        double x = 0;
        double y = 0;
        double rootX = 0;
        double rootY = 0;
        guint32 time = 0;
    };
    std::optional<Press> press_;
    bool dragging_ = false;  // a drag is under way or has just ended
    sigc::connection positionSave_;

    Gtk::Menu menu_;
    Gtk::MenuItem editItem_{"Edit Widget…"};
    Gtk::MenuItem removeItem_{"Remove Widget"};
    Gtk::SeparatorMenuItem separator_;
    Gtk::MenuItem addItem_{"Add Widget…"};
    std::unique_ptr<EditWidgetDialog> editDialog_;
};

}  // namespace mw::host
