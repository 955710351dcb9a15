#pragma once
// What a widget window shows: the laid-out entry, painted by the Cairo
// painter through the widget's rounded outline, the window cut to that shape
// where no compositor blends it, and (for tests) a snapshot of each drawing.

#include <gtk/gtk.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "bundle/bundle.hpp"
#include "host/placements.hpp"
#include "render/color.hpp"
#include "render/display_list.hpp"

namespace mw::host {

class WidgetSurface {
  public:
    WidgetSurface(GtkWidget* window, bool composited) : window_(window), composited_(composited) {}

    // Lays out `entry` for `family`.
    void show(const AnyEntry& entry, WidgetFamily family);
    const render::DisplayList& list() const { return list_; }
    bool empty() const { return shownList_.ops.empty(); }

    // Asks for a new drawing and, without a compositor, a new shape.
    void invalidate(render::Appearance appearance);
    void draw(cairo_t* cr, render::Appearance appearance) const;

  private:
    void updateShape(render::Appearance appearance);

    GtkWidget* window_;
    bool composited_;
    render::DisplayList list_;       // the widget as laid out
    render::DisplayList shownList_;  // …and masked to its rounded outline
};

// What a snapshot records beside the PNG.
struct SnapshotFacts {
    const PlacedWidget* placed = nullptr;
    const AnyTimeline* timeline = nullptr;
    std::size_t entry = 0;
    std::uint64_t builds = 0;
    render::Appearance appearance = render::Appearance::light;
    int scale = 1;
    bool layerShell = false;
    bool composited = false;
};

// DIR/<id>.png, the widget as drawn at the window's scale (before the
// corner mask), then DIR/<id>.json saying what it shows, so a test can draw
// the same and compare.
void writeSnapshot(const std::filesystem::path& dir, const render::DisplayList& list, const SnapshotFacts& facts);
void removeSnapshot(const std::filesystem::path& dir, const std::string& id);

}  // namespace mw::host
