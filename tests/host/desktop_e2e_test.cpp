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
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "config/family.hpp"
#include "host/placements.hpp"
#include "payload/codec.hpp"
#include "payload/sample.hpp"
#include "payload/store.hpp"
#include "platform/atomic_write.hpp"
#include "platform/clock.hpp"
#include "support/temp_dir.hpp"

extern char** environ;

namespace mw {
namespace {

using namespace std::chrono_literals;
using testing::readFile;
using testing::TempDir;

constexpr const char* kInsideVariable = "MW_DESKTOP_E2E_INSIDE";

struct Run {
    int status = -1;
    std::string out;
    std::string err;
};

Run run(const std::string& command) {
    const TempDir io;
    const std::string line = command + " >'" + (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
    const int raw = std::system(line.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(io / "out"), readFile(io / "err")};
}

bool waitFor(const std::function<bool()>& done, std::chrono::milliseconds deadline = 20s) {
    const auto until = std::chrono::steady_clock::now() + deadline;
    while (std::chrono::steady_clock::now() < until) {
        if (done()) return true;
        std::this_thread::sleep_for(100ms);
    }
    return done();
}

// A binary PPM (P6) as grim, ImageMagick and xwd-to-PPM write it.
struct Image {
    int width = 0;
    int height = 0;
    std::string rgb;  // width × height × 3 bytes
    const unsigned char* at(int x, int y) const {
        return reinterpret_cast<const unsigned char*>(rgb.data()) + (static_cast<std::size_t>(y) * width + x) * 3;
    }
};

Image readPPM(const std::string& bytes) {
    std::istringstream in(bytes);
    std::string magic;
    int maxValue = 0;
    Image image;
    in >> magic >> image.width >> image.height >> maxValue;
    in.get();
    if (magic != "P6" || maxValue != 255 || image.width <= 0 || image.height <= 0) return {};
    image.rgb.resize(static_cast<std::size_t>(image.width) * image.height * 3);
    in.read(image.rgb.data(), static_cast<std::streamsize>(image.rgb.size()));
    return in ? image : Image{};
}

// The whole screen as the desktop shows it, kept as PNG beside the test's
// files for a person to look at.
Image screenshot(const std::string& desktop, const std::filesystem::path& keepAs) {
    const std::string grab = desktop == "sway" ? "grim '" + keepAs.string() + "'"
                                               : "import -window root '" + keepAs.string() + "'";
    if (run(grab).status != 0) return {};
    return readPPM(run("convert '" + keepAs.string() + "' -depth 8 ppm:-").out);
}

// How far the drawn widget (its snapshot, flattened) is from the screen at
// (x, y): the mean difference per channel over the widget's inside, away
// from its rounded corners. The window is drawn at opacity 0.98, so a few
// levels of difference remain where it matches.
double mismatch(const Image& screen, const Image& widget, int x, int y) {
    constexpr int kInset = 24;
    if (widget.width <= 2 * kInset || x < 0 || y < 0 || x + widget.width > screen.width ||
        y + widget.height > screen.height)
        return 255;
    double sum = 0;
    long count = 0;
    for (int wy = kInset; wy < widget.height - kInset; wy += 2)
        for (int wx = kInset; wx < widget.width - kInset; wx += 2) {
            const auto* a = widget.at(wx, wy);
            const auto* b = screen.at(x + wx, y + wy);
            for (int c = 0; c < 3; ++c) sum += std::abs(a[c] - b[c]);
            count += 3;
        }
    return sum / static_cast<double>(count);
}

class Host {
  public:
    explicit Host(const std::filesystem::path& log) {
        const std::string command = "exec env ASAN_OPTIONS=detect_leaks=0 '" MW_HOST_PATH "' >'" + log.string() + "' 2>&1";
        const char* argv[] = {"sh", "-c", command.c_str(), nullptr};
        if (::posix_spawn(&pid_, "/bin/sh", nullptr, nullptr, const_cast<char**>(argv), environ) != 0) pid_ = -1;
    }
    ~Host() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGTERM);
        int raw = 0;
        if (!waitFor([&] { return ::waitpid(pid_, &raw, WNOHANG) == pid_; }, 10s)) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, &raw, 0);
        }
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

  private:
    pid_t pid_ = -1;
};

struct Placed {
    std::string id;
    std::string title;  // the window's title, the widget's display name
    WidgetPosition at;
};

std::vector<PlacedWidget> stored(const std::filesystem::path& config) {
    return loadPlacements(config / "meterwick" / kPlacementsFileName, systemNow()).widgets;
}

WidgetPosition storedPosition(const std::filesystem::path& config, const std::string& id) {
    const auto widgets = stored(config);
    const auto* placed = findPlacement(widgets, id);
    return placed ? placed->position : WidgetPosition{-1, -1};
}

// X11: the window with this exact title, as the window manager lists it.
std::string x11Window(const std::string& title) {
    const auto found = run("xdotool search --onlyvisible --name '^" + title + "$'");
    std::istringstream lines(found.out);
    std::string id;
    lines >> id;
    return id;
}

// Presses at a point of the widget and drags by (dx, dy) in ten steps.
void drag(const std::string& desktop, int x, int y, int dx, int dy) {
    const auto point = [&](int i) {
        return " " + std::to_string(x + dx * i / 10) + " " + std::to_string(y + dy * i / 10);
    };
    if (desktop == "sway") {
        std::string steps = "move" + point(0) + " wait 200 press wait 100";
        for (int i = 1; i <= 10; ++i) steps += " move" + point(i) + " wait 50";
        run("'" MW_VIRTUAL_POINTER "' 1920 1080 " + steps + " wait 200 release");
        return;
    }
    std::string moves;
    for (int i = 1; i <= 10; ++i) moves += " mousemove" + point(i) + " sleep 0.05";
    run("xdotool mousemove" + point(0) + " sleep 0.2 mousedown 1" + moves + " sleep 0.2 mouseup 1");
}

void scenario(const std::string& desktop) {
    const TempDir root;
    const auto config = root / "config";
    const auto container = root / "container";
    const auto snapshots = root / "snapshots";
    std::filesystem::create_directories(container);
    ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    ::setenv("METERWICK_CONTAINER", container.c_str(), 1);
    ::setenv("MW_HOST_SNAPSHOT_DIR", snapshots.c_str(), 1);
    ::setenv("MW_HOST_APPEARANCE", "light", 1);
    ::setenv("NO_AT_BRIDGE", "1", 1);
    ASSERT_TRUE(writeFileAtomically(container / kPayloadFileName, encodePayload(samplePayload(systemNow()))));

    const std::vector<Placed> widgets{{"focus-1", "Tool Focus", {100, 120}},
                                      {"accounts-1", "All Accounts", {480, 300}}};
    ASSERT_EQ(run("'" MW_CLI_PATH "' place focus --at 100,120").status, 0);
    ASSERT_EQ(run("'" MW_CLI_PATH "' place accounts --family systemMedium --at 480,300").status, 0);

    Host host(root / "host.log");
    const auto hostLog = [&] { return readFile(root / "host.log"); };
    const auto snapshotOf = [&](const std::string& id) {
        return readPPM(run("convert '" + (snapshots / (id + ".png")).string() + "' -depth 8 ppm:-").out);
    };
    ASSERT_TRUE(waitFor([&] {
        for (const auto& w : widgets)
            if (!std::filesystem::exists(snapshots / (w.id + ".json"))) return false;
        return true;
    }, 60s)) << hostLog();

    // At their saved places: the screen shows each widget drawn there, and
    // not 20 points away.
    const auto shownAt = [&](const Placed& w, WidgetPosition at, const char* shot) {
        if (desktop == "mutter") {
            // mutter alone offers no screenshot to a client and XWayland's
            // root window holds no pixels: its window manager's view of the
            // window's place stands in.
            const std::string where = "Position: " + std::to_string(at.x) + "," + std::to_string(at.y) + " ";
            std::string seen;
            const bool found = waitFor([&] {
                seen = run("xdotool getwindowgeometry " + x11Window(w.title)).out;
                return seen.find(where) != std::string::npos;
            }, 15s);
            if (!found) ADD_FAILURE() << w.title << " not at " << where << ": " << seen;
            return found;
        }
        const auto widget = snapshotOf(w.id);
        bool found = false;
        waitFor([&] {
            const auto screen = screenshot(desktop, std::filesystem::path(::getenv("MW_DESKTOP_SHOTS")) / shot);
            found = mismatch(screen, widget, at.x, at.y) < 8 && mismatch(screen, widget, at.x + 20, at.y) > 8;
            return found;
        }, 15s);
        return found;
    };
    // Without layer-shell the host goes through XWayland and says why, once.
    if (desktop == "mutter") {
        EXPECT_NE(hostLog().find("run through XWayland"), std::string::npos) << hostLog();
    }
    for (const auto& w : widgets) EXPECT_TRUE(shownAt(w, w.at, "placed.png")) << desktop << ": " << w.id << "\n" << hostLog();

    if (desktop != "sway") {
        // The window manager's own view: below a normal window, on no task
        // list or pager.
        const auto focus = x11Window("Tool Focus");
        ASSERT_FALSE(focus.empty()) << hostLog();
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
    }

    // A drag by a known distance moves the widget by exactly that much and
    // is saved.
    const auto& accounts = widgets[1];
    drag(desktop, accounts.at.x + 60, accounts.at.y + 40, 200, 100);
    const WidgetPosition moved{accounts.at.x + 200, accounts.at.y + 100};
    EXPECT_TRUE(waitFor([&] { return storedPosition(config, accounts.id) == moved; }, 10s))
        << desktop << ": saved at " << storedPosition(config, accounts.id).x << ","
        << storedPosition(config, accounts.id).y << "\n" << hostLog();
    EXPECT_TRUE(shownAt(accounts, moved, "dragged.png")) << desktop << "\n" << hostLog();
}

// sway with a second output to the right of the first: a widget placed on
// it stands there (its layer surface on that output, its offset from that
// output's corner), and one placed past the first output's edge is brought
// back inside and saved so.
void monitorsScenario() {
    const TempDir root;
    const auto config = root / "config";
    const auto container = root / "container";
    const auto snapshots = root / "snapshots";
    std::filesystem::create_directories(container);
    ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    ::setenv("METERWICK_CONTAINER", container.c_str(), 1);
    ::setenv("MW_HOST_SNAPSHOT_DIR", snapshots.c_str(), 1);
    ::setenv("MW_HOST_APPEARANCE", "light", 1);
    ::setenv("NO_AT_BRIDGE", "1", 1);
    ASSERT_TRUE(writeFileAtomically(container / kPayloadFileName, encodePayload(samplePayload(systemNow()))));

    ASSERT_EQ(run("swaymsg create_output").status, 0);
    const auto configured = run("swaymsg output HEADLESS-2 mode 1280x720 position 1920 0");
    ASSERT_EQ(configured.status, 0) << configured.out << configured.err;
    // GTK names a Wayland output by its model and position.
    const auto outputs = nlohmann::json::parse(run("swaymsg -r -t get_outputs").out, nullptr, false);
    std::string second;
    for (const auto& output : outputs)
        if (output.value("name", "") == "HEADLESS-2") second = output.value("model", "") + "@1920,0";
    ASSERT_FALSE(second.empty()) << outputs.dump();

    ASSERT_EQ(run("'" MW_CLI_PATH "' place focus --monitor '" + second + "' --at 100,120").status, 0);
    ASSERT_EQ(run("'" MW_CLI_PATH "' place accounts --family systemMedium --at 1800,1000").status, 0);
    const auto medium = widgetSize(WidgetFamily::systemMedium);

    Host host(root / "host.log");
    const auto hostLog = [&] { return readFile(root / "host.log"); };
    ASSERT_TRUE(waitFor([&] {
        return std::filesystem::exists(snapshots / "focus-1.json") &&
               std::filesystem::exists(snapshots / "accounts-1.json");
    }, 60s)) << hostLog();
    const auto shownAt = [&](const std::string& id, WidgetPosition at, const char* shot) {
        const auto widget = readPPM(run("convert '" + (snapshots / (id + ".png")).string() + "' -depth 8 ppm:-").out);
        return waitFor([&] {
            const auto screen = screenshot("sway", std::filesystem::path(::getenv("MW_DESKTOP_SHOTS")) / shot);
            return mismatch(screen, widget, at.x, at.y) < 8;
        }, 15s);
    };

    const WidgetPosition clamped{1920 - static_cast<int>(medium.width), 1080 - static_cast<int>(medium.height)};
    EXPECT_TRUE(waitFor([&] { return storedPosition(config, "accounts-1") == clamped; }, 10s))
        << "saved at " << storedPosition(config, "accounts-1").x << "," << storedPosition(config, "accounts-1").y;
    EXPECT_TRUE(shownAt("accounts-1", clamped, "two-outputs.png")) << hostLog();
    EXPECT_TRUE(shownAt("focus-1", {1920 + 100, 120}, "two-outputs.png")) << hostLog();
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
    const TempDir io;
    const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string session = desktop == "sway-outputs" ? "sway" : desktop;
    const std::string command = "timeout -k 5 240 '" MW_DESKTOP_SESSION "' " + session + " env " + kInsideVariable +
                                "=" + desktop + " MW_DESKTOP_SHOTS='" + shots.string() + "' '" +
                                std::filesystem::read_symlink("/proc/self/exe").string() +
                                "' --gtest_filter=DesktopEndToEnd." + test + " >'" + (io / "log").string() + "' 2>&1";
    const int raw = std::system(command.c_str());
    EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, 0) << readFile(io / "log");
}

TEST(DesktopEndToEnd, Openbox) { inDesktop("openbox"); }
TEST(DesktopEndToEnd, Sway) { inDesktop("sway"); }
TEST(DesktopEndToEnd, SwayTwoOutputs) { inDesktop("sway-outputs"); }
TEST(DesktopEndToEnd, Mutter) { inDesktop("mutter"); }

}  // namespace
}  // namespace mw
