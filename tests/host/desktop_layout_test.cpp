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

TEST(Monitors, AWidgetStandsOnItsMonitorOrThePrimaryOneWhenItsMonitorIsGone) {
    // The primary on the right, a panel 32 pt tall along its top.
    const std::vector<Monitor> monitors{
        monitor("HDMI-A-1", {0, 0, 1280, 1024}),
        monitor("DP-1", {1280, 0, 2560, 1440}, true, {1280, 32, 2560, 1408}),
    };
    struct Case {
        const char* name;
        std::optional<std::string> identity;
        WidgetPosition offset;
        Placement expected;
    };
    const Case cases[] = {
        {"on its own monitor", "HDMI-A-1", {100, 100}, {&monitors[0], {100, 100}, {100, 100}, false}},
        {"no monitor: the primary", std::nullopt, {100, 100}, {&monitors[1], {100, 100}, {1380, 100}, false}},
        {"under the panel", "DP-1", {100, 10}, {&monitors[1], {100, 32}, {1380, 32}, true}},
        {"monitor gone, offset fits", "DP-7", {200, 300}, {&monitors[1], {200, 300}, {1480, 300}, false}},
        {"monitor gone, offset does not fit", "DP-7", {2500, 300}, {&monitors[1], {2390, 300}, {3670, 300}, true}},
        {"off its own monitor", "HDMI-A-1", {1400, 0}, {&monitors[0], {1110, 0}, {1110, 0}, true}},
    };
    for (const auto& c : cases) EXPECT_EQ(placeOnMonitor(monitors, c.identity, c.offset, 170, 170), c.expected) << c.name;

    EXPECT_EQ(placeOnMonitor({}, "DP-1", {5, 6}, 170, 170), (Placement{nullptr, {5, 6}, {5, 6}, false}))
        << "no monitors known: nothing to clamp to";
    const std::vector<Monitor> noPrimary{monitor("eDP-1", {0, 0, 1920, 1080}), monitor("DP-2", {1920, 0, 1920, 1080})};
    EXPECT_EQ(placeOnMonitor(noPrimary, std::nullopt, {0, 0}, 170, 170).monitor, &noPrimary[0]);
}

TEST(Monitors, IdentityIsTheConnectorElseModelAndPosition) {
    EXPECT_EQ(monitorIdentity({"HDMI-A-1", "DELL U2720Q", {1920, 0, 2560, 1440}, {}, false}), "HDMI-A-1");
    EXPECT_EQ(monitorIdentity({"", "DELL U2720Q", {1920, 0, 2560, 1440}, {}, false}), "DELL U2720Q@1920,0");
    EXPECT_EQ(monitorIdentity({"", "", {-1280, 0, 1280, 1024}, {}, false}), "monitor@-1280,0");
}

TEST(Monitors, ADropBelongsToTheMonitorUnderTheWidgetsCentre) {
    const std::vector<Monitor> monitors{monitor("HDMI-A-1", {0, 0, 1280, 1024}, true),
                                        monitor("DP-1", {1280, 0, 1920, 1080})};
    // Dropped straddling the edge, mostly on the right: it moves over.
    const auto across = placeAtDesktop(monitors, "HDMI-A-1", {1200, 100}, 170, 170);
    EXPECT_EQ(across.monitor, &monitors[1]);
    EXPECT_EQ(across.offset, (WidgetPosition{0, 100}));
    EXPECT_EQ(across.desktop, (WidgetPosition{1280, 100}));
    // Dropped below both: it stays with its monitor, pulled back in.
    const auto below = placeAtDesktop(monitors, "DP-1", {1500, 2000}, 170, 170);
    EXPECT_EQ(below.monitor, &monitors[1]);
    EXPECT_EQ(below.desktop, (WidgetPosition{1500, 910}));
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
