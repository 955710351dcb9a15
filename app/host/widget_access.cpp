#include "app/host/widget_access.hpp"

#include <algorithm>
#include <cmath>

#include "host/widget_mask.hpp"
#include "render/cairo/painter.hpp"
#include "platform/url.hpp"

namespace mw::host {
namespace {

// The button's input window would take the pointer away from the widget's
// own press, drag and click handling; with it hidden, presses reach the
// widget window while the button stays focusable and activatable.
void hideInputWindow(GtkWidget* button, gpointer) {
    if (GdkWindow* input = gtk_button_get_event_window(GTK_BUTTON(button)); input != nullptr) gdk_window_hide(input);
}

std::string widgetLinkName(const std::string& url) {
    return parseAppURL(url).kind == AppLink::Kind::tool ? "Open dashboard" : "Open Meterwick";
}

}  // namespace

WidgetAccess::WidgetAccess(GtkWindow* window, std::function<void(const std::string& url)> open)
    : window_(window), open_(std::move(open)), fixed_(gtk_fixed_new()) {
    gtk_container_add(GTK_CONTAINER(window), fixed_);
    gtk_widget_show(fixed_);
    const auto redraw = [this](auto...) { gtk_widget_queue_draw(GTK_WIDGET(window_)); };
    focusChanged_ = connect<void(GtkWindow*, GtkWidget*)>(window, "set-focus", redraw);
    focusVisible_ = connect<void(GObject*, GParamSpec*)>(window, "notify::focus-visible", redraw);
    active_ = connect<void(GObject*, GParamSpec*)>(window, "notify::is-active", redraw);
}

void WidgetAccess::update(const std::string& name, const SpokenContent& content, const std::string& tapURL,
                          render::Size size) {
    AtkObject* accessible = gtk_widget_get_accessible(GTK_WIDGET(window_));
    atk_object_set_name(accessible, name.c_str());
    atk_object_set_description(accessible, content.sentence.c_str());

    struct Wanted {
        std::string name, description, url;
        render::Rect rect;
    };
    std::vector<Wanted> wanted;
    for (const auto& link : content.links) wanted.push_back({link.name, link.description, link.url, link.rect});
    if (!tapURL.empty()) wanted.push_back({widgetLinkName(tapURL), content.sentence, tapURL, {0, 0, size.width, size.height}});

    // Children are kept by position, so the one with focus keeps it across
    // updates of the same widget.
    while (children_.size() > wanted.size()) {
        gtk_widget_destroy(children_.back()->button);
        children_.pop_back();
    }
    while (children_.size() < wanted.size()) {
        auto child = std::make_unique<Child>();
        child->button = gtk_button_new();
        gtk_widget_set_can_focus(child->button, TRUE);
        // A row opens a place, as a link does; GTK would call it a button.
        atk_object_set_role(gtk_widget_get_accessible(child->button), ATK_ROLE_LINK);
        g_signal_connect_data(child->button, "map", G_CALLBACK(hideInputWindow), nullptr, nullptr, G_CONNECT_AFTER);
        child->clicked = connect<void(GtkButton*)>(child->button, "clicked", [this, c = child.get()](GtkButton*) {
            const auto url = c->url;  // opening may update the children
            open_(url);
        });
        gtk_fixed_put(GTK_FIXED(fixed_), child->button, 0, 0);
        gtk_widget_show(child->button);
        children_.push_back(std::move(child));
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        auto& child = *children_[i];
        const auto& w = wanted[i];
        child.url = w.url;
        child.rect = w.rect;
        const int x = static_cast<int>(std::floor(w.rect.x));
        const int y = static_cast<int>(std::floor(w.rect.y));
        gtk_fixed_move(GTK_FIXED(fixed_), child.button, x, y);
        gtk_widget_set_size_request(child.button, std::max(1, static_cast<int>(std::ceil(w.rect.maxX())) - x),
                                    std::max(1, static_cast<int>(std::ceil(w.rect.maxY())) - y));
        AtkObject* a = gtk_widget_get_accessible(child.button);
        atk_object_set_name(a, w.name.c_str());
        atk_object_set_description(a, w.description.c_str());
    }
}

void WidgetAccess::drawFocus(cairo_t* cr, render::Appearance appearance) const {
    // Only the widget the keyboard is in shows where it is: one that Tab
    // left keeps its focused link but shows no ring.
    if (!gtk_window_get_focus_visible(window_) || !gtk_window_is_active(window_)) return;
    GtkWidget* focus = gtk_window_get_focus(window_);
    for (const auto& child : children_) {
        if (child->button != focus) continue;
        // A two-point ring in the usual focus blue, drawn by the widgets'
        // own painter; the widget's own link's follows the widget's corners.
        constexpr double kWidth = 2;
        const bool whole = child.get() == children_.back().get() && child->rect.x <= 0 && child->rect.y <= 0;
        // Rows run their text to their ends and stack close together: the
        // ring stands out beside a row and in above and below it.
        const double outX = whole ? -kWidth / 2 : 3;
        const double outY = -kWidth / 2;
        const auto r = child->rect;
        render::DisplayList ring;
        ring.size = {r.maxX() + outX, r.maxY() + outY};
        const auto blue = appearance == render::Appearance::dark ? Color::rgb(0.33, 0.60, 1.0)
                                                                 : Color::rgb(0.0, 0.40, 0.85);
        render::ShapeDraw shape{render::Shape::roundedRectangle(whole ? kWidgetCornerRadius - kWidth / 2 : 6),
                                render::ShapeDraw::Paint::stroke, blue, {}, {}};
        shape.stroke.lineWidth = kWidth;
        ring.ops.push_back({{r.x - outX, r.y - outY, r.width + 2 * outX, r.height + 2 * outY}, {}, 0, shape});
        render::paint(cr, ring, appearance);
        return;
    }
}

void WidgetAccess::leave() {
    gtk_window_set_focus(window_, nullptr);
}

bool WidgetAccess::moveFocus(bool forward) {
    gtk_window_set_focus_visible(window_, TRUE);
    GtkWidget* focus = gtk_window_get_focus(window_);
    const auto at = std::find_if(children_.begin(), children_.end(), [&](const auto& c) { return c->button == focus; });
    if (at == children_.end()) {
        if (children_.empty()) return false;
        enter(forward);
        return true;
    }
    const auto index = static_cast<std::size_t>(at - children_.begin());
    if (forward ? index + 1 >= children_.size() : index == 0) return false;
    gtk_widget_grab_focus(children_[forward ? index + 1 : index - 1]->button);
    return true;
}

void WidgetAccess::enter(bool forward) {
    gtk_window_set_focus_visible(window_, TRUE);
    if (children_.empty()) return;
    gtk_widget_grab_focus((forward ? children_.front() : children_.back())->button);
}

}  // namespace mw::host
