#pragma once
// What the end-to-end tests of the desktop host share: commands run and
// waited on, the host started and stopped as a child, a private home for one
// scenario (config, container, snapshots), the test re-running itself inside
// a display server and session bus, and screens compared with what the host
// drew.
//
// A test built with mw_host_e2e_test() (tests/host/CMakeLists.txt) has
// MW_CLI_PATH, MW_HOST_PATH, MW_DESKTOP_SESSION and MW_VIRTUAL_POINTER set.

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "host/placements.hpp"
#include "payload/codec.hpp"
#include "payload/sample.hpp"
#include "payload/store.hpp"
#include "platform/atomic_write.hpp"
#include "platform/clock.hpp"
#include "support/temp_dir.hpp"

extern char** environ;

namespace mw::testing::e2e {

using namespace std::chrono_literals;

struct Run {
    int status = -1;
    std::string out;
    std::string err;
};

// A shell command, waited on, with what it printed.
inline Run run(const std::string& command) {
    const TempDir io;
    const std::string line = command + " >'" + (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
    const int raw = std::system(line.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(io / "out"), readFile(io / "err")};
}

inline Run cli(const std::string& arguments) {
    return run("'" MW_CLI_PATH "' " + arguments);
}

// Drawing commands load fonts; under LeakSanitizer fontconfig's process-long
// caches read as leaks, which is not what these tests are about.
inline Run drawingCLI(const std::string& arguments) {
    return run("env ASAN_OPTIONS=\"${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0\" '" MW_CLI_PATH "' " + arguments);
}

inline bool onPath(const char* program) {
    return run(std::string("command -v ") + program).status == 0;
}

// Polls until `done` or the deadline; true when done.
inline bool waitFor(const std::function<bool()>& done, std::chrono::milliseconds deadline = 20s) {
    const auto until = std::chrono::steady_clock::now() + deadline;
    while (std::chrono::steady_clock::now() < until) {
        if (done()) return true;
        std::this_thread::sleep_for(50ms);
    }
    return done();
}

inline nlohmann::json readJSON(const std::filesystem::path& path) {
    return nlohmann::json::parse(readFile(path), nullptr, false);
}

// A shell command run as a child process, its output in LOG; ended with
// SIGTERM (SIGKILL after ten seconds) at the latest when this goes out of
// scope.
class Child {
  public:
    Child(const std::string& command, const std::filesystem::path& log) {
        const std::string line = "exec " + command + " >'" + log.string() + "' 2>&1";
        const char* argv[] = {"sh", "-c", line.c_str(), nullptr};
        if (::posix_spawn(&pid_, "/bin/sh", nullptr, nullptr, const_cast<char**>(argv), environ) != 0) pid_ = -1;
    }
    ~Child() { stop(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return pid_; }

    bool started() const { return pid_ > 0; }
    // SIGTERM, then the exit status (or -1 when it had to be killed).
    int stop() {
        if (pid_ <= 0) return status_;
        ::kill(pid_, SIGTERM);
        int raw = 0;
        const bool exited = waitFor([&] { return ::waitpid(pid_, &raw, WNOHANG) == pid_; }, 10s);
        if (!exited) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, &raw, 0);
        }
        status_ = exited && WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        pid_ = -1;
        return status_;
    }

  private:
    pid_t pid_ = -1;
    int status_ = -1;
};

// The desktop host as built, as a child process.
class Host : public Child {
  public:
    explicit Host(const std::filesystem::path& log)
        : Child("env ASAN_OPTIONS=detect_leaks=0 '" MW_HOST_PATH "'", log) {}
};

// A private home for one scenario, exported to the host and the commands
// through the environment: XDG_CONFIG_HOME, the container
// (METERWICK_CONTAINER, ROOT/CONTAINER, not created) and the directory where
// the host notes what each window shows (MW_HOST_SNAPSHOT_DIR).
struct Sandbox {
    explicit Sandbox(const std::string& containerUnderRoot = "container")
        : config(root / "config"), container(root / containerUnderRoot), snapshots(root / "snapshots") {
        ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
        ::setenv("METERWICK_CONTAINER", this->container.c_str(), 1);
        ::setenv("MW_HOST_SNAPSHOT_DIR", snapshots.c_str(), 1);
    }

    // Creates the container and writes PAYLOAD into it.
    bool writePayload(const WidgetPayload& payload) const {
        std::filesystem::create_directories(container);
        return writeFileAtomically(container / kPayloadFileName, encodePayload(payload));
    }
    bool writeSamplePayload() const { return writePayload(samplePayload(systemNow())); }

    std::filesystem::path hostLogPath() const { return root / "host.log"; }
    std::string hostLog() const { return readFile(hostLogPath()); }

    // The host's note of what window ID shows: present and complete.
    std::optional<nlohmann::json> shown(const std::string& id) const {
        auto json = readJSON(snapshots / (id + ".json"));
        if (json.is_discarded() || !json.is_object()) return std::nullopt;
        return json;
    }
    bool allShown(const std::vector<std::string>& ids) const {
        for (const auto& id : ids)
            if (!shown(id)) return false;
        return true;
    }

    std::vector<PlacedWidget> stored() const {
        return loadPlacements(config / "meterwick" / kPlacementsFileName, systemNow()).widgets;
    }
    // Where widget ID is saved, or (-1, -1) when it is not.
    WidgetPosition storedPosition(const std::string& id) const {
        const auto widgets = stored();
        const auto* placed = findPlacement(widgets, id);
        return placed ? placed->position : WidgetPosition{-1, -1};
    }
    // Whether widget ID comes to be saved at AT within DEADLINE; when not,
    // says where it is saved.
    ::testing::AssertionResult savedAt(const std::string& id, WidgetPosition at,
                                       std::chrono::milliseconds deadline = 10s) const {
        if (waitFor([&] { return storedPosition(id) == at; }, deadline)) return ::testing::AssertionSuccess();
        const auto saved = storedPosition(id);
        return ::testing::AssertionFailure()
               << id << " is saved at " << saved.x << "," << saved.y << ", not at " << at.x << "," << at.y;
    }

    const TempDir root;
    const std::filesystem::path config;
    const std::filesystem::path container;
    const std::filesystem::path snapshots;
};

// Runs the current test again inside WRAPPER (a command that starts a display
// server and a session bus, then runs the rest of its command line) with
// ASSIGNMENTS ("NAME=value …") in its environment, for at most LIMIT. The
// test passes when that run does, and fails with its output when it does
// not. The inner run knows itself by a variable among the assignments.
inline void runThisTestInside(const std::string& wrapper, const std::string& assignments, std::chrono::seconds limit) {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    const TempDir io;
    const std::string command = "timeout -k 5 " + std::to_string(limit.count()) + " " + wrapper + " env " +
                                assignments + " '" + std::filesystem::read_symlink("/proc/self/exe").string() +
                                "' --gtest_filter=" + test->test_suite_name() + "." + test->name() + " >'" +
                                (io / "log").string() + "' 2>&1";
    int raw = std::system(command.c_str());
    // A display server or window manager that dies while starting (seen once
    // as a window manager that could not reach a display just handed out) gets
    // one more try; what the first attempt said stays on stderr.
    if (raw != 0 && readFile(io / "log").find("exited while starting") != std::string::npos) {
        std::cerr << "The desktop did not start; trying once more. It said:\n" << readFile(io / "log");
        raw = std::system(command.c_str());
    }
    EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, 0) << readFile(io / "log");
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

inline Image readPPM(const std::string& bytes) {
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

// Any image file ImageMagick reads (the host's PNG snapshots), as pixels.
inline Image readImage(const std::filesystem::path& file) {
    return readPPM(run("convert '" + file.string() + "' -depth 8 ppm:-").out);
}

// The whole screen as the desktop shows it, kept as PNG at KEEP_AS for a
// person to look at. sway is grabbed with grim, X11 with ImageMagick.
inline Image screenshot(const std::string& desktop, const std::filesystem::path& keepAs) {
    const std::string grab =
        desktop == "sway" ? "grim '" + keepAs.string() + "'" : "import -window root '" + keepAs.string() + "'";
    if (run(grab).status != 0) return {};
    return readImage(keepAs);
}

// How far the drawn widget (its snapshot, flattened) is from the screen at
// (x, y): the mean difference per channel over the widget's inside, away
// from its rounded corners. The window is drawn at opacity 0.98, so a few
// levels of difference remain where it matches.
inline double mismatch(const Image& screen, const Image& widget, int x, int y) {
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

// Whether the screen shows WIDGET drawn at AT (and not 20 points to the
// right of it), within 15 s; each screenshot is kept as SHOT in the
// directory MW_DESKTOP_SHOTS names.
inline bool drawnAt(const std::string& desktop, const Image& widget, WidgetPosition at, const char* shot) {
    const char* shots = std::getenv("MW_DESKTOP_SHOTS");
    const auto keepAs = std::filesystem::path(shots != nullptr ? shots : ".") / shot;
    return waitFor(
        [&] {
            const auto screen = screenshot(desktop, keepAs);
            return mismatch(screen, widget, at.x, at.y) < 8 && mismatch(screen, widget, at.x + 20, at.y) > 8;
        },
        15s);
}

// X11: the window with this exact title, as the window manager lists it.
inline std::string x11Window(const std::string& title) {
    const auto found = run("xdotool search --onlyvisible --name '^" + title + "$'");
    std::istringstream lines(found.out);
    std::string id;
    lines >> id;
    return id;
}

// Presses at (x, y) and drags by (dx, dy) in ten steps: on sway through a
// virtual pointer (its headless seat has none), elsewhere with xdotool.
inline void drag(const std::string& desktop, int x, int y, int dx, int dy) {
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

}  // namespace mw::testing::e2e
