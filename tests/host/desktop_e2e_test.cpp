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

#include <array>
#include <fstream>
#include <functional>
#include <optional>
#include <string_view>
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

    // Layer surfaces on sway, and only there is gtk-layer-shell loaded.
    const bool layered = desktop == "sway";
    const auto shown = box.shown("focus-1");
    ASSERT_TRUE(shown.has_value());
    EXPECT_EQ(shown->value("layerShell", !layered), layered) << desktop << "\n" << box.hostLog();
    const auto maps = readFile("/proc/" + std::to_string(host.pid()) + "/maps");
    EXPECT_EQ(maps.find("libgtk-layer-shell") != std::string::npos, layered) << desktop;

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

void swayClick(int x, int y, const std::string& button, int width);
std::optional<std::array<int, 4>> swayWindow(const std::string& name);

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

    // Edit Widget (titled by the widget's options, "Focus Tool") and its
    // monitor row, its last, send it back to the first output at the same offset: the list opens with the current output over the
    // row and the first one a row above.
    const auto onFirst = [&] {
        const auto now = box.stored();
        const auto* placed = findPlacement(now, focus.id);
        return placed != nullptr && placed->monitor && *placed->monitor == "HEADLESS-1";
    };
    swayClick(2020 + 100, 170 + 80, "right-press", 3200);
    swayClick(2020 + 150, 170 + 97, "press", 3200);
    ASSERT_TRUE(waitFor([] { return swayWindow("Focus Tool").has_value(); }, 10s)) << box.hostLog();
    const auto edit = *swayWindow("Focus Tool");
    const int rowX = edit[0] + 220, rowY = edit[1] + edit[3] - 71;
    swayClick(rowX, rowY, "press", 3200);
    screenshot("sway", std::filesystem::path(::getenv("MW_DESKTOP_SHOTS")) / "monitor-list.png");
    swayClick(rowX, rowY - 30, "press", 3200);
    EXPECT_TRUE(waitFor(onFirst, 10s)) << readFile(box.config / "meterwick" / kPlacementsFileName);
    EXPECT_TRUE(shownOn("sway", box, focus, {200, 170}, "monitor-changed.png")) << box.hostLog();
}

// X11: the window with this title and role (a dialog and a widget may
// share a title).
std::string x11WindowWithRole(const std::string& title, const std::string& role) {
    std::istringstream ids(run("xdotool search --onlyvisible --name '^" + title + "$'").out);
    for (std::string id; ids >> id;)
        if (run("xprop -id " + id + " WM_WINDOW_ROLE").out.find("\"" + role + "\"") != std::string::npos) return id;
    return "";
}

// sway: the tree's node with this name, and whether it floats.
std::optional<nlohmann::json> swayNode(const std::string& name, bool& floating) {
    const auto tree = nlohmann::json::parse(run("swaymsg -r -t get_tree").out, nullptr, false);
    std::optional<nlohmann::json> found;
    std::function<void(const nlohmann::json&, bool)> visit = [&](const nlohmann::json& node, bool inFloating) {
        if (found || !node.is_object()) return;
        if (node.value("name", nlohmann::json()).is_string() && node["name"] == name) {
            found = node;
            floating = inFloating || node.value("type", "") == "floating_con";
            return;
        }
        for (const auto& child : node.value("nodes", nlohmann::json::array())) visit(child, inFloating);
        for (const auto& child : node.value("floating_nodes", nlohmann::json::array())) visit(child, true);
    };
    if (!tree.is_discarded()) visit(tree, false);
    return found;
}

bool overlaps(const PlacedWidget& a, const PlacedWidget& b) {
    const auto sa = widgetSize(*widgetFamilyFromRaw(a.family)), sb = widgetSize(*widgetFamilyFromRaw(b.family));
    return a.position.x < b.position.x + sb.width && b.position.x < a.position.x + sa.width &&
           a.position.y < b.position.y + sb.height && b.position.y < a.position.y + sa.height;
}

// sway: a click of the virtual pointer (BUTTON "press" or "right-press") on
// a layout WIDTH points wide.
void swayClick(int x, int y, const std::string& button = "press", int width = 1920) {
    const std::string release = button == "press" ? "release" : "right-release";
    run("'" MW_VIRTUAL_POINTER "' " + std::to_string(width) + " 1080 move " + std::to_string(x) + " " +
        std::to_string(y) + " wait 200 " + button + " wait 50 " + release + " wait 300");
}

// sway: where the window titled NAME is shown, its content's top-left
// corner and size; nothing when it is not.
std::optional<std::array<int, 4>> swayWindow(const std::string& name) {
    bool floating = false;
    const auto node = swayNode(name, floating);
    if (!node) return std::nullopt;
    const auto& rect = (*node)["rect"];
    const auto& inner = (*node)["window_rect"];
    return std::array{rect["x"].get<int>() + inner["x"].get<int>(), rect["y"].get<int>() + inner["y"].get<int>(),
                      inner["width"].get<int>(), inner["height"].get<int>()};
}

// sway, a widget placed: Edit Widget from its menu makes it Large, Remove
// takes it away and the notice's Undo puts it back. sway's headless seat
// takes no keys from a virtual keyboard here, so all of it is done with the
// pointer, at the places the menu, the size list and the notice show their
// items; the store and the screen are checked after each step.
void swayEditRemoveUndo(const Sandbox& box, const PlacedWidget& widget,
                        const std::function<std::optional<PlacedWidget>(const std::string&)>& placed) {
    const std::filesystem::path shots = ::getenv("MW_DESKTOP_SHOTS");
    const auto hostLog = [&] { return box.hostLog(); };
    // Data arrives, so the screen shows more than an even panel to compare.
    ASSERT_TRUE(box.writeSamplePayload());
    const int x = widget.position.x + 100, y = widget.position.y + 80;
    // The menu opens at the pointer: Edit Widget… first, Remove Widget below.
    const auto fromMenu = [&](int item, const std::function<bool()>& done) {
        for (int attempt = 0; attempt < 3; ++attempt) {
            swayClick(x, y, "right-press");
            run("sleep " + std::to_string(1 + attempt));
            swayClick(x + 50, y + 17 + 26 * item);
            if (waitFor(done, 8s)) return true;
            swayClick(1900, 1060);  // away from any menu left open
        }
        return false;
    };
    ASSERT_TRUE(fromMenu(0, [] { return swayWindow("All Accounts").has_value(); })) << hostLog();
    // The size list opens over its button, the current size on it and the
    // next one a row below.
    const auto edit = *swayWindow("All Accounts");
    const int sizeX = edit[0] + 220, sizeY = edit[1] + edit[3] - 71;
    swayClick(sizeX, sizeY);
    screenshot("sway", shots / "edit-size-list-dark.png");
    swayClick(sizeX, sizeY + 30);
    ASSERT_TRUE(waitFor([&] { return placed(widget.id) && placed(widget.id)->family == "systemLarge"; }, 10s))
        << hostLog();
    // Drawn where it is saved, and not 20 points beside: a dark widget moved
    // by 20 points still differs little from itself, so the two are weighed
    // against each other.
    const auto drawnLarge = [&](const char* shot) {
        return waitFor([&] {
            const auto image = readImage(box.snapshots / (widget.id + ".png"));
            const auto screen = screenshot("sway", shots / shot);
            const auto [px, py] = widget.position;
            const double here = mismatch(screen, image, px, py), beside = mismatch(screen, image, px + 20, py);
            return here < 3 && beside > 2 * here + 1;
        }, 20s);
    };
    EXPECT_TRUE(drawnLarge("edited-dark.png")) << hostLog();
    const auto large = readImage(box.snapshots / (widget.id + ".png"));
    EXPECT_GT(large.height, static_cast<int>(widgetSize(WidgetFamily::systemMedium).height)) << "drawn larger";

    ASSERT_TRUE(fromMenu(1, [&] { return !placed(widget.id).has_value(); })) << hostLog();
    ASSERT_TRUE(waitFor([] { return swayWindow("Widget Removed").has_value(); }, 10s)) << hostLog();
    screenshot("sway", shots / "removed-dark.png");
    // Undo sits left of Close at the notice's right end.
    const auto notice = *swayWindow("Widget Removed");
    swayClick(notice[0] + notice[2] - 138, notice[1] + notice[3] / 2);
    EXPECT_TRUE(waitFor([&] { return placed(widget.id).has_value(); }, 10s)) << hostLog();
    auto back = placed(widget.id);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(back->family, "systemLarge");
    EXPECT_EQ(back->position, widget.position);
    EXPECT_TRUE(drawnLarge("undone-dark.png")) << hostLog();
}

// A first start with nothing placed, as a person without a terminal meets
// it: the gallery opens by itself, widgets are added on free spots, one is
// edited (size and an option), one removed and put back with Undo. Dark, so
// the screenshots show the dialogs following the widgets' appearance.
void firstRunScenario(const std::string& desktop) {
    const Sandbox box;
    std::filesystem::create_directories(box.container);  // no payload yet: the gallery shows the sample
    ::setenv("MW_HOST_APPEARANCE", "dark", 1);
    ::setenv("NO_AT_BRIDGE", "1", 1);
    const std::filesystem::path shots = ::getenv("MW_DESKTOP_SHOTS");
    const auto file = box.config / "meterwick" / kPlacementsFileName;
    const auto placed = [&](const std::string& id) -> std::optional<PlacedWidget> {
        const auto widgets = readPlacements(file).widgets;
        const auto* found = findPlacement(widgets, id);
        return found ? std::optional(*found) : std::nullopt;
    };

    Host host(box.hostLogPath());
    const auto hostLog = [&] { return box.hostLog(); };

    if (desktop == "sway") {
        // A dialog floats; it is not tiled over the whole output.
        bool floating = false;
        ASSERT_TRUE(waitFor([&] { return swayNode("Add Widget", floating).has_value(); }, 30s)) << hostLog();
        EXPECT_TRUE(floating) << run("swaymsg -t get_tree").out;
        const auto gallery = *swayNode("Add Widget", floating);
        EXPECT_LT(gallery["rect"]["width"].get<int>(), 1920);
        screenshot("sway", shots / "gallery-dark.png");
        // A double click on the second row adds that widget.
        const int x = gallery["rect"]["x"].get<int>() + gallery["window_rect"]["x"].get<int>() + 200;
        const int y = gallery["rect"]["y"].get<int>() + gallery["window_rect"]["y"].get<int>() + 160;
        const std::string at = " move " + std::to_string(x) + " " + std::to_string(y);
        run("'" MW_VIRTUAL_POINTER "' 1920 1080" + at + " wait 200 press wait 30 release wait 30 press wait 30 release wait 300");
        ASSERT_TRUE(waitFor([&] { return placed("accounts-1").has_value(); }, 10s)) << hostLog();
        screenshot("sway", shots / "added-dark.png");
        swayEditRemoveUndo(box, *placed("accounts-1"), placed);
        return;
    }

    // The gallery, focused, as a dialog.
    ASSERT_TRUE(waitFor([] { return !x11Window("Add Widget").empty(); }, 30s)) << hostLog();
    const auto gallery = x11Window("Add Widget");
    EXPECT_NE(run("xprop -id " + gallery + " _NET_WM_WINDOW_TYPE").out.find("_NET_WM_WINDOW_TYPE_DIALOG"),
              std::string::npos);
    EXPECT_TRUE(waitFor([&] { return run("xdotool getactivewindow").out.find(gallery) == 0; }, 5s))
        << "the gallery has the focus";
    screenshot(desktop, shots / "gallery-dark.png");

    // Escape hides it; the desktop entry's action opens it again.
    run("xdotool windowfocus --sync " + gallery + " && xdotool key Escape");
    ASSERT_TRUE(waitFor([] { return x11Window("Add Widget").empty(); }, 10s));
    EXPECT_EQ(run("gapplication action app.meterwick.WidgetHost add-widget").status, 0);
    ASSERT_TRUE(waitFor([] { return !x11Window("Add Widget").empty(); }, 10s)) << hostLog();

    // Enter adds the first widget; Down Down Enter the third, beside it.
    run("xdotool windowfocus --sync " + gallery + " && xdotool key Return");
    ASSERT_TRUE(waitFor([&] { return placed("focus-1").has_value(); }, 10s)) << hostLog();
    run("xdotool windowfocus --sync " + gallery + " && xdotool key Down Down Return");
    ASSERT_TRUE(waitFor([&] { return placed("accounts-limit-1").has_value(); }, 10s)) << hostLog();
    const auto focus = *placed("focus-1"), board = *placed("accounts-limit-1");
    EXPECT_FALSE(overlaps(focus, board)) << board.position.x << "," << board.position.y;
    EXPECT_EQ(focus.position, (WidgetPosition{24, 24}));
    screenshot(desktop, shots / "added-dark.png");
    run("xdotool windowfocus --sync " + gallery + " && xdotool key Escape");

    // Edit Widget from the board's menu: Down on the size, then Tab Tab Down
    // on the limit; the store follows each change.
    const auto menuOpens = [&](WidgetPosition at, const char* keys, const std::function<bool()>& opened) {
        for (int attempt = 0; attempt < 3; ++attempt) {
            run("xdotool mousemove " + std::to_string(at.x) + " " + std::to_string(at.y) + " click 3 sleep " +
                std::to_string(1 + attempt) + " key " + keys);
            if (waitFor(opened, 8s)) return true;
            run("xdotool key Escape");
        }
        return false;
    };
    const WidgetPosition onBoard{board.position.x + 100, board.position.y + 80};
    ASSERT_TRUE(menuOpens(onBoard, "Down Return",
                          [] { return !x11WindowWithRole("Accounts by Limit", "meterwick-edit-widget").empty(); }))
        << hostLog();
    const auto edit = x11WindowWithRole("Accounts by Limit", "meterwick-edit-widget");
    run("xdotool windowfocus --sync " + edit + " && xdotool key Down && sleep 0.5 && xdotool key Tab Tab Down");
    EXPECT_TRUE(waitFor([&] {
        const auto now = placed("accounts-limit-1");
        return now && now->family == "systemLarge" && now->parameters.at("limit") == "fiveHour";
    }, 10s)) << readFile(file);
    screenshot(desktop, shots / "edited-dark.png");
    run("xdotool windowfocus --sync " + edit + " && xdotool key Escape");

    // Remove, then Undo: the widget comes back as it was.
    const WidgetPosition onFocus{focus.position.x + 80, focus.position.y + 80};
    ASSERT_TRUE(menuOpens(onFocus, "Down Down Return", [&] { return !placed("focus-1").has_value(); })) << hostLog();
    ASSERT_TRUE(waitFor([] { return !x11Window("Widget Removed").empty(); }, 10s)) << hostLog();
    screenshot(desktop, shots / "removed-dark.png");
    run("xdotool windowfocus --sync " + x11Window("Widget Removed") + " && xdotool key Return");
    EXPECT_TRUE(waitFor([&] { return placed("focus-1") == focus; }, 10s)) << readFile(file);
}

// The mean level of every channel of X11 window ID as drawn now (Adwaita's
// light dialogs sit near 240, its dark ones near 50); -1 when it cannot be
// grabbed.
double windowLevel(const std::string& id) {
    const auto image = readPPM(run("import -window " + id + " -depth 8 ppm:-").out);
    if (image.rgb.empty()) return -1;
    double sum = 0;
    for (const unsigned char c : image.rgb) sum += c;
    return sum / static_cast<double>(image.rgb.size());
}

// The installed host reached the way a menu, a dock and a link reach it, on
// a session bus of its own that knows the installed prefix's D-Bus services
// (XDG_DATA_DIRS names the prefix's share for the desktop entry): gtk-launch
// starts it through D-Bus activation and it opens the gallery; a settings
// portal that starts after it turns the gallery and the widgets dark, and
// back to light when it says the preference changed; the entry's "Add Widget"
// action, launched as a dock does, and `gio open meterwick://open` open the
// gallery again.
void installedScenario() {
    const Sandbox box;
    ASSERT_TRUE(box.writeSamplePayload());
    ::setenv("NO_AT_BRIDGE", "1", 1);
    ::unsetenv("MW_HOST_APPEARANCE");
    const std::filesystem::path prefix = ::getenv("MW_INSTALLED_PREFIX");
    const std::filesystem::path shots = ::getenv("MW_DESKTOP_SHOTS");
    const auto installedHost = (prefix / "bin" / "meterwick-widget-host").string();
    ::setenv("XDG_DATA_DIRS", ((prefix / "share").string() + ":/usr/share").c_str(), 1);

    const auto socket = box.root / "bus";
    std::ofstream(box.root / "bus.conf") << "<busconfig><type>session</type><listen>unix:path=" << socket.string()
                                         << "</listen><auth>EXTERNAL</auth><servicedir>"
                                         << (prefix / "share" / "dbus-1" / "services").string()
                                         << "</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                            "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
    ::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + socket.string()).c_str(), 1);
    // The bus's output holds what the host it starts writes.
    Child bus("dbus-daemon --nofork --config-file='" + (box.root / "bus.conf").string() + "'", box.hostLogPath());
    ASSERT_TRUE(waitFor([&] { return std::filesystem::exists(socket); }, 10s)) << box.hostLog();
    const auto hostLog = [&] { return box.hostLog(); };
    const auto status = [] {
        return run("timeout 10 gdbus call --session --timeout 5 --dest app.meterwick.WidgetHost "
                   "--object-path /app/meterwick/WidgetHost --method app.meterwick.WidgetHost.Status").out;
    };
    // The process that owns the host's name on the bus; 0 when none does.
    const auto hostProcess = [] {
        const auto owner = run("timeout 10 gdbus call --session --dest org.freedesktop.DBus --object-path "
                               "/org/freedesktop/DBus --method org.freedesktop.DBus.GetConnectionUnixProcessID "
                               "app.meterwick.WidgetHost").out;
        const auto at = owner.find("uint32 ");
        return at == std::string::npos ? 0 : std::atoi(owner.c_str() + at + 7);
    };
    std::optional<Child> portal;
    struct StopHost {
        std::function<int()> process;
        ~StopHost() {
            if (const int pid = process(); pid > 0) ::kill(pid, SIGTERM);
        }
    } stopHost{hostProcess};

    // The menu entry.
    const auto launched = run("gtk-launch app.meterwick.WidgetHost");
    ASSERT_EQ(launched.status, 0) << launched.err;
    ASSERT_TRUE(waitFor([] { return !x11Window("Add Widget").empty(); }, 30s)) << hostLog();
    const auto gallery = x11Window("Add Widget");
    EXPECT_NE(run("xprop -id " + gallery + " _NET_WM_WINDOW_TYPE").out.find("_NET_WM_WINDOW_TYPE_DIALOG"),
              std::string::npos);
    // The bus started the installed program as a service.
    const auto process = "/proc/" + std::to_string(hostProcess());
    std::error_code ec;
    EXPECT_EQ(std::filesystem::read_symlink(process + "/exe", ec).string(), installedHost) << process;
    EXPECT_NE(readFile(process + "/cmdline").find("--gapplication-service"), std::string::npos);
    // Mapped is not yet painted, least of all in a sanitizer build.
    EXPECT_TRUE(waitFor([&] { return windowLevel(gallery) > 150; }, 15s))
        << "no portal yet: light, not " << windowLevel(gallery);
    screenshot("openbox", shots / "installed-gallery-light.png");

    // The portal comes late and prefers dark.
    portal.emplace("python3 '" MW_SETTINGS_PORTAL "' 1", box.root / "portal.log");
    EXPECT_TRUE(waitFor([&] { return windowLevel(gallery) >= 0 && windowLevel(gallery) < 100; }, 15s))
        << "the gallery follows the portal: " << windowLevel(gallery) << "\n" << readFile(box.root / "portal.log");
    EXPECT_NE(status().find("'appearance': <'dark'>"), std::string::npos) << status();
    screenshot("openbox", shots / "installed-gallery-dark.png");

    // Enter adds the first widget, drawn dark.
    run("xdotool windowfocus --sync " + gallery + " && xdotool key Return");
    EXPECT_TRUE(waitFor([&] {
        const auto shown = box.shown("focus-1");
        return shown && shown->value("appearance", "") == "dark";
    }, 20s)) << hostLog();
    EXPECT_EQ(box.stored().size(), 1u);

    // The preference changes back to light.
    ::kill(portal->pid(), SIGUSR1);
    EXPECT_TRUE(waitFor([&] {
        const auto shown = box.shown("focus-1");
        return shown && shown->value("appearance", "") == "light" && windowLevel(gallery) > 150;
    }, 15s)) << status();
    screenshot("openbox", shots / "installed-light-again.png");

    // The desktop entry's action, as a dock launches it, and a link.
    const auto reopens = [&](const std::string& command) {
        run("xdotool windowfocus --sync " + x11Window("Add Widget") + " && xdotool key Escape");
        if (!waitFor([] { return x11Window("Add Widget").empty(); }, 10s)) return ::testing::AssertionFailure() << "the gallery stays";
        const auto ran = run(command);
        if (ran.status != 0) return ::testing::AssertionFailure() << command << ": " << ran.err;
        if (!waitFor([] { return !x11Window("Add Widget").empty(); }, 15s))
            return ::testing::AssertionFailure() << command << " shows no gallery\n" << hostLog();
        return ::testing::AssertionSuccess();
    };
    EXPECT_TRUE(reopens("python3 -c \"from gi.repository import Gio; "
                        "Gio.DesktopAppInfo.new('app.meterwick.WidgetHost.desktop').launch_action('add-widget', None)\""));
    EXPECT_TRUE(reopens("gio open meterwick://open"));
}

void inDesktop(const std::string& desktop) {
    if (const char* inside = std::getenv(kInsideVariable); inside != nullptr) {
        if (std::string(inside) == "sway-outputs")
            monitorsScenario();
        else if (std::string(inside) == "openbox-installed")
            installedScenario();
        else if (std::string_view(inside).ends_with("-first-run"))
            firstRunScenario(std::string(inside).substr(0, std::string_view(inside).find("-first-run")));
        else
            scenario(inside);
        return;
    }
    // Screenshots are kept in the build tree for a person to look at.
    const auto shots = std::filesystem::current_path() / ("desktop-shots-" + desktop);
    std::filesystem::create_directories(shots);
    std::filesystem::permissions(shots, std::filesystem::perms::all);
    const std::string session = desktop == "sway-outputs" ? "sway" : desktop.substr(0, desktop.find('-'));
    std::string assignments = std::string(kInsideVariable) + "=" + desktop + " MW_DESKTOP_SHOTS='" + shots.string() + "'";
    if (desktop == "openbox-installed") {
        // Installed as a user would, into a prefix of its own.
        const auto prefix = std::filesystem::current_path() / "installed-prefix";
        std::filesystem::remove_all(prefix);
        const char* install = std::getenv("MW_INSTALL_COMMAND");
        ASSERT_NE(install, nullptr) << "MW_INSTALL_COMMAND names the build's cmake --install";
        const auto installed = run(std::string(install) + " --prefix '" + prefix.string() + "'");
        ASSERT_EQ(installed.status, 0) << installed.out << installed.err;
        assignments += " MW_INSTALLED_PREFIX='" + prefix.string() + "'";
    }
    runThisTestInside("'" MW_DESKTOP_SESSION "' " + session, assignments, 240s);
}

TEST(DesktopEndToEnd, Openbox) { inDesktop("openbox"); }
TEST(DesktopEndToEnd, Sway) { inDesktop("sway"); }
TEST(DesktopEndToEnd, SwayTwoOutputs) { inDesktop("sway-outputs"); }
TEST(DesktopEndToEnd, Mutter) { inDesktop("mutter"); }
TEST(DesktopEndToEnd, Xfwm4) { inDesktop("xfwm4"); }
TEST(DesktopEndToEnd, KWin) { inDesktop("kwin"); }
TEST(DesktopEndToEnd, OpenboxFirstRun) { inDesktop("openbox-first-run"); }
TEST(DesktopEndToEnd, SwayFirstRun) { inDesktop("sway-first-run"); }
TEST(DesktopEndToEnd, OpenboxInstalled) { inDesktop("openbox-installed"); }

}  // namespace
}  // namespace mw
