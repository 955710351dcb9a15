// The host on real desktops started headless by tests/host/desktop_session.sh
// (openbox on Xvfb, sway, GNOME's mutter through XWayland), checked from
// outside: the compositor's screenshots (on mutter the window manager's
// geometry) show each widget drawn at its saved place, the window manager's
// own lists keep it below normal windows and out of task lists, and a drag by a
// known distance moves it by exactly that distance and is saved (on sway
// through a virtual pointer, its headless seat having none).
//
// Each test re-runs this binary inside its desktop. A desktop that cannot
// start fails the test with the compositor's own messages.

#include <gtest/gtest.h>

#include <sstream>

#include "config/family.hpp"
#include "host/e2e_harness.hpp"

namespace mw {
namespace {

using namespace mw::testing::e2e;
using testing::readFile;
using testing::TempDir;

constexpr const char* kInsideVariable = "MW_DESKTOP_E2E_INSIDE";

struct Placed {
    std::string id;
    std::string title;  // the window's title, the widget's display name
    WidgetPosition at;
};

// Whether DESKTOP shows widget W at AT. mutter alone offers no screenshot
// to a client and XWayland's root window holds no pixels: there its window
// manager's view of the window's place stands in for the screen.
// Whether the X11 window manager comes to have widget W's window at AT.
::testing::AssertionResult placedAt(const Placed& w, WidgetPosition at) {
    const std::string where = "Position: " + std::to_string(at.x) + "," + std::to_string(at.y) + " ";
    std::string seen;
    if (waitFor([&] {
            seen = run("xdotool getwindowgeometry " + x11Window(w.title)).out;
            return seen.find(where) != std::string::npos;
        }, 15s))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << w.title << " not at " << where << ": " << seen;
}

bool shownOn(const std::string& desktop, const Sandbox& box, const Placed& w, WidgetPosition at, const char* shot) {
    if (desktop == "mutter") {
        const auto placed = placedAt(w, at);
        if (!placed) ADD_FAILURE() << placed.message();
        return placed;
    }
    if (desktop != "sway" && x11Window(w.title).empty()) {
        ADD_FAILURE() << w.title << " is not shown";
        return false;
    }
    return drawnAt(desktop, readImage(box.snapshots / (w.id + ".png")), at, shot);
}

// A panel 200 points tall along the top of the screen comes and goes: the
// widget under it is shown below it while it is there and goes back after,
// and its stored place never changes, the user not having moved it.
void panelComesAndGoes(const Sandbox& box, const Placed& w) {
    const auto made = run("(xmessage -geometry 1920x40+0+0 -title Panel 'a panel' &) ; sleep 0.5");
    ASSERT_TRUE(waitFor([] { return !x11Window("Panel").empty(); })) << made.err;
    const auto panel = x11Window("Panel");
    run("xprop -id " + panel + " -f _NET_WM_STRUT_PARTIAL 32c -set _NET_WM_STRUT_PARTIAL '0, 0, 200, 0, 0, 0, 0, 0, 0, 1919, 0, 0'");
    ASSERT_TRUE(waitFor([] { return run("xprop -root _NET_WORKAREA").out.find("= 0, 200, 1920, 880") != std::string::npos; }))
        << "the window manager keeps no room for the panel: " << run("xprop -root _NET_WORKAREA").out;
    EXPECT_TRUE(placedAt(w, {w.at.x, 200})) << box.hostLog();
    run("xdotool windowkill " + panel);
    EXPECT_TRUE(placedAt(w, w.at)) << box.hostLog();
    EXPECT_EQ(box.storedPosition(w.id), w.at) << "a place the user did not choose is not saved";
}

// Exported to every scenario's host: drawn light, with no accessibility bus.
void lightWithoutAccessibility() {
    ::setenv("MW_HOST_APPEARANCE", "light", 1);
    ::setenv("NO_AT_BRIDGE", "1", 1);
}

void scenario(const std::string& desktop) {
    const Sandbox box;
    lightWithoutAccessibility();
    ASSERT_TRUE(box.writeSamplePayload());

    const std::vector<Placed> widgets{{"focus-1", "Tool Focus", {100, 120}},
                                      {"accounts-1", "All Accounts", {480, 300}}};
    ASSERT_EQ(cli("place focus --at 100,120").status, 0);
    ASSERT_EQ(cli("place accounts --family systemMedium --at 480,300").status, 0);

    Host host(box.hostLogPath());
    ASSERT_TRUE(waitFor([&] { return box.allShown({"focus-1", "accounts-1"}); }, 60s)) << box.hostLog();

    // Without layer-shell the host goes through XWayland and says why, once.
    if (desktop == "mutter") {
        EXPECT_NE(box.hostLog().find("run through XWayland"), std::string::npos) << box.hostLog();
    }
    // At their saved places: the screen shows each widget drawn there, and
    // not 20 points away.
    for (const auto& w : widgets)
        EXPECT_TRUE(shownOn(desktop, box, w, w.at, "placed.png")) << desktop << ": " << w.id << "\n" << box.hostLog();

    if (desktop != "sway") {
        // The window manager's own view: below a normal window, on no task
        // list or pager.
        const auto focus = x11Window("Tool Focus");
        ASSERT_FALSE(focus.empty()) << box.hostLog();
        const auto state = run("xprop -id " + focus + " _NET_WM_STATE").out;
        for (const char* flag : {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_BELOW"})
            EXPECT_NE(state.find(flag), std::string::npos) << desktop << ": " << state;
        // Named like the desktop entry, so docks and switchers show its name and icon.
        const auto wmClass = run("xprop -id " + focus + " WM_CLASS").out;
        EXPECT_NE(wmClass.find("= \"app.meterwick.WidgetHost\", \"app.meterwick.WidgetHost\""), std::string::npos)
            << wmClass;
        const auto geometry = run("xdotool getwindowgeometry " + focus).out;
        EXPECT_NE(geometry.find("Position: 100,120"), std::string::npos) << geometry;

        // A normal window opened over the widget stays above it.
        const auto cover = run("(xmessage -geometry 400x300+50+50 -title Cover 'a normal window' &) ; sleep 1");
        ASSERT_TRUE(waitFor([] { return !x11Window("Cover").empty(); })) << cover.err;
        const auto stacking = run("xprop -root _NET_CLIENT_LIST_STACKING").out;
        const auto hex = [](const std::string& decimal) {
            std::ostringstream out;
            out << "0x" << std::hex << std::stoul(decimal);
            return out.str();
        };
        const auto widgetAt = stacking.find(hex(focus)), coverAt = stacking.find(hex(x11Window("Cover")));
        ASSERT_NE(widgetAt, std::string::npos) << stacking;
        ASSERT_NE(coverAt, std::string::npos) << stacking;
        EXPECT_LT(widgetAt, coverAt) << "the widget is stacked below the normal window: " << stacking;
        run("xdotool search --name '^Cover$' windowkill");

        panelComesAndGoes(box, widgets[0]);

        // "Show desktop" leaves the widgets where they are, drawn.
        ASSERT_EQ(run("wmctrl -k on").status, 0);
        EXPECT_TRUE(waitFor([] { return run("xprop -root _NET_SHOWING_DESKTOP").out.find("= 1") != std::string::npos; }))
            << desktop << " did not show the desktop";
        EXPECT_TRUE(shownOn(desktop, box, widgets[0], widgets[0].at, "show-desktop.png")) << desktop;
        run("wmctrl -k off");
    }

    // A drag by a known distance moves the widget by exactly that much and
    // is saved.
    const auto& accounts = widgets[1];
    drag(desktop, accounts.at.x + 60, accounts.at.y + 40, 200, 100);
    const WidgetPosition moved{accounts.at.x + 200, accounts.at.y + 100};
    EXPECT_TRUE(box.savedAt(accounts.id, moved)) << desktop << "\n" << box.hostLog();
    EXPECT_TRUE(shownOn(desktop, box, accounts, moved, "dragged.png")) << desktop << "\n" << box.hostLog();
}

// sway with a second output to the right of the first: a widget placed on
// it stands there (its layer surface on that output, its offset from that
// output's corner), and one placed past the first output's edge is brought
// back inside and saved so. A drag on the second output saves the widget
// under that output's connector name.
void monitorsScenario() {
    const Sandbox box;
    lightWithoutAccessibility();
    ASSERT_TRUE(box.writeSamplePayload());

    ASSERT_EQ(run("swaymsg create_output").status, 0);
    const auto configured = run("swaymsg output HEADLESS-2 mode 1280x720 position 1920 0");
    ASSERT_EQ(configured.status, 0) << configured.out << configured.err;
    // GTK names a Wayland output by its model and position.
    const auto outputs = nlohmann::json::parse(run("swaymsg -r -t get_outputs").out, nullptr, false);
    std::string second;
    for (const auto& output : outputs)
        if (output.value("name", "") == "HEADLESS-2") second = output.value("model", "") + "@1920,0";
    ASSERT_FALSE(second.empty()) << outputs.dump();

    const Placed focus{"focus-1", "Tool Focus", {1920 + 100, 120}};
    ASSERT_EQ(cli("place focus --monitor '" + second + "' --at 100,120").status, 0);
    ASSERT_EQ(cli("place accounts --family systemMedium --at 1800,1000").status, 0);
    const auto medium = widgetSize(WidgetFamily::systemMedium);

    Host host(box.hostLogPath());
    ASSERT_TRUE(waitFor([&] { return box.allShown({"focus-1", "accounts-1"}); }, 60s)) << box.hostLog();

    const Placed accounts{"accounts-1", "All Accounts",
                          {1920 - static_cast<int>(medium.width), 1080 - static_cast<int>(medium.height)}};
    EXPECT_TRUE(box.savedAt(accounts.id, accounts.at));
    EXPECT_TRUE(shownOn("sway", box, accounts, accounts.at, "two-outputs.png")) << box.hostLog();
    EXPECT_TRUE(shownOn("sway", box, focus, focus.at, "two-outputs.png")) << box.hostLog();

    // Dragged on the second output, the widget is saved there under the
    // output's connector name, which xdg-output gives.
    std::string steps = "move 2060 160 wait 200 press wait 100";
    for (int i = 1; i <= 10; ++i)
        steps += " move " + std::to_string(2060 + 10 * i) + " " + std::to_string(160 + 5 * i) + " wait 50";
    run("'" MW_VIRTUAL_POINTER "' 3200 1080 " + steps + " wait 200 release");
    EXPECT_TRUE(box.savedAt(focus.id, {200, 170})) << box.hostLog();
    const auto widgets = box.stored();
    const auto* dragged = findPlacement(widgets, focus.id);
    ASSERT_NE(dragged, nullptr);
    EXPECT_EQ(dragged->monitor, "HEADLESS-2");
}

void inDesktop(const std::string& desktop) {
    if (const char* inside = std::getenv(kInsideVariable); inside != nullptr) {
        if (std::string(inside) == "sway-outputs")
            monitorsScenario();
        else
            scenario(inside);
        return;
    }
    // Screenshots are kept in the build tree for a person to look at.
    const auto shots = std::filesystem::current_path() / ("desktop-shots-" + desktop);
    std::filesystem::create_directories(shots);
    std::filesystem::permissions(shots, std::filesystem::perms::all);
    const std::string session = desktop == "sway-outputs" ? "sway" : desktop;
    runThisTestInside("'" MW_DESKTOP_SESSION "' " + session,
                      std::string(kInsideVariable) + "=" + desktop + " MW_DESKTOP_SHOTS='" + shots.string() + "'", 240s);
}

TEST(DesktopEndToEnd, Openbox) { inDesktop("openbox"); }
TEST(DesktopEndToEnd, Sway) { inDesktop("sway"); }
TEST(DesktopEndToEnd, SwayTwoOutputs) { inDesktop("sway-outputs"); }
TEST(DesktopEndToEnd, Mutter) { inDesktop("mutter"); }
TEST(DesktopEndToEnd, Xfwm4) { inDesktop("xfwm4"); }
TEST(DesktopEndToEnd, KWin) { inDesktop("kwin"); }

}  // namespace
}  // namespace mw
