#pragma once
// The desktop's monitors as GDK reports them, in the host layer's terms.

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "host/monitors.hpp"

namespace mw::host {

std::vector<Monitor> desktopMonitors(GdkDisplay* display);

// The GDK monitor `monitor` was read from; nullptr when it has gone since.
GdkMonitor* gdkMonitorOf(GdkDisplay* display, const Monitor& monitor);

}  // namespace mw::host
