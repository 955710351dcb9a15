#include "app/host/widget_surface.hpp"

#include <nlohmann/json.hpp>

#include "bundle/widget_view.hpp"
#include "host/widget_mask.hpp"
#include "platform/atomic_write.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"

namespace mw::host {

void WidgetSurface::show(const AnyEntry& entry, WidgetFamily family) {
    list_ = layoutWidget(entry, family, render::systemTextMeasurer());
    shownList_ = maskedToWidgetShape(list_);
}

void WidgetSurface::invalidate(render::Appearance appearance) {
    gtk_widget_queue_draw(window_);
    updateShape(appearance);
}

void WidgetSurface::draw(cairo_t* cr, render::Appearance appearance) const {
    cairo_save(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(cr, 0, 0, 0, 0);
    cairo_paint(cr);
    cairo_restore(cr);
    render::paint(cr, shownList_, appearance);
}

// Without a compositor the window is cut to where the widget draws, so its
// rounded corners show the desktop rather than black.
void WidgetSurface::updateShape(render::Appearance appearance) {
    if (composited_ || shownList_.ops.empty()) return;
    const auto image = render::paintToImage(shownList_, {appearance, 1});
    cairo_region_t* region = gdk_cairo_region_create_from_surface(image.get());
    gtk_widget_shape_combine_region(window_, region);
    cairo_region_destroy(region);
}

void writeSnapshot(const std::filesystem::path& dir, const render::DisplayList& list, const SnapshotFacts& facts) {
    const auto& timeline = *facts.timeline;
    if (facts.entry >= timeline.entries.size()) return;
    const auto& id = facts.placed->id;
    writeFileAtomically(dir / (id + ".png"),
                        render::renderPNG(list, {facts.appearance, static_cast<double>(facts.scale)}));
    nlohmann::ordered_json info = toJSON(*facts.placed);
    info["date"] = formatISO8601(entryDate(timeline.entries[facts.entry]));
    info["entry"] = facts.entry;
    info["entries"] = timeline.entries.size();
    info["reloadAfter"] = formatISO8601(timeline.reloadAfter);
    info["build"] = facts.builds;
    info["appearance"] = std::string(render::appearanceName(facts.appearance));
    info["scale"] = facts.scale;
    info["layerShell"] = facts.layerShell;
    info["composited"] = facts.composited;
    info["cornerRadius"] = kWidgetCornerRadius;
    writeFileAtomically(dir / (id + ".json"), info.dump(2) + "\n");
}

void removeSnapshot(const std::filesystem::path& dir, const std::string& id) {
    std::error_code ec;
    std::filesystem::remove(dir / (id + ".png"), ec);
    std::filesystem::remove(dir / (id + ".json"), ec);
}

}  // namespace mw::host
