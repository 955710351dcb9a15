// The least a desktop program can be and still show the five widgets:
// Xlib windows painted with Cairo, text set with Pango, no toolkit. Two
// seconds after every window has drawn its first frame it prints its memory
// (floor_memory.hpp) and exits. Exit status 1 without a display, or if
// nothing drew within 30 seconds.

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cairo-xlib.h>
#include <pango/pangocairo.h>
#include <poll.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

#include "bench/floor/floor_memory.hpp"

namespace {

struct Card {
    Window window;
    cairo_surface_t* surface;
    mw::floor::WindowSize size;
    bool drawn = false;
};

void paint(Card& card, PangoFontDescription* font) {
    cairo_t* cr = cairo_create(card.surface);
    cairo_set_source_rgb(cr, 0.97, 0.97, 0.98);
    cairo_paint(cr);
    PangoLayout* layout = pango_cairo_create_layout(cr);
    pango_layout_set_font_description(layout, font);
    pango_layout_set_text(layout, mw::floor::kLine, -1);
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.12);
    cairo_move_to(cr, 16, 16);
    pango_cairo_show_layout(cr, layout);
    g_object_unref(layout);
    cairo_destroy(cr);
    cairo_surface_flush(card.surface);
}

}  // namespace

int main() {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) return 1;
    const int screen = DefaultScreen(display);
    PangoFontDescription* font = pango_font_description_from_string(mw::floor::kFont);

    std::vector<Card> cards;
    for (const auto size : mw::floor::kWindowSizes) {
        const Window window = XCreateSimpleWindow(display, RootWindow(display, screen), 0, 0,
                                                  static_cast<unsigned>(size.width), static_cast<unsigned>(size.height),
                                                  0, 0, WhitePixel(display, screen));
        XSelectInput(display, window, ExposureMask);
        XMapWindow(display, window);
        cards.push_back({window,
                         cairo_xlib_surface_create(display, window, DefaultVisual(display, screen), size.width,
                                                   size.height),
                         size});
    }
    XFlush(display);

    using Clock = std::chrono::steady_clock;
    const auto giveUp = Clock::now() + std::chrono::seconds(30);
    std::optional<Clock::time_point> reportAt;
    int status = 1;
    while (true) {
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            if (event.type != Expose || event.xexpose.count != 0) continue;
            for (auto& card : cards) {
                if (card.window != event.xexpose.window) continue;
                paint(card, font);
                card.drawn = true;
            }
        }
        XFlush(display);
        const auto now = Clock::now();
        if (!reportAt && std::all_of(cards.begin(), cards.end(), [](const Card& c) { return c.drawn; }))
            reportAt = now + std::chrono::seconds(2);
        if (reportAt && now >= *reportAt) {
            mw::floor::printMemory();
            status = 0;
            break;
        }
        if (now >= giveUp) break;
        const auto until = reportAt ? *reportAt : giveUp;
        pollfd fd{ConnectionNumber(display), POLLIN, 0};
        poll(&fd, 1, static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(until - now).count()) + 1);
    }
    for (auto& card : cards) cairo_surface_destroy(card.surface);
    pango_font_description_free(font);
    XCloseDisplay(display);
    return status;
}
