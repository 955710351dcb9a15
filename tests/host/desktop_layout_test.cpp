// Where widgets stand: positions kept inside their monitor, monitors that
// come and go, and the display route and X11 hints chosen per desktop.

#include <gtest/gtest.h>

#include <vector>

#include "host/monitors.hpp"
#include "host/session.hpp"

namespace mw {
namespace {

Monitor monitor(std::string connector, ScreenRect geometry, bool primary = false, ScreenRect workarea = {}) {
    return {std::move(connector), "", geometry, workarea, primary};
}

TEST(Monitors, OffsetsAreClampedSoTheWholeWidgetStaysVisible) {
    const ScreenRect area{0, 0, 1920, 1080};
    struct Case {
        WidgetPosition offset;
        int width, height;
        WidgetPosition expected;
    };
    const Case cases[] = {
        {{40, 60}, 170, 170, {40, 60}},           // inside: untouched
        {{316, 1311}, 170, 170, {316, 910}},      // below the bottom edge
        {{1900, -50}, 364, 170, {1556, 0}},       // off the right and the top
        {{-400, 500}, 170, 170, {0, 500}},        // off the left
        {{100, 100}, 2400, 1200, {0, 0}},         // larger than the monitor: its top-left stays in view
        {{1750, 910}, 170, 170, {1750, 910}},     // exactly in the corner
    };
    for (const auto& c : cases)
        EXPECT_EQ(clampOffset(c.offset, c.width, c.height, area), c.expected)
            << c.offset.x << "," << c.offset.y << " " << c.width << "x" << c.height;
}

TEST(Monitors, AWidgetStandsOnItsMonitorAndOnlyAnImpossiblePlaceIsSaved) {
    // The primary on the right, a panel 32 pt tall along its top.
    const std::vector<Monitor> monitors{
        monitor("HDMI-A-1", {0, 0, 1280, 1024}),
        monitor("DP-1", {1280, 0, 2560, 1440}, true, {1280, 32, 2560, 1408}),
    };
    const std::optional<std::string> none, hdmi = "HDMI-A-1", dp = "DP-1", gone = "DP-7";
    struct Case {
        const char* name;
        std::optional<std::string> identity;
        WidgetPosition offset;
        const Monitor* shownOn;
        WidgetPosition desktop;
        bool save;
    };
    const Case cases[] = {
        {"on its own monitor", hdmi, {100, 100}, &monitors[0], {100, 100}, false},
        {"no monitor: the primary", none, {100, 100}, &monitors[1], {1380, 100}, false},
        // A panel is not the user's doing: shown below it, stored as it was.
        {"under the panel", dp, {100, 10}, &monitors[1], {1380, 32}, false},
        {"under the panel, following the primary", none, {100, 10}, &monitors[1], {1380, 32}, false},
        // Shown on the primary until its own monitor returns.
        {"monitor gone, offset fits", gone, {200, 300}, &monitors[1], {1480, 300}, false},
        {"monitor gone, offset does not fit", gone, {2500, 300}, &monitors[1], {3670, 300}, false},
        // Off the monitor itself is a place no one can see: corrected for good.
        {"off its own monitor", hdmi, {1400, 0}, &monitors[0], {1110, 0}, true},
        {"below the primary", none, {100, 1400}, &monitors[1], {1380, 1270}, true},
    };
    for (const auto& c : cases) {
        const auto placement = placeOnMonitor(monitors, c.identity, c.offset, 170, 170);
        EXPECT_EQ(placement.monitor, c.shownOn) << c.name;
        EXPECT_EQ(placement.desktop, c.desktop) << c.name;
        EXPECT_EQ(placement.save, c.save) << c.name;
        EXPECT_EQ(placement.identity, c.identity) << c.name << ": the stored monitor is kept";
    }

    EXPECT_EQ(placeOnMonitor({}, dp, {5, 6}, 170, 170), (Placement{nullptr, {5, 6}, {5, 6}, dp, false}))
        << "no monitors known: nothing to clamp to";
    const std::vector<Monitor> noPrimary{monitor("eDP-1", {0, 0, 1920, 1080}), monitor("DP-2", {1920, 0, 1920, 1080})};
    EXPECT_EQ(placeOnMonitor(noPrimary, std::nullopt, {0, 0}, 170, 170).monitor, &noPrimary[0]);
}

TEST(Monitors, IdentityIsTheConnectorElseModelAndPosition) {
    EXPECT_EQ(monitorIdentity({"HDMI-A-1", "DELL U2720Q", {1920, 0, 2560, 1440}, {}, false}), "HDMI-A-1");
    EXPECT_EQ(monitorIdentity({"", "DELL U2720Q", {1920, 0, 2560, 1440}, {}, false}), "DELL U2720Q@1920,0");
    EXPECT_EQ(monitorIdentity({"", "", {-1280, 0, 1280, 1024}, {}, false}), "monitor@-1280,0");
    // A widget stored by model and position before the connector was known
    // still finds its monitor.
    const std::vector<Monitor> monitors{monitor("eDP-1", {0, 0, 1920, 1080}, true),
                                        {"DP-2", "DELL U2720Q", {1920, 0, 2560, 1440}, {}, false}};
    EXPECT_EQ(monitorFor(monitors, "DELL U2720Q@1920,0"), &monitors[1]);
    EXPECT_EQ(monitorFor(monitors, "DELL U2720Q@0,0"), &monitors[0]) << "moved elsewhere: the primary";
}

TEST(Monitors, DropsAndNewWidgetsBelongToTheMonitorUnderThem) {
    const std::vector<Monitor> monitors{monitor("HDMI-A-1", {0, 0, 1280, 1024}, true),
                                        monitor("DP-1", {1280, 0, 1920, 1080})};
    const std::optional<std::string> none, hdmi = "HDMI-A-1", dp = "DP-1";
    struct Drop {
        const char* name;
        std::optional<std::string> identity;
        WidgetPosition desktop;
        Placement expected;
    };
    const Drop drops[] = {
        {"straddling the edge, mostly on the right", hdmi, {1200, 100},
         {&monitors[1], {0, 100}, {1280, 100}, dp, true}},
        {"below both: pulled back into its monitor", dp, {1500, 2000},
         {&monitors[1], {220, 910}, {1500, 910}, dp, true}},
        {"following the primary and staying there", none, {300, 200},
         {&monitors[0], {300, 200}, {300, 200}, none, true}},
        {"following the primary, dropped on the other", none, {1400, 200},
         {&monitors[1], {120, 200}, {1400, 200}, dp, true}},
        {"named monitor kept when dropped back on the primary", dp, {300, 200},
         {&monitors[0], {300, 200}, {300, 200}, hdmi, true}},
    };
    for (const auto& d : drops) EXPECT_EQ(placeAtDesktop(monitors, d.identity, d.desktop, 170, 170), d.expected) << d.name;

    // "Add Widget…" from a widget's menu: the new one goes on that widget's monitor.
    EXPECT_EQ(spotAt(monitors, {1500, 300}), (MonitorSpot{dp, {220, 300}}));
    EXPECT_EQ(spotAt(monitors, {300, 300}), (MonitorSpot{none, {300, 300}})) << "the primary is named by no one";
    EXPECT_EQ(spotAt(monitors, {-50, 300}), (MonitorSpot{none, {-50, 300}})) << "off every monitor: the primary";
    EXPECT_EQ(monitorAt(monitors, {1280, 1079}), &monitors[1]);
    EXPECT_EQ(monitorAt(monitors, {1280, 1080}), nullptr);
}

TEST(Session, RoutesWidgetsToLayerShellElseXWaylandElsePlainWindows) {
    struct Case {
        const char* name;
        DisplayFacts facts;
        DisplayRoute route;
        bool explains;
    };
    const Case cases[] = {
        {"sway", {true, true, true, std::nullopt}, DisplayRoute::layerShell, false},
        {"GNOME on Wayland", {true, true, false, std::nullopt}, DisplayRoute::viaXWayland, true},
        {"no layer-shell, no XWayland", {true, false, false, std::nullopt}, DisplayRoute::plainWindows, true},
        {"an X11 session", {false, true, false, std::nullopt}, DisplayRoute::x11, false},
        {"GDK_BACKEND=x11 on sway", {true, true, true, "x11"}, DisplayRoute::x11, false},
        {"GDK_BACKEND=wayland on GNOME", {true, true, false, "wayland"}, DisplayRoute::plainWindows, true},
        {"nothing", {false, false, false, std::nullopt}, DisplayRoute::noDisplay, false},
    };
    for (const auto& c : cases) {
        const auto decision = decideDisplay(c.facts);
        EXPECT_EQ(decision.route, c.route) << c.name;
        EXPECT_EQ(!decision.notice.empty(), c.explains) << c.name << ": " << decision.notice;
        EXPECT_EQ(decision.notice.find('\n'), std::string::npos) << "one line";
    }
    EXPECT_NE(decideDisplay({true, true, false, std::nullopt}).notice.find("no layer-shell"), std::string::npos);
}

TEST(Session, X11WindowTypePerDesktop) {
    struct Case {
        const char* currentDesktop;
        std::optional<std::string_view> override;
        X11WindowType type;
    };
    const Case cases[] = {
        {"openbox", std::nullopt, X11WindowType::desktop},
        {"ubuntu:GNOME", std::nullopt, X11WindowType::desktop},
        {"XFCE", std::nullopt, X11WindowType::utility},
        {"xfce", std::nullopt, X11WindowType::utility},
        {"XFCE", "desktop", X11WindowType::desktop},
        {"openbox", "Utility", X11WindowType::utility},
        {"openbox", "nonsense", X11WindowType::desktop},
        {"", std::nullopt, X11WindowType::desktop},
    };
    for (const auto& c : cases)
        EXPECT_EQ(x11Hints(c.currentDesktop, c.override).type, c.type) << c.currentDesktop;
    EXPECT_FALSE(desktopIs("XFCEX:GNOME-Classic", "XFCE")) << "whole entries only";
}

}  // namespace
}  // namespace mw
