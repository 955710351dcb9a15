// The desktop host end to end, on a virtual X server with a private session
// bus: placed widgets appear drawn exactly as `meterwick-widgets render` draws
// them, follow the payload and the placed-widgets file, reload over D-Bus,
// open links on click, and a corrupt widgets.json is kept aside.
//
// The test re-runs itself inside `xvfb-run … dbus-run-session` and is
// skipped where those are not installed. Every wait has a deadline, and the
// whole run is bounded by `timeout`.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>

#include "host/e2e_harness.hpp"
#include "platform/date.hpp"

namespace mw {
namespace {

using namespace mw::testing::e2e;
using testing::readFile;
using testing::TempDir;

constexpr const char* kInsideVariable = "MW_HOST_E2E_SESSION";

// `meterwick-widgets render` of what the window says it shows, at its date,
// scale and appearance; the PNG bytes.
std::string renderedLikeTheWindow(const nlohmann::json& info, const std::filesystem::path& output) {
    std::string arguments = "--now " + info["date"].get<std::string>() + " render " + info["kind"].get<std::string>() +
                            " --family " + info["family"].get<std::string>();
    for (const auto& [name, value] : info["parameters"].items())
        arguments += " --set '" + name + "=" + value.get<std::string>() + "'";
    arguments += " --scale " + std::to_string(info["scale"].get<int>()) + " --appearance " +
                 info["appearance"].get<std::string>() + " --output '" + output.string() + "'";
    const auto result = drawingCLI(arguments);
    EXPECT_EQ(result.status, 0) << arguments << "\n" << result.err;
    return readFile(output);
}

// `describe` of what the window says it shows.
nlohmann::json described(const nlohmann::json& info) {
    std::string arguments = "--now " + info["date"].get<std::string>() + " describe " +
                            info["kind"].get<std::string>() + " --family " + info["family"].get<std::string>();
    for (const auto& [name, value] : info["parameters"].items())
        arguments += " --set '" + name + "=" + value.get<std::string>() + "'";
    return nlohmann::json::parse(drawingCLI(arguments).out, nullptr, false);
}

// The link regions of a described widget, in paint order.
std::vector<nlohmann::json> linkRegions(const nlohmann::json& described) {
    std::vector<nlohmann::json> links;
    if (described.is_discarded()) return links;
    for (const auto& node : described["nodes"])
        if (node.contains("url") && node["kind"] == "link") links.push_back(node);
    return links;
}

// The URL a click at `point` (points) should open, from `describe`: the last
// link region under it, else the widget's URL.
std::string expectedURL(const nlohmann::json& info, double x, double y) {
    const auto widget = described(info);
    if (widget.is_discarded()) return "(describe failed)";
    std::string url = widget.value("url", "");
    for (const auto& node : linkRegions(widget)) {
        const auto& f = node["frame"];
        if (x >= f[0].get<double>() && y >= f[1].get<double>() && x < f[0].get<double>() + f[2].get<double>() &&
            y < f[1].get<double>() + f[3].get<double>())
            url = node["url"];
    }
    return url;
}

void scenario() {
    const Sandbox box;
    const auto& root = box.root;
    const auto& config = box.config;
    const auto& snapshots = box.snapshots;
    const auto opened = root / "opened.txt";
    root.write("open-url.sh", "#!/bin/sh\nprintf '%s\\n' \"$1\" >> '" + opened.string() + "'\n");
    std::filesystem::permissions(root / "open-url.sh", std::filesystem::perms::owner_all);
    ::setenv("MW_URL_HANDLER", (root / "open-url.sh").c_str(), 1);
    ::setenv("GDK_SCALE", "2", 1);  // HiDPI: windows are drawn at two pixels per point
    ::unsetenv("MW_HOST_APPEARANCE");

    ASSERT_TRUE(box.writeSamplePayload());

    // No host yet: reload says so.
    const auto early = cli("reload");
    EXPECT_EQ(early.status, 1);
    EXPECT_NE(early.err.find("no Meterwick widget host is running"), std::string::npos) << early.err;

    ASSERT_EQ(cli("place focus --set style=enhanced --at 0,0").status, 0);
    ASSERT_EQ(cli("place accounts --family systemMedium --at 200,0").status, 0);
    ASSERT_EQ(cli("place dashboard --family systemLarge --at 0,200").status, 0);
    const std::vector<std::string> ids{"focus-1", "accounts-1", "dashboard-1"};

    Host host(box.hostLogPath());
    ASSERT_TRUE(host.started());
    const auto hostLog = [&] { return box.hostLog(); };
    ASSERT_TRUE(waitFor([&] { return box.allShown(ids); }, 60s)) << hostLog();

    // Every timeline build leaves the self-report for the application.
    const auto report = readJSON(box.container / "widget-self-report.json");
    ASSERT_TRUE(report.is_object()) << hostLog();
    EXPECT_EQ(report.value("payloadReadStatus", ""), "ok");

    // Each window is drawn exactly as the command draws the same entry.
    for (const auto& id : ids) {
        const auto info = *box.shown(id);
        EXPECT_EQ(info["scale"], 2) << id;
        EXPECT_EQ(renderedLikeTheWindow(info, root / ("cli-" + id + ".png")), readFile(snapshots / (id + ".png")))
            << id << " differs from meterwick-widgets render";
    }

    // A click opens the link under the pointer (or the widget's URL).
    if (onPath("xdotool")) {
        const auto info = *box.shown("focus-1");
        const std::string url = expectedURL(info, 85, 85);
        ASSERT_TRUE(waitFor([] { return run("xdotool search --onlyvisible --name '^Tool Focus$'").status == 0; }))
            << "the Focus window is not on screen";
        ASSERT_EQ(run("xdotool mousemove 170 170 click 1").status, 0);
        EXPECT_TRUE(waitFor([&] { return readFile(opened).find(url + "\n") != std::string::npos; }, 10s))
            << "expected " << url << ", opened: " << readFile(opened);

        // A click on an Accounts row opens that row's account, not the widget.
        // The window stands at (200, 0) points; the screen has two pixels a point.
        const auto accounts = *box.shown("accounts-1");
        const auto rows = linkRegions(described(accounts));
        ASSERT_GE(rows.size(), 2u) << "the Accounts widget shows rows with links";
        const auto& row = rows[1]["frame"];
        const double rowX = row[0].get<double>() + row[2].get<double>() / 2,
                     rowY = row[1].get<double>() + row[3].get<double>() / 2;
        const std::string rowURL = rows[1]["url"];
        EXPECT_EQ(expectedURL(accounts, rowX, rowY), rowURL);
        run("xdotool mousemove " + std::to_string(static_cast<int>((200 + rowX) * 2)) + " " +
            std::to_string(static_cast<int>(rowY * 2)) + " click 1");
        EXPECT_TRUE(waitFor([&] { return readFile(opened).find(rowURL + "\n") != std::string::npos; }, 10s))
            << "expected " << rowURL << ", opened: " << readFile(opened);

        // The context menu: its first item opens Edit Widget, titled by the
        // intent; its last opens the Add Widget gallery. A loaded machine can
        // be slow to map the menu and take the keys, so each try is repeated.
        const auto windowTitled = [](const char* title) {
            return run(std::string("xdotool search --onlyvisible --name '^") + title + "$'").status == 0;
        };
        const auto openFromMenu = [&](const char* keys, const char* title) {
            for (int attempt = 0; attempt < 3; ++attempt) {
                run("xdotool mousemove 170 170 click 3 sleep " + std::to_string(1 + attempt) + " key " + keys);
                if (waitFor([&] { return windowTitled(title); }, 8s)) return true;
                run("xdotool key Escape");
            }
            return false;
        };
        EXPECT_TRUE(openFromMenu("Down Return", "Focus Tool")) << hostLog();
        run("xdotool search --onlyvisible --name '^Focus Tool$' windowfocus --sync key Escape");
        EXPECT_TRUE(waitFor([&] { return !windowTitled("Focus Tool"); }, 10s)) << "Escape closes Edit Widget";
        EXPECT_TRUE(openFromMenu("Up Return", "Add Widget")) << hostLog();
    }

    // The application replaces the payload: every window follows.
    const auto before = *box.shown("focus-1");
    const auto beforePNG = readFile(snapshots / "focus-1.png");
    WidgetPayload empty;
    empty.updatedAt = systemNow();
    ASSERT_TRUE(box.writePayload(empty));
    ASSERT_TRUE(waitFor([&] {
        const auto now = box.shown("focus-1");
        return now && (*now)["build"] != before["build"];
    })) << hostLog();
    const auto after = *box.shown("focus-1");
    EXPECT_NE(readFile(snapshots / "focus-1.png"), beforePNG);
    EXPECT_EQ(renderedLikeTheWindow(after, root / "cli-after.png"), readFile(snapshots / "focus-1.png"));

    // Data that turns stale a few seconds from now: the window turns to the
    // stale panel at that moment from the timeline it has, with no new build.
    {
        auto aging = samplePayload(systemNow());
        aging.updatedAt = systemNow() - 1800 + 6;
        const auto previous = (*box.shown("focus-1"))["build"].get<int>();
        ASSERT_TRUE(box.writePayload(aging));
        ASSERT_TRUE(waitFor([&] {
            const auto now = box.shown("focus-1");
            return now && (*now)["build"] != previous;
        })) << hostLog();
        const auto fresh = *box.shown("focus-1");
        EXPECT_EQ(fresh["entry"], 0);
        EXPECT_EQ(fresh["entries"], 2) << "the entry at now and the one at the stale moment";
        EXPECT_TRUE(waitFor([&] { return (*box.shown("focus-1"))["entry"] == 1; }, 15s)) << hostLog();
        const auto stale = *box.shown("focus-1");
        EXPECT_EQ(stale["build"], fresh["build"]) << "no reload was needed";
        EXPECT_EQ(stale["date"], formatISO8601(aging.updatedAt + 1800));
        EXPECT_EQ(renderedLikeTheWindow(stale, root / "cli-stale.png"), readFile(snapshots / "focus-1.png"));
    }

    // Reload over D-Bus: that kind only, done by the time the command returns.
    const auto dashboardBuild = (*box.shown("dashboard-1"))["build"].get<int>();
    const auto focusBuild = (*box.shown("focus-1"))["build"].get<int>();
    const auto reload = cli("reload dashboard");
    EXPECT_EQ(reload.status, 0) << reload.err;
    EXPECT_EQ((*box.shown("dashboard-1"))["build"], dashboardBuild + 1);
    EXPECT_EQ((*box.shown("focus-1"))["build"], focusBuild);
    EXPECT_EQ(cli("reload nonsense").status, 2);

    // Editing and removing through the command reach the running host.
    ASSERT_EQ(cli("edit focus-1 --set style=classic").status, 0);
    EXPECT_TRUE(waitFor([&] {
        const auto now = box.shown("focus-1");
        return now && (*now)["parameters"].value("style", "") == "classic";
    })) << hostLog();
    ASSERT_EQ(cli("remove accounts-1").status, 0);
    EXPECT_TRUE(waitFor([&] { return !std::filesystem::exists(snapshots / "accounts-1.json"); })) << hostLog();

    // An editor saving in place: the file is cut short, then completed. The
    // host reads it again rather than giving up on it, and the widgets stay.
    const auto store = config / "meterwick" / "widgets.json";
    const auto keptAside = [&] {
        std::vector<std::filesystem::path> kept;
        for (const auto& entry : std::filesystem::directory_iterator(config / "meterwick"))
            if (entry.path().filename().string().starts_with("widgets.json.corrupt-")) kept.push_back(entry.path());
        return kept;
    };
    const auto good = readFile(store);
    std::ofstream(store, std::ios::trunc) << good.substr(0, good.size() / 2);
    EXPECT_TRUE(waitFor([&] { return hostLog().find(store.string() + " could not be used") != std::string::npos; }))
        << "the half-written file is reported\n"
        << hostLog();
    EXPECT_TRUE(std::filesystem::exists(snapshots / "focus-1.json") &&
                std::filesystem::exists(snapshots / "dashboard-1.json"))
        << "the widgets stay while the file is half written\n"
        << hostLog();
    auto finished = nlohmann::json::parse(good);
    auto& widgets = finished["widgets"];
    widgets.erase(
        std::remove_if(widgets.begin(), widgets.end(), [](const auto& w) { return w["id"] == "dashboard-1"; }),
        widgets.end());
    std::ofstream(store, std::ios::trunc) << finished.dump(2);
    EXPECT_TRUE(waitFor([&] { return !std::filesystem::exists(snapshots / "dashboard-1.json"); })) << hostLog();
    EXPECT_TRUE(std::filesystem::exists(snapshots / "focus-1.json"));
    EXPECT_EQ(keptAside().size(), 0u) << "nothing was moved aside";
    EXPECT_EQ(readFile(store), finished.dump(2));

    // A file that stays broken is left in place with the widgets on screen;
    // it is moved aside only by a save over it, which the host then follows.
    ASSERT_TRUE(writeFileAtomically(store, "{\"widgets\": [ oops"));
    std::this_thread::sleep_for(3s);  // past the host's re-reads
    EXPECT_TRUE(std::filesystem::exists(snapshots / "focus-1.json")) << hostLog();
    EXPECT_EQ(readFile(store), "{\"widgets\": [ oops");
    EXPECT_EQ(keptAside().size(), 0u);
    ASSERT_EQ(cli("place sparkline --at 400,400").status, 0);
    const auto kept = keptAside();
    ASSERT_EQ(kept.size(), 1u) << hostLog();
    EXPECT_EQ(readFile(kept.front()), "{\"widgets\": [ oops");
    EXPECT_TRUE(waitFor([&] {
        return !std::filesystem::exists(snapshots / "focus-1.json") && box.shown("sparkline-1").has_value();
    })) << hostLog();

    EXPECT_EQ(host.stop(), 0) << hostLog();
}

// The host's Status() over the bus, within a deadline; empty when it did not answer.
std::string hostStatus() {
    const auto result =
        run("timeout 10 gdbus call --session --timeout 5 --dest app.meterwick.WidgetHost "
            "--object-path /app/meterwick/WidgetHost --method app.meterwick.WidgetHost.Status");
    return result.status == 0 ? result.out : std::string();
}

// The container appears after the host starts and is later replaced; then
// the payload becomes a FIFO. The host follows the first two and stays
// responsive through the third: it answers the bus, a second start hands
// over to it, and SIGTERM ends it promptly.
void hostileScenario() {
    const Sandbox box("later/container");
    const auto& root = box.root;
    const auto& container = box.container;
    const auto& snapshots = box.snapshots;
    ::setenv("MW_HOST_APPEARANCE", "light", 1);
    ::unsetenv("GDK_SCALE");

    ASSERT_EQ(cli("place focus --at 0,0").status, 0);
    Host host(box.hostLogPath());
    ASSERT_TRUE(host.started());
    const auto hostLog = [&] { return box.hostLog(); };
    ASSERT_TRUE(waitFor([&] { return box.shown("focus-1").has_value(); }, 60s)) << hostLog();
    const auto buildOf = [&] {
        const auto info = box.shown("focus-1");
        return info ? (*info)["build"].get<int>() : -1;
    };
    const auto pngOf = [&] { return readFile(snapshots / "focus-1.png"); };

    // Created after the start, two levels down: the widget follows.
    const auto waiting = pngOf();
    ASSERT_TRUE(box.writeSamplePayload());
    EXPECT_TRUE(waitFor([&] { return pngOf() != waiting; })) << "a container created later is noticed\n" << hostLog();
    const auto withData = pngOf();

    // Replaced by mv + mkdir: the new directory is watched.
    std::filesystem::rename(container, root / "later" / "container.old");
    std::filesystem::create_directories(container);
    WidgetPayload empty;
    empty.updatedAt = systemNow();
    ASSERT_TRUE(box.writePayload(empty));
    EXPECT_TRUE(waitFor([&] { return pngOf() != withData; })) << "a replaced container is noticed\n" << hostLog();

    // A FIFO where the payload should be: nothing may wait on it.
    const auto previous = buildOf();
    std::filesystem::remove(container / kPayloadFileName);
    ASSERT_EQ(::mkfifo((container / kPayloadFileName).c_str(), 0600), 0);
    std::this_thread::sleep_for(1s);  // past the change's debounce: a reload has started
    EXPECT_NE(hostStatus(), "") << "the host answers the bus\n" << hostLog();
    EXPECT_EQ(run("timeout 10 env ASAN_OPTIONS=detect_leaks=0 '" MW_HOST_PATH "'").status, 0)
        << "a second start hands over to the running host";
    EXPECT_GE(buildOf(), previous);

    const auto stopping = std::chrono::steady_clock::now();
    EXPECT_EQ(host.stop(), 0) << hostLog();
    EXPECT_LT(std::chrono::steady_clock::now() - stopping, 5s) << "SIGTERM ends the host promptly";
}

// Runs `scenario` inside its own virtual X server and session bus: the test
// binary re-runs itself there with only this test selected.
void inSession(void (*scenario)()) {
    if (std::getenv(kInsideVariable) != nullptr) {
        scenario();
        return;
    }
    if (!onPath("xvfb-run") || !onPath("dbus-run-session")) GTEST_SKIP() << "needs xvfb-run and dbus-run-session";
    runThisTestInside("xvfb-run -a -s '-screen 0 2400x1600x24' dbus-run-session --",
                      std::string(kInsideVariable) + "=1 NO_AT_BRIDGE=1", 300s);
}

TEST(HostEndToEnd, ShowsFollowsAndReloadsPlacedWidgets) {
    inSession(scenario);
}

TEST(HostEndToEnd, FollowsTheContainerAndSurvivesHostileFiles) {
    inSession(hostileScenario);
}

}  // namespace
}  // namespace mw
