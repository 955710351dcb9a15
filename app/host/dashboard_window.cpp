#include "app/host/dashboard_window.hpp"

#include <algorithm>
#include <cmath>

#include "bundle/widget_view.hpp"
#include "host/spoken.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"

namespace mw::host {
namespace {

constexpr WidgetFamily kFamily = WidgetFamily::systemExtraLarge;
constexpr int kGap = 16;  // between the widget and the window beside it

const WidgetDeclaration& dashboardWidget() {
    for (const auto& widget : widgetDeclarations())
        if (widget.widgetType == "DashboardWidget") return widget;
    return widgetDeclarations().back();
}

// To the right of the widget when that fits on its monitor, else to its
// left, else below it, else above; kept inside the monitor's work area.
WidgetPosition besideWidget(GdkDisplay* display, GdkRectangle widget, WidgetPosition size) {
    GdkRectangle area{widget.x, widget.y, 1 << 15, 1 << 15};
    if (display != nullptr)
        if (GdkMonitor* monitor = gdk_display_get_monitor_at_point(display, widget.x + widget.width / 2,
                                                                   widget.y + widget.height / 2))
            gdk_monitor_get_workarea(monitor, &area);
    const int w = size.x, h = size.y;
    const WidgetPosition candidates[] = {{widget.x + widget.width + kGap, widget.y},
                                         {widget.x - kGap - w, widget.y},
                                         {widget.x, widget.y + widget.height + kGap},
                                         {widget.x, widget.y - kGap - h}};
    const auto fits = [&](WidgetPosition p) {
        return p.x >= area.x && p.y >= area.y && p.x + w <= area.x + area.width && p.y + h <= area.y + area.height;
    };
    for (const auto& p : candidates) {
        if (fits(p)) return p;
    }
    const auto clamp = [](int v, int low, int high) { return std::max(low, std::min(v, high)); };
    return {clamp(candidates[0].x, area.x, area.x + area.width - w), clamp(widget.y, area.y, area.y + area.height - h)};
}

}  // namespace

DashboardWindow::DashboardWindow(std::string toolKey, std::optional<GdkRectangle> from, Callbacks callbacks)
    : window_(GTK_WIDGET(g_object_ref(gtk_window_new(GTK_WINDOW_TOPLEVEL)))),
      placed_{"dashboard", std::string(dashboardWidget().kind), std::string(rawValue(kFamily)),
              {{"tool", std::move(toolKey)}}, {}},
      callbacks_(std::move(callbacks)),
      schedule_({
          .build = [this](WidgetSchedule::Built done) { callbacks_.build(placed_, dashboardWidget(), std::move(done)); },
          .show = [this](const AnyTimeline& timeline, std::size_t entry) { show(timeline, entry); },
          .timerFired = [] {},
      }) {
    auto* window = GTK_WINDOW(window_.get());
    gtk_window_set_title(window, std::string(dashboardWidget().displayName).c_str());
    gtk_window_set_role(window, "meterwick-dashboard");
    gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_DIALOG);  // floats on tiling window managers
    gtk_window_set_resizable(window, FALSE);
    gtk_widget_set_app_paintable(window_.get(), TRUE);
    if (callbacks_.application != nullptr) gtk_window_set_application(window, callbacks_.application);
    const auto size = widgetSize(kFamily);
    gtk_widget_set_size_request(window_.get(), static_cast<int>(std::ceil(size.width)),
                                static_cast<int>(std::ceil(size.height)));
    if (from) {
        const auto at = besideWidget(gdk_display_get_default(), *from,
                                     {static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height))});
        gtk_window_move(window, at.x, at.y);
    }

    draw_ = connect<gboolean(GtkWidget*, cairo_t*)>(window_.get(), "draw", [this](GtkWidget*, cairo_t* cr) {
        const auto appearance = callbacks_.appearance();
        const auto background = render::surfaceColor(appearance);
        cairo_set_source_rgb(cr, background.r, background.g, background.b);
        cairo_paint(cr);
        render::paint(cr, list_, appearance);
        return TRUE;
    });
    key_ = connect<gboolean(GtkWidget*, GdkEventKey*)>(window_.get(), "key-press-event",
                                                        [this](GtkWidget*, GdkEventKey* e) -> gboolean {
                                                            if (e->keyval != GDK_KEY_Escape) return FALSE;
                                                            gtk_window_close(GTK_WINDOW(window_.get()));
                                                            return TRUE;
                                                        });
    // The host drops this object later, outside the signal.
    delete_ = connect<gboolean(GtkWidget*, GdkEvent*)>(window_.get(), "delete-event", [this](GtkWidget*, GdkEvent*) {
        gtk_widget_hide(window_.get());
        callbacks_.closed();
        return TRUE;
    });
    schedule_.reload();
}

DashboardWindow::~DashboardWindow() {
    gtk_widget_destroy(window_.get());
}

void DashboardWindow::present() {
    gtk_widget_show(window_.get());
    gtk_window_present(GTK_WINDOW(window_.get()));
}

void DashboardWindow::show(const AnyTimeline& timeline, std::size_t entry) {
    const auto& shown = timeline.entries[entry];
    list_ = layoutWidget(shown, kFamily, render::systemTextMeasurer());
    const auto name = spokenName(dashboardWidget(), shown);
    gtk_window_set_title(GTK_WINDOW(window_.get()), name.c_str());
    atk_object_set_description(gtk_widget_get_accessible(window_.get()), spokenContent(list_).sentence.c_str());
    gtk_widget_queue_draw(window_.get());
}

}  // namespace mw::host
