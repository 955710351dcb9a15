// The gtkmm floor's program on GTK 3's C API alone: five undecorated,
// app-painted windows at the widget families' sizes, each drawing a surface
// and one line of text; two seconds after the last first frame it prints its
// memory (floor_memory.hpp) and exits. Exit status 1 if nothing drew within
// 30 seconds.

#include <gtk/gtk.h>

#include <iterator>

#include "bench/floor/floor_memory.hpp"

namespace {

struct State {
    int drawn = 0;
    int status = 1;
    GtkApplication* app = nullptr;
};

gboolean report(gpointer data) {
    auto* state = static_cast<State*>(data);
    mw::floor::printMemory();
    state->status = 0;
    g_application_quit(G_APPLICATION(state->app));
    return G_SOURCE_REMOVE;
}

gboolean giveUp(gpointer data) {
    g_application_quit(G_APPLICATION(static_cast<State*>(data)->app));
    return G_SOURCE_REMOVE;
}

gboolean draw(GtkWidget* widget, cairo_t* cr, gpointer data) {
    auto* state = static_cast<State*>(data);
    cairo_set_source_rgb(cr, 0.97, 0.97, 0.98);
    cairo_paint(cr);
    PangoLayout* layout = gtk_widget_create_pango_layout(widget, mw::floor::kLine);
    PangoFontDescription* font = pango_font_description_from_string(mw::floor::kFont);
    pango_layout_set_font_description(layout, font);
    cairo_set_source_rgb(cr, 0.1, 0.1, 0.12);
    cairo_move_to(cr, 16, 16);
    pango_cairo_show_layout(cr, layout);
    pango_font_description_free(font);
    g_object_unref(layout);
    if (g_object_get_data(G_OBJECT(widget), "drawn") == nullptr) {
        g_object_set_data(G_OBJECT(widget), "drawn", widget);
        if (++state->drawn == static_cast<int>(std::size(mw::floor::kWindowSizes))) g_timeout_add(2000, report, state);
    }
    return TRUE;
}

void activate(GtkApplication* app, gpointer data) {
    for (const auto size : mw::floor::kWindowSizes) {
        GtkWidget* window = gtk_application_window_new(app);
        gtk_window_set_decorated(GTK_WINDOW(window), FALSE);
        gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
        gtk_widget_set_app_paintable(window, TRUE);
        gtk_widget_set_size_request(window, size.width, size.height);
        g_signal_connect(window, "draw", G_CALLBACK(draw), data);
        gtk_widget_show(window);
    }
    g_timeout_add(30000, giveUp, data);
}

}  // namespace

int main(int, char** argv) {
    g_setenv("GDK_GL", "disable", FALSE);  // as the host: plain Cairo drawing
    State state;
    state.app = gtk_application_new("app.meterwick.BenchFloorC", G_APPLICATION_NON_UNIQUE);
    g_signal_connect(state.app, "activate", G_CALLBACK(activate), &state);
    g_application_run(G_APPLICATION(state.app), 1, argv);
    g_object_unref(state.app);
    return state.status;
}
