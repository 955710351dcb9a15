#pragma once
// Where widgets may stand: the desktop's monitors, a stable name for each,
// and the rules that keep a widget's rectangle visible on its monitor.
//
// A placed widget's position is an offset from the top-left corner of its
// monitor, in points. A widget without a monitor belongs to the primary one.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/placements.hpp"

namespace mw {

// A rectangle in the desktop's coordinates, in points.
struct ScreenRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const ScreenRect&) const = default;
};

struct Monitor {
    std::string connector;  // "HDMI-A-1", where the backend names it; else empty
    std::string model;      // "DELL U2720Q", where known
    ScreenRect geometry;    // the whole monitor
    ScreenRect workarea;    // what panels and docks leave; empty when unknown
    bool primary = false;
    bool operator==(const Monitor&) const = default;
};

// The name a placed widget keeps for its monitor: the connector name when
// there is one, else the model and the monitor's position ("DELL U2720Q@1920,0"),
// which survives a restart and a reordering of outputs.
std::string monitorIdentity(const Monitor& monitor);

// Whether `identity`, as a widget stored it, names `monitor`: its identity,
// or the model and position it went by before its connector was known.
bool monitorNamed(const Monitor& monitor, std::string_view identity);

// The area a widget must stay inside: the work area when known, else the
// whole monitor.
ScreenRect visibleArea(const Monitor& monitor);

// The monitor a widget belongs to: the one named when it is present, else the
// primary (the first when none says it is primary). Nothing when there are
// no monitors at all.
const Monitor* monitorFor(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity);

// An offset on a monitor moved the least so that a widget of `width` × `height`
// points lies inside `area` (given relative to the monitor's corner); a widget
// larger than the area keeps its top-left edge visible.
WidgetPosition clampOffset(WidgetPosition offset, int width, int height, const ScreenRect& area);

// Where a placed widget stands right now, and what of it is worth storing.
struct Placement {
    const Monitor* monitor = nullptr;  // where it is shown
    WidgetPosition offset;             // from the monitor's corner, clamped
    WidgetPosition desktop;            // the same point in desktop coordinates
    // The monitor to store for the widget: none for a widget that follows
    // whichever monitor is primary.
    std::optional<std::string> identity;
    // Whether `offset` and `identity` should replace what is stored.
    bool save = false;
    bool operator==(const Placement&) const = default;
};

// The stored offset on the stored monitor, moved into its visible area; a
// monitor that is gone is replaced by the primary with the offset kept where
// it fits. With no monitors at all the offset is used as it is.
//
// Only a widget on its own monitor whose stored offset lies partly off that
// monitor is saved where it is shown. One merely under a panel keeps its
// stored place and comes back when the panel goes; one shown on the primary
// while its monitor is away goes back when the monitor returns.
Placement placeOnMonitor(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity,
                         WidgetPosition offset, int width, int height);

// Where a widget dropped at `desktop` (desktop coordinates) belongs: the
// monitor under its centre, else the one named by `identity` (the monitor it
// was on), with the offset clamped into that monitor. A drop is always saved;
// a widget that named no monitor and stays on the primary keeps naming none.
Placement placeAtDesktop(const std::vector<Monitor>& monitors, const std::optional<std::string>& identity,
                         WidgetPosition desktop, int width, int height);

// The monitor showing the desktop point `at`; nullptr when it is on none.
const Monitor* monitorAt(const std::vector<Monitor>& monitors, WidgetPosition at);

// Where a new widget goes when it is asked for at the desktop point `at` (say
// from another widget's menu): the monitor under the point, else the primary,
// with the offset from that monitor's corner. A new widget on the primary
// names no monitor, like one placed without `--monitor`.
struct MonitorSpot {
    std::optional<std::string> identity;
    WidgetPosition offset;
    bool operator==(const MonitorSpot&) const = default;
};
MonitorSpot spotAt(const std::vector<Monitor>& monitors, WidgetPosition at);

}  // namespace mw
