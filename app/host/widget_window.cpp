#include "app/host/widget_window.hpp"

#include <gtk-layer-shell/gtk-layer-shell.h>

#include <cmath>
#include <cstdlib>
#include <iostream>

#include "app/host/dialogs.hpp"
#include "app/host/host_application.hpp"
#include "bundle/widget_view.hpp"
#include "host/schedule.hpp"
#include "host/widget_mask.hpp"
#include "platform/atomic_write.hpp"
#include "platform/clock.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"

namespace mw::host {
namespace {

// How long a moved window must rest before its place is saved.
constexpr unsigned kPositionSaveDelayMilliseconds = 500;

}  // namespace

WidgetWindow::WidgetWindow(HostApplication& host, PlacedWidget placed, ResolvedPlacement resolved)
    : Gtk::Window(Gtk::WINDOW_TOPLEVEL), host_(host), placed_(std::move(placed)), resolved_(resolved) {
    set_title(std::string(widget().displayName));
    set_role("meterwick-widget");
    set_decorated(false);
    set_resizable(false);
    set_app_paintable(true);
    set_skip_taskbar_hint(true);
    set_skip_pager_hint(true);
    set_accept_focus(false);
    set_focus_on_map(false);
    add_events(Gdk::BUTTON_PRESS_MASK | Gdk::BUTTON_RELEASE_MASK | Gdk::POINTER_MOTION_MASK);

    // Transparent corners need a compositor; without one the window is cut to
    // the drawn shape instead (see updateShape).
    const auto screen = get_screen();
    if (const auto visual = screen->get_rgba_visual(); visual && screen->is_composited()) {
        gtk_widget_set_visual(GTK_WIDGET(gobj()), visual->gobj());
        composited_ = true;
    }

    placeOnDesktop();
    applySize();
    applyPosition();
    buildMenu();
    property_scale_factor().signal_changed().connect([this] { presentationChanged(); });

    build(systemNow());
    step(true);
    Gtk::Window::show();
}

WidgetWindow::~WidgetWindow() {
    timer_.disconnect();
    positionSave_.disconnect();
}

// On wlroots compositors a layer-shell surface on the bottom layer; elsewhere
// an ordinary window with the hints that keep it on the desktop.
void WidgetWindow::placeOnDesktop() {
    if (gtk_layer_is_supported()) {
        auto* window = gobj();
        gtk_layer_init_for_window(window);
        gtk_layer_set_namespace(window, "meterwick-widget");
        gtk_layer_set_layer(window, GTK_LAYER_SHELL_LAYER_BOTTOM);
        gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_TOP, TRUE);
        gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_LEFT, TRUE);
        gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_NONE);
        layerShell_ = true;
        return;
    }
    set_type_hint(Gdk::WINDOW_TYPE_HINT_UTILITY);
    set_keep_below(true);
    stick();
}

void WidgetWindow::applySize() {
    const auto size = widgetSize(resolved_.family);
    const int width = static_cast<int>(std::ceil(size.width));
    const int height = static_cast<int>(std::ceil(size.height));
    set_size_request(width, height);
    resize(width, height);
}

void WidgetWindow::applyPosition() {
    if (layerShell_) {
        gtk_layer_set_margin(gobj(), GTK_LAYER_SHELL_EDGE_LEFT, placed_.position.x);
        gtk_layer_set_margin(gobj(), GTK_LAYER_SHELL_EDGE_TOP, placed_.position.y);
    } else {
        move(placed_.position.x, placed_.position.y);
    }
}

void WidgetWindow::update(const PlacedWidget& placed, const ResolvedPlacement& resolved) {
    const bool rebuild =
        placed.kind != placed_.kind || placed.family != placed_.family || placed.parameters != placed_.parameters;
    const bool resized = resolved.family != resolved_.family;
    const bool moved = placed.position != placed_.position;
    if (placed.kind != placed_.kind) editDialog_.reset();  // its parameters belong to the old intent
    placed_ = placed;
    resolved_ = resolved;
    editItem_.set_sensitive(widget().intent != nullptr);
    if (resized) applySize();
    if (moved && !dragging_) applyPosition();
    if (rebuild) {
        build(systemNow());
        step(true);
    }
}

void WidgetWindow::reload() {
    build(systemNow());
    step(true);
}

void WidgetWindow::recheck() {
    step(false);
}

void WidgetWindow::appearanceChanged() {
    presentationChanged();
}

void WidgetWindow::build(Date now) {
    auto context = host_.providerContext();
    context.now = Date{std::floor(now.seconds)};
    timeline_ = widget().timeline(context, placed_.parameters);
    shown_ = static_cast<std::size_t>(-1);  // lay out afresh whichever entry comes up
    ++builds_;
    ++host_.counters().timelineBuilds;
}

// Shows the entry for now and arms the one timer for the next change.
void WidgetWindow::step(bool justBuilt) {
    Date now = systemNow();
    auto next = scheduleStep(scheduleOf(*timeline_), now);
    if (next.reloadDue && !justBuilt) {
        build(now);
        now = systemNow();
        next = scheduleStep(scheduleOf(*timeline_), now);
        justBuilt = true;
    }
    if (next.entryIndex != shown_) show(next.entryIndex);
    // A timeline that is due again the moment it is built would otherwise be
    // asked for in a loop; a second is plenty.
    const Date wakeAt = next.reloadDue && justBuilt ? std::max(next.wakeAt, now + 1.0) : next.wakeAt;

    timer_.disconnect();
    timer_ = Glib::signal_timeout().connect(
        [this] {
            timer_ = {};  // this source ends when we return false
            ++host_.counters().timerWakeUps;
            step(false);
            return false;
        },
        timerDelayMilliseconds(now, wakeAt));
}

void WidgetWindow::show(std::size_t entryIndex) {
    shown_ = entryIndex;
    if (entryIndex >= timeline_->entries.size()) return;
    list_ = layoutWidget(timeline_->entries[entryIndex], resolved_.family, render::systemTextMeasurer());
    shownList_ = maskedToWidgetShape(list_);
    presentationChanged();
}

void WidgetWindow::presentationChanged() {
    queue_draw();
    updateShape();
    writeSnapshot();
}

bool WidgetWindow::on_draw(const Cairo::RefPtr<Cairo::Context>& cr) {
    cr->save();
    cr->set_operator(Cairo::OPERATOR_SOURCE);
    cr->set_source_rgba(0, 0, 0, 0);
    cr->paint();
    cr->restore();
    render::paint(cr->cobj(), shownList_, host_.appearance());
    return true;
}

// Without a compositor the window is cut to where the widget draws, so its
// rounded corners show the desktop rather than black.
void WidgetWindow::updateShape() {
    if (composited_ || shownList_.ops.empty()) return;
    const auto image = render::paintToImage(shownList_, {host_.appearance(), 1});
    cairo_region_t* region = gdk_cairo_region_create_from_surface(image.get());
    gtk_widget_shape_combine_region(GTK_WIDGET(gobj()), region);
    cairo_region_destroy(region);
}

// MW_HOST_SNAPSHOT_DIR: <id>.png, the widget as drawn at the window's scale
// (before the window's corner mask), then <id>.json saying what it shows, so
// a test can draw the same and compare.
void WidgetWindow::writeSnapshot() const {
    const auto& dir = host_.snapshotDirectory();
    if (!dir || !timeline_ || shown_ >= timeline_->entries.size()) return;
    const int scale = get_scale_factor();
    writeFileAtomically(*dir / (placed_.id + ".png"),
                        render::renderPNG(list_, {host_.appearance(), static_cast<double>(scale)}));
    nlohmann::ordered_json info = toJSON(placed_);
    info["date"] = formatISO8601(entryDate(timeline_->entries[shown_]));
    info["entry"] = shown_;
    info["entries"] = timeline_->entries.size();
    info["reloadAfter"] = formatISO8601(timeline_->reloadAfter);
    info["build"] = builds_;
    info["appearance"] = std::string(render::appearanceName(host_.appearance()));
    info["scale"] = scale;
    info["layerShell"] = layerShell_;
    info["composited"] = composited_;
    info["cornerRadius"] = kWidgetCornerRadius;
    writeFileAtomically(*dir / (placed_.id + ".json"), info.dump(2) + "\n");
}

void WidgetWindow::removeSnapshot() const {
    const auto& dir = host_.snapshotDirectory();
    if (!dir) return;
    std::error_code ec;
    std::filesystem::remove(*dir / (placed_.id + ".png"), ec);
    std::filesystem::remove(*dir / (placed_.id + ".json"), ec);
}

bool WidgetWindow::on_button_press_event(GdkEventButton* event) {
    if (event->type != GDK_BUTTON_PRESS) return true;  // double and triple clicks add nothing
    if (event->button == GDK_BUTTON_SECONDARY) {
        menu_.popup_at_pointer(reinterpret_cast<GdkEvent*>(event));
        return true;
    }
    if (event->button == GDK_BUTTON_PRIMARY) {
        press_ = Press{event->x, event->y, event->x_root, event->y_root, event->time};
        dragging_ = false;
    }
    return true;
}

bool WidgetWindow::on_motion_notify_event(GdkEventMotion* event) {
    if (!press_) return false;
    if (!dragging_) {
        if (!gtk_drag_check_threshold(GTK_WIDGET(gobj()), static_cast<int>(press_->x), static_cast<int>(press_->y),
                                      static_cast<int>(event->x), static_cast<int>(event->y)))
            return true;
        dragging_ = true;
        if (!layerShell_) {
            // The window manager moves the window; configure events report where to.
            begin_move_drag(GDK_BUTTON_PRIMARY, static_cast<int>(press_->rootX), static_cast<int>(press_->rootY),
                            event->time);
            press_.reset();
            return true;
        }
    }
    // Layer shell: move by the margins so the pressed point stays under the pointer.
    placed_.position.x += static_cast<int>(std::lround(event->x - press_->x));
    placed_.position.y += static_cast<int>(std::lround(event->y - press_->y));
    applyPosition();
    return true;
}

bool WidgetWindow::on_button_release_event(GdkEventButton* event) {
    if (event->button != GDK_BUTTON_PRIMARY || !press_) return false;
    press_.reset();
    if (dragging_) {
        dragging_ = false;
        host_.setPosition(placed_.id, placed_.position);
        return true;
    }
    openLinkAt(event->x, event->y);
    return true;
}

bool WidgetWindow::on_configure_event(GdkEventConfigure* event) {
    const bool handled = Gtk::Window::on_configure_event(event);
    if (dragging_ && !layerShell_) {
        positionSave_.disconnect();
        positionSave_ = Glib::signal_timeout().connect(
            [this] {
                positionSave_ = {};
                dragging_ = false;
                int x = 0;
                int y = 0;
                get_position(x, y);
                if (WidgetPosition{x, y} != placed_.position) {
                    placed_.position = {x, y};
                    host_.setPosition(placed_.id, placed_.position);
                }
                return false;
            },
            kPositionSaveDelayMilliseconds);
    }
    return handled;
}

// The link under the pointer (a row), else the widget's own URL. Tests set
// MW_URL_HANDLER to a command that is run as `command URL` instead of the
// desktop's handler.
void WidgetWindow::openLinkAt(double x, double y) const {
    const auto url = render::urlAt(list_, {x, y});
    if (url.empty()) return;
    try {
        if (const char* handler = std::getenv("MW_URL_HANDLER"); handler != nullptr && *handler != '\0')
            Glib::spawn_async("", std::vector<std::string>{handler, url}, Glib::SPAWN_DEFAULT);
        else
            Gio::AppInfo::launch_default_for_uri(url);
    } catch (const Glib::Error& error) {
        std::cerr << "meterwick-widget-host: cannot open " << url << ": " << error.what() << std::endl;
    }
}

void WidgetWindow::buildMenu() {
    editItem_.set_sensitive(widget().intent != nullptr);
    editItem_.signal_activate().connect([this] { showEditDialog(); });
    removeItem_.signal_activate().connect([this] { host_.removeWidget(placed_.id); });
    addItem_.signal_activate().connect([this] { host_.showAddDialog(placed_.position); });
    menu_.append(editItem_);
    menu_.append(removeItem_);
    menu_.append(separator_);
    menu_.append(addItem_);
    menu_.show_all();
    menu_.attach_to_widget(*this);
}

void WidgetWindow::showEditDialog() {
    if (widget().intent == nullptr) return;
    // A new dialog each time: the tool and provider lists come from a fresh
    // load of the payload.
    editDialog_ = std::make_unique<EditWidgetDialog>(
        *widget().intent, placed_.parameters, host_.providerContext().container,
        [this](const std::string& name, const std::string& value) { host_.setParameter(placed_.id, name, value); });
    editDialog_->present();
}

}  // namespace mw::host
