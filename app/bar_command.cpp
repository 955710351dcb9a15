// bar: the Focus widget's tool as a status-bar line, once or live.
//
// --follow prints a line at start, whenever the payload file changes, and at
// each date of the widget's timeline (the stale moment), and reads the file
// again at the timeline's reload date, as a placed widget would. It sleeps in
// poll(2) on an inotify watch of the container and a signalfd until the next
// date: no polling. SIGTERM, SIGINT and SIGHUP end it with status 0, and so
// does a reader that goes away (SIGPIPE is ignored and EPIPE ends the loop).

#include <poll.h>
#include <signal.h>
#include <sys/inotify.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cmath>
#include <filesystem>
#include <memory>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/bar_line.hpp"
#include "app/cli.hpp"
#include "platform/clock.hpp"
#include "platform/container.hpp"
#include "timeline/policy.hpp"

namespace mw::cli {
namespace {

namespace fs = std::filesystem;

enum class BarFormat { waybar, plain };

struct BarArguments {
    std::vector<std::string> assignments;
    std::string format = "waybar";
    bool follow = false;
};

// Several events arrive for one atomic replacement; the line is printed once
// they have been quiet this long.
constexpr auto kSettleTime = std::chrono::milliseconds(40);

BarFormat formatNamed(const std::string& name) {
    if (name == "waybar") return BarFormat::waybar;
    if (name == "plain") return BarFormat::plain;
    throw UsageError("--format: \"" + name + "\" is not a bar format; accepted: waybar, plain");
}

// Only the tool can be chosen: the bar has no style.
IntentParameters barParameters(const std::vector<std::string>& assignments) {
    auto parsed = parseIntentParameters(FocusWidgetIntent::description(), assignments);
    if (!parsed) throw UsageError("--set: " + parsed.error());
    for (const auto& [name, value] : *parsed)
        if (name != "tool") throw UsageError("--set: the bar takes only tool=KEY, not \"" + name + "\"");
    return *parsed;
}

FocusEntry barEntry(const IntentParameters& parameters, const LoadResult& loaded, Date now) {
    const auto intent = intentFromParameters<FocusWidgetIntent>(parameters, choiceLists(loaded.payload));
    return {now, loaded.payload, intent.tool.value_or(highestUsageChoice()), loaded.status,
            WidgetDetailStyle::classic};
}

std::string render(const BarLine& line, BarFormat format) {
    if (format == BarFormat::plain) return line.text + '\n';
    return waybarJSON(line).dump() + '\n';
}

// Writes all of `text` to stdout; false once nobody reads it.
bool writeOut(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(STDOUT_FILENO, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

// Time as the command sees it: --now when given, running on with the
// monotonic clock, so a test can start just before a stale moment.
class BarClock {
public:
    explicit BarClock(Date start) : start_(start), origin_(std::chrono::steady_clock::now()) {}
    Date now() const {
        return start_ + std::chrono::duration<double>(std::chrono::steady_clock::now() - origin_).count();
    }

private:
    Date start_;
    std::chrono::steady_clock::time_point origin_;
};

class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    int get() const { return fd_; }

private:
    int fd_;
};

// Watches the container for the payload; while the container does not exist,
// its nearest existing ancestor, so that its creation is noticed.
class ContainerWatch {
public:
    explicit ContainerWatch(std::optional<fs::path> container)
        : container_(std::move(container)), fd_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (fd_.get() < 0) throw std::runtime_error("cannot watch the container: inotify is not available");
        arm();
    }
    int fd() const { return fd_.get(); }

    // Reads the pending events; true when one may concern the payload.
    bool drain() {
        alignas(inotify_event) char buffer[8192];
        bool concerned = false;
        bool rearm = false;
        for (;;) {
            const ssize_t n = ::read(fd_.get(), buffer, sizeof buffer);
            if (n <= 0) break;
            for (ssize_t at = 0; at < n;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
                // A watch given up by an earlier re-arm still reports its end.
                if (event->wd != watch_ && !(event->mask & IN_Q_OVERFLOW)) continue;
                const bool gone = (event->mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) != 0;
                const bool named = event->len > 0 && std::string_view(event->name) == kPayloadFileName;
                // While only an ancestor is watched, any change may have made the container.
                if (gone || !watchingContainer_ || event->mask & IN_Q_OVERFLOW) rearm = true;
                if (rearm || named) concerned = true;
            }
        }
        if (rearm) arm();
        return concerned;
    }

private:
    void arm() {
        if (watch_ >= 0) ::inotify_rm_watch(fd_.get(), watch_);
        watch_ = -1;
        watchingContainer_ = false;
        if (!container_) return;
        std::error_code ec;
        fs::path dir = *container_;
        while (!fs::is_directory(dir, ec) && dir.has_relative_path()) dir = dir.parent_path();
        watchingContainer_ = dir == *container_;
        const std::uint32_t mask = watchingContainer_
                                       ? IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE |
                                             IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR
                                       : IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
        watch_ = ::inotify_add_watch(fd_.get(), dir.c_str(), mask);
    }

    std::optional<fs::path> container_;
    FileDescriptor fd_;
    int watch_ = -1;
    bool watchingContainer_ = false;
};

// The container a watch follows: --container, else where the environment
// puts it (existing or not).
std::optional<fs::path> watchedContainer(const GlobalOptions& options) {
    if (options.containerOption != nullptr && options.containerOption->count() > 0)
        return fs::path(options.container);
    return containerLocation(ContainerEnvironment::fromProcess()).path;
}

int millisecondsUntil(Date target, Date now) {
    const double ms = std::ceil((target - now) * 1000);
    return static_cast<int>(std::clamp(ms, 0.0, static_cast<double>(INT_MAX)));
}

void follow(const GlobalOptions& options, const IntentParameters& parameters, BarFormat format) {
    ::signal(SIGPIPE, SIG_IGN);
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&ending, signal);
    if (::sigprocmask(SIG_BLOCK, &ending, nullptr) != 0) throw std::runtime_error("cannot block signals");
    const FileDescriptor signals(::signalfd(-1, &ending, SFD_NONBLOCK | SFD_CLOEXEC));
    if (signals.get() < 0) throw std::runtime_error("cannot receive signals");

    const BarClock clock(nowFrom(options));
    ContainerWatch watch(watchedContainer(options));

    LoadResult loaded;
    std::vector<Date> dates;  // still ahead, ascending
    Date reloadAt;
    auto load = [&] {
        loaded = WidgetStore::load(containerFrom(options));
        const Date now = clock.now();
        dates.clear();
        for (const Date date : timelineDates(loaded.payload, now, false))
            if (date > now) dates.push_back(date);
        reloadAt = reloadDate(loaded.payload, now);
    };
    auto print = [&] { return writeOut(render(barLine(barEntry(parameters, loaded, clock.now())), format)); };

    load();
    if (!print()) return;
    std::optional<std::chrono::steady_clock::time_point> settleAt;
    for (;;) {
        const Date now = clock.now();
        Date next = reloadAt;
        if (!dates.empty()) next = std::min(next, dates.front());
        int timeout = millisecondsUntil(next, now);
        if (settleAt) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*settleAt - std::chrono::steady_clock::now());
            timeout = std::min(timeout, static_cast<int>(std::max<long long>(0, left.count())));
        }
        pollfd fds[3] = {{signals.get(), POLLIN, 0}, {watch.fd(), POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
        const int ready = ::poll(fds, 3, timeout);
        if (ready < 0 && errno != EINTR) throw std::runtime_error("waiting for changes failed");
        if (fds[0].revents & POLLIN) return;                 // asked to end
        if (fds[2].revents & (POLLERR | POLLHUP)) return;    // the reader went away
        if (fds[1].revents & POLLIN && watch.drain()) settleAt = std::chrono::steady_clock::now() + kSettleTime;

        const Date after = clock.now();
        if (settleAt && std::chrono::steady_clock::now() >= *settleAt) {
            settleAt.reset();
            load();
            if (!print()) return;
        } else if (after >= reloadAt) {
            load();
            if (!print()) return;
        } else if (!dates.empty() && after >= dates.front()) {
            while (!dates.empty() && after >= dates.front()) dates.erase(dates.begin());
            if (!print()) return;
        }
    }
}

}  // namespace

void registerBarCommand(CLI::App& app, const GlobalOptions& options) {
    auto* bar = app.add_subcommand(
        "bar", "The Focus widget's tool as a status-bar line (Waybar JSON or plain text), live with --follow");
    auto args = std::make_shared<BarArguments>();
    bar->add_option("--set", args->assignments, "The tool to show as tool=KEY (default: the highest usage)")
        ->allow_extra_args(false)
        ->type_name("tool=KEY");
    bar->add_option("--format", args->format, "waybar (one JSON object per line, the default) or plain")
        ->type_name("FORMAT");
    bar->add_flag("--follow", args->follow,
                  "Keep running: a new line when the payload changes and when the data turns stale");
    bar->callback([&options, args] {
        const BarFormat format = formatNamed(args->format);
        const auto parameters = barParameters(args->assignments);
        const Date now = nowFrom(options);  // a bad --now fails before anything is read
        if (args->follow) {
            follow(options, parameters, format);
            return;
        }
        const auto loaded = WidgetStore::load(containerFrom(options));
        writeOut(render(barLine(barEntry(parameters, loaded, now)), format));
    });
}

}  // namespace mw::cli
