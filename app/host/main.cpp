// meterwick-widget-host: shows the widgets placed with `meterwick-widgets
// place` on the desktop and keeps them current. One instance per session; a
// second start hands over to the first and exits.

#include "app/host/host_application.hpp"

int main(int argc, char** argv) {
    mw::host::HostApplication host;
    return host.run(argc, argv);
}
