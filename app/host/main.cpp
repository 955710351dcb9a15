// meterwick-widget-host: shows the widgets placed with `meterwick-widgets
// place` on the desktop and keeps them current. One instance per session; a
// second start hands over to the first and exits.

#include <glib.h>
#include <malloc.h>

#include <cstdio>
#include <string_view>

#include "app/host/display_route.hpp"
#include "app/host/host_application.hpp"
#include "platform/bundle_info.hpp"

namespace {

constexpr const char* kHelp =
    "Usage: meterwick-widget-host [--add-widget | --reload] [--help] [--version] [URL]\n"
    "\n"
    "Shows the widgets placed with `meterwick-widgets place` on the desktop and\n"
    "keeps them current. One host runs per session; a second start hands over to\n"
    "the first, and opens the Add Widget gallery when nothing is placed yet. It\n"
    "answers on the session bus as app.meterwick.WidgetHost.\n"
    "\n"
    "A meterwick:// URL is handed to the running host: meterwick://tool/KEY opens\n"
    "that tool's Full Dashboard, meterwick://open the Add Widget gallery.\n"
    "\n"
    "  --add-widget   Open the Add Widget gallery (starting the host if needed)\n"
    "  --reload       Read the placed widgets and the widget data again\n"
    "  -h, --help     Print this help and exit\n"
    "  --version      Print the version and exit\n";

// --help and --version answer before the toolkit starts, so they work
// without a display (packaging checks run them headless).
int answeredWithoutDisplay(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h") return std::fputs(kHelp, stdout) >= 0 ? 0 : 1;
        if (argument == "--version") return std::printf("meterwick-widget-host %s\n", mw::projectVersion()) > 0 ? 0 : 1;
    }
    return -1;
}

}  // namespace

int main(int argc, char** argv) {
    if (const int status = answeredWithoutDisplay(argc, argv); status >= 0) return status;

    // Everything is drawn with Cairo into plain windows. Without this GDK
    // probes OpenGL on X11 to choose visuals, which maps a GL driver (with a
    // software rasterizer, tens of megabytes) into a process that never uses it.
    g_setenv("GDK_GL", "disable", FALSE);

    // One heap for every thread. The host's few threads (GDBus, GIO's
    // workers, the build and edit queues) each got an arena of their own,
    // whose free pages stayed resident between the rare moments they work.
    mallopt(M_ARENA_MAX, 1);

    // Decided before GTK opens a display: the route may switch it to X11.
    mw::host::HostApplication host(mw::host::chooseDisplay());
    return host.run(argc, argv);
}
