#include "app/host/widget_window.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "app/host/desktop_monitors.hpp"
#include "app/host/dialogs.hpp"
#include "host/spoken.hpp"
#include "render/display_list.hpp"

namespace mw::host {

WidgetWindow::WidgetWindow(PlacedWidget placed, ResolvedPlacement resolved, WidgetWindowCallbacks callbacks)
    : window_(GTK_WIDGET(g_object_ref(gtk_window_new(GTK_WINDOW_TOPLEVEL)))),
      placed_(std::move(placed)),
      resolved_(resolved),
      callbacks_(std::move(callbacks)),
      placement_(GTK_WINDOW(window_.get()), callbacks_.display),
      surface_(window_.get(), placement_.composited()),
      schedule_({
          .build = [this](WidgetSchedule::Built done) { callbacks_.build(placed_, widget(), std::move(done)); },
          .show = [this](const AnyTimeline& timeline, std::size_t entry) { showEntry(timeline, entry); },
          .timerFired = [this] { callbacks_.timerFired(); },
      }) {
    auto* window = GTK_WINDOW(window_.get());
    gtk_window_set_title(window, std::string(widget().displayName).c_str());
    gtk_window_set_role(window, "meterwick-widget");
    if (callbacks_.application != nullptr) gtk_window_set_application(window, callbacks_.application);
    access_ = std::make_unique<WidgetAccess>(
        window, [this](const std::string& url) { callbacks_.openURL(url, screenRect()); });

    // Window managers will not move a desktop-type window, so the host moves
    // it; a utility window is moved by the window manager.
    const bool wmMoves = !placement_.layerShell() && callbacks_.display.x11.type == X11WindowType::utility;
    input_ = std::make_unique<WindowInput>(window, wmMoves ? MoveMode::windowManager : MoveMode::host,
                                           !placement_.layerShell(), WindowInput::Callbacks{
                                               .position = [this] { return placement_.position(); },
                                               .moveTo = [this](WidgetPosition p) { placement_.moveTo(p); },
                                               .moved = [this](WidgetPosition p) { dropAt(p); },
                                               .clicked = [this](PointerPoint at) { openLinkAt(at); },
                                               .edit = [this] { callbacks_.editRequested(); },
                                               .remove = [this] { callbacks_.removeRequested(); },
                                               .add = [this] { callbacks_.addRequested(placement_.position()); },
                                               .leave = [this] { access_->leave(); },
                                               .tab =
                                                   [this](bool forward, guint32 time) {
                                                       if (!access_->moveFocus(forward))
                                                           callbacks_.focusNext(forward, time);
                                                   },
                                           });
    input_->setEditable(editable(widget()));

    draw_ = connect<gboolean(GtkWidget*, cairo_t*)>(window_.get(), "draw", [this](GtkWidget*, cairo_t* cr) {
        const auto appearance = callbacks_.appearance();
        surface_.draw(cr, appearance);
        access_->drawFocus(cr, appearance);
        return TRUE;  // the link children draw nothing of their own
    });
    scale_ = connect<void(GObject*, GParamSpec*)>(window_.get(), "notify::scale-factor",
                                                  [this](GObject*, GParamSpec*) { presentationChanged(); });

    placement_.resize(widgetSize(resolved_.family));
    place();
    gtk_widget_show(window_.get());
    schedule_.reload();
}

WidgetWindow::~WidgetWindow() {
    input_.reset();
    access_.reset();
    gtk_widget_destroy(window_.get());
}

void WidgetWindow::update(const PlacedWidget& placed, const ResolvedPlacement& resolved) {
    const bool rebuild =
        placed.kind != placed_.kind || placed.family != placed_.family || placed.parameters != placed_.parameters;
    const bool resized = resolved.family != resolved_.family;
    const bool moved = placed.position != placed_.position || placed.monitor != placed_.monitor;
    placed_ = placed;
    resolved_ = resolved;
    input_->setEditable(editable(widget()));
    if (resized) placement_.resize(widgetSize(resolved_.family));
    if ((moved || resized) && !input_->moving()) place();
    if (rebuild) schedule_.reload();
}

std::pair<int, int> WidgetWindow::pixelSize() const {
    const auto size = widgetSize(resolved_.family);
    return {static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height))};
}

void WidgetWindow::showAt(const Placement& placement) {
    GdkDisplay* display = gtk_widget_get_display(window_.get());
    if (placement.monitor != nullptr)
        placement_.setMonitor(gdkMonitorOf(display, *placement.monitor),
                              {placement.monitor->geometry.x, placement.monitor->geometry.y});
    placement_.moveTo(placement.desktop);
}

void WidgetWindow::place() {
    const auto monitors = desktopMonitors(gtk_widget_get_display(window_.get()));
    const auto [width, height] = pixelSize();
    keep(placeOnMonitor(monitors, placed_.monitor, placed_.position, width, height));
}

void WidgetWindow::dropAt(WidgetPosition desktop) {
    const auto monitors = desktopMonitors(gtk_widget_get_display(window_.get()));
    const auto [width, height] = pixelSize();
    keep(placeAtDesktop(monitors, placed_.monitor, desktop, width, height));
}

void WidgetWindow::keep(const Placement& placement) {
    showAt(placement);
    if (!placement.save) return;
    placed_.position = placement.offset;
    placed_.monitor = placement.identity;
    callbacks_.moved(placed_.position, placed_.monitor);
}

void WidgetWindow::monitorsChanged() {
    if (!input_->moving()) place();
}

void WidgetWindow::reload(std::function<void()> done) {
    schedule_.reload(std::move(done));
}

void WidgetWindow::whenSettled(std::function<void()> done) {
    schedule_.whenSettled(std::move(done));
}

void WidgetWindow::recheck() {
    schedule_.recheck();
}

void WidgetWindow::appearanceChanged() {
    presentationChanged();
}

void WidgetWindow::showEntry(const AnyTimeline& timeline, std::size_t entry) {
    const auto& shown = timeline.entries[entry];
    surface_.show(shown, resolved_.family);
    const auto& list = surface_.list();
    const bool readProblem = entryReadStatus(shown) != ReadStatus::ok;
    const auto problem = readProblem ? callbacks_.dataProblem() : std::string();
    // The tooltip says where the data was looked for; a screen reader hears
    // it after the panel's own words.
    auto content = spokenContent(list);
    if (!problem.empty()) content.sentence += ". " + problem;
    access_->update(spokenName(widget(), shown), content, list.tapURL, list.size);
    gtk_widget_set_tooltip_text(window_.get(), readProblem ? problem.c_str() : nullptr);
    presentationChanged();
}

void WidgetWindow::presentationChanged() {
    if (surface_.empty()) return;
    const auto appearance = callbacks_.appearance();
    surface_.invalidate(appearance);
    if (!callbacks_.snapshotDirectory || !schedule_.timeline()) return;
    writeSnapshot(*callbacks_.snapshotDirectory, surface_.list(),
                  {.placed = &placed_,
                   .timeline = &*schedule_.timeline(),
                   .entry = schedule_.shownEntry(),
                   .builds = schedule_.builds(),
                   .appearance = appearance,
                   .scale = gtk_widget_get_scale_factor(window_.get()),
                   .layerShell = placement_.layerShell(),
                   .composited = placement_.composited()});
}

void WidgetWindow::removeSnapshot() const {
    if (callbacks_.snapshotDirectory) host::removeSnapshot(*callbacks_.snapshotDirectory, placed_.id);
}

void WidgetWindow::takeFocus(bool forward, guint32 time) {
    gtk_window_present_with_time(GTK_WINDOW(window_.get()), time);
    access_->enter(forward);
}

void focusNextWidget(const std::vector<WidgetWindow*>& windows, const WidgetWindow& from, bool forward,
                     guint32 time) {
    auto order = windows;
    std::sort(order.begin(), order.end(), [](const WidgetWindow* a, const WidgetWindow* b) {
        const auto ra = a->screenRect();
        const auto rb = b->screenRect();
        return std::tie(ra.y, ra.x, a->placed().id) < std::tie(rb.y, rb.x, b->placed().id);
    });
    const auto at = std::find(order.begin(), order.end(), &from);
    if (at == order.end()) return;
    const auto n = static_cast<std::ptrdiff_t>(order.size());
    const auto index = ((at - order.begin()) + (forward ? 1 : -1) + n) % n;
    order[static_cast<std::size_t>(index)]->takeFocus(forward, time);
}

GdkRectangle WidgetWindow::screenRect() const {
    const auto position = placement_.position();
    const auto [width, height] = pixelSize();
    return {position.x, position.y, width, height};
}

// The link under the pointer (a row), else the widget's own URL.
void WidgetWindow::openLinkAt(PointerPoint at) const {
    const auto url = render::urlAt(surface_.list(), {at.x, at.y});
    if (!url.empty()) callbacks_.openURL(url, screenRect());
}

}  // namespace mw::host
