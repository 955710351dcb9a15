// meterwick-widget-host: shows the widgets placed with `meterwick-widgets
// place` on the desktop and keeps them current. One instance per session; a
// second start hands over to the first and exits.

#include <glib.h>

#include "app/host/display_route.hpp"
#include "app/host/host_application.hpp"

int main(int argc, char** argv) {
    // Everything is drawn with Cairo into plain windows. Without this GDK
    // probes OpenGL on X11 to choose visuals, which maps a GL driver (with a
    // software rasterizer, tens of megabytes) into a process that never uses it.
    g_setenv("GDK_GL", "disable", FALSE);

    // Decided before GTK opens a display: the route may switch it to X11.
    mw::host::HostApplication host(mw::host::chooseDisplay());
    return host.run(argc, argv);
}
