// A minimal GTK program shaped like the desktop host: one application, five
// undecorated, app-painted windows at the widget families' sizes, each
// drawing a surface and one line of text. Once every window has drawn and
// two seconds have passed (as the host measurement waits), it prints its own
// resident memory ("rss_kb N", "hwm_kb N", and the anonymous and file-backed
// parts "anon_kb N", "file_kb N") and exits. Exit status 1 if nothing drew
// within 30 seconds.
//
//   mw_floor_gtk [WINDOWS]     (1 to 5, default 5)

#include <gtkmm.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Size {
    int width;
    int height;
};

long statusKB(const std::string& field) {
    std::ifstream in("/proc/self/status");
    std::string line;
    while (std::getline(in, line))
        if (line.rfind(field + ":", 0) == 0) return std::stol(line.substr(field.size() + 1));
    return -1;
}

class Card : public Gtk::Window {
  public:
    Card(Size size, std::function<void()> onFirstDraw) : onFirstDraw_(std::move(onFirstDraw)) {
        set_decorated(false);
        set_resizable(false);
        set_app_paintable(true);
        set_size_request(size.width, size.height);
    }

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override {
        const double w = get_allocated_width();
        const double h = get_allocated_height();
        cr->set_source_rgb(0.97, 0.97, 0.98);
        cr->rectangle(0, 0, w, h);
        cr->fill();
        auto layout = create_pango_layout("Usage 42% \u00B7 resets in 2h 5m");
        layout->set_font_description(Pango::FontDescription("Inter Semi-Bold 12px"));
        cr->set_source_rgb(0.1, 0.1, 0.12);
        cr->move_to(16, 16);
        layout->show_in_cairo_context(cr);
        if (onFirstDraw_) std::exchange(onFirstDraw_, nullptr)();
        return true;
    }

  private:
    std::function<void()> onFirstDraw_;
};

constexpr Size kSizes[] = {{170, 170}, {364, 382}, {364, 170}, {364, 170}, {780, 382}};

}  // namespace

int main(int argc, char** argv) {
    // How many windows: five by default, like the measured host; fewer shows
    // what the toolkit costs before any window.
    const std::size_t windows = std::clamp<std::size_t>(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 5, 1, 5);

    // As the host does: plain Cairo drawing, so no OpenGL probing on X11.
    g_setenv("GDK_GL", "disable", FALSE);

    auto app = Gtk::Application::create("app.meterwick.BenchFloor", Gio::APPLICATION_NON_UNIQUE);
    std::vector<std::unique_ptr<Card>> cards;
    std::size_t drawn = 0;
    int status = 1;

    app->signal_activate().connect([&] {
        for (std::size_t i = 0; i < windows; ++i) {
            const auto size = kSizes[i];
            auto card = std::make_unique<Card>(size, [&] {
                if (++drawn != windows) return;
                Glib::signal_timeout().connect_once(
                    [&] {
                        std::printf("rss_kb %ld\nhwm_kb %ld\nanon_kb %ld\nfile_kb %ld\n", statusKB("VmRSS"),
                                    statusKB("VmHWM"), statusKB("RssAnon"), statusKB("RssFile"));
                        std::fflush(stdout);
                        status = 0;
                        app->quit();
                    },
                    2000);
            });
            app->add_window(*card);
            card->show();
            cards.push_back(std::move(card));
        }
        Glib::signal_timeout().connect_once([&] { app->quit(); }, 30000);
    });

    app->run(1, argv);  // the window count is not an option of GTK's
    return status;
}
