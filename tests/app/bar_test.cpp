// The status-bar line: the Focus widget's decision written for Waybar and
// plain bars, and the live --follow stream read through a real pipe.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/bar_line.hpp"
#include "config/choices.hpp"
#include "support/payloads.hpp"

namespace mw {
namespace {

using cli::BarLine;
using cli::barLine;
using testing::kNow;
using testing::payloadOf;
using testing::tool;
using testing::window;
using testing::withWindows;

WidgetToolChoice choice(const std::string& key) { return {key, key, key.substr(0, 3)}; }

FocusEntry entry(WidgetPayload payload, ReadStatus status = ReadStatus::ok, WidgetToolChoice chosen = highestUsageChoice(),
                 Date date = kNow) {
    return {date, std::move(payload), std::move(chosen), status, WidgetDetailStyle::classic};
}

TEST(BarLine, FollowsTheFocusDecision) {
    auto remaining = payloadOf({tool("claude", 130), tool("codex", 42.5)});
    remaining.showRemaining = true;
    auto textOnly = tool("cursor", 0);
    textOnly.hasQuotaHeadline = false;
    textOnly.menuBarText = "$18.40";
    auto hidden = payloadOf({tool("claude", 50), tool("codex", 20)});
    hidden.enabledToolIDs = {"claude"};

    struct Case {
        const char* name;
        FocusEntry entry;
        std::string text;
        int percentage;
        std::vector<std::string> classes;
        std::optional<std::string> alt;
    };
    const Case cases[] = {
        // A short window at 90 % or more is critical whatever its pace; "highest" picks it.
        {"critical", entry(payloadOf({tool("codex", 20), withWindows(tool("claude", 93), {window("5h", 93, 1800, 18000)})})),
         "Cla 93%", 93, {"critical", "on"}, "claude"},
        // A weekly window ahead of its pace warns; a slug makes the key.
        {"warning", entry(payloadOf({withWindows(tool("codex", 70, "work"), {window("Week", 70, 302400, 604800)})}),
                          ReadStatus::ok, choice("codex:work")),
         "Cod 70%", 70, {"warning", "over"}, "codex:work"},
        {"under pace", entry(payloadOf({withWindows(tool("gemini", 10), {window("5h", 10, 3600, 18000)})})),
         "Gem 10%", 10, {"ok", "under"}, "gemini"},
        {"no pace", entry(payloadOf({tool("claude", 140)})), "Cla 140%", 100, {"critical", "none"}, "claude"},
        {"left, clamped", entry(remaining, ReadStatus::ok, choice("claude")), "Cla 0% left", 0, {"critical", "none"},
         "claude"},
        {"left", entry(remaining, ReadStatus::ok, choice("codex")), "Cod 57% left", 57, {"ok", "none"}, "codex"},
        {"no quota", entry(payloadOf({textOnly})), "Cur $18.40", 0, {"ok", "none"}, "cursor"},
        // Panels (which one is the Focus widget's decision): each kind its class.
        {"stale", entry(payloadOf({tool("claude")}, kNow - 1800)), "Open Meterwick", 0, {"panel", "stale"}, "claude"},
        {"unreadable", entry(emptyPayload(), ReadStatus::unreadable), "Can't read widget data", 0,
         {"panel", "unreadable"}, std::nullopt},
        {"decode failed", entry(emptyPayload(), ReadStatus::decodeFailed), "Widget data unreadable", 0,
         {"panel", "decodeFailed"}, std::nullopt},
        {"turned off", entry(hidden, ReadStatus::ok, choice("codex")), "cod is turned off", 0, {"panel", "empty"},
         "codex"},
    };
    for (const auto& c : cases) {
        const BarLine line = barLine(c.entry);
        EXPECT_EQ(line.text, c.text) << c.name;
        EXPECT_EQ(line.percentage, c.percentage) << c.name;
        EXPECT_EQ(line.classes, c.classes) << c.name;
        EXPECT_EQ(line.alt, c.alt) << c.name;
    }
}

TEST(BarLine, TooltipHasOneLinePerShownAccountOrThePanelsAdvice) {
    auto payload = payloadOf({withWindows(tool("claude", 62), {window("5h", 62, 9000, 18000), window("Week", 48, 259200, 604800)}),
                              tool("codex", 18, "work"), tool("gemini")});
    payload.enabledToolIDs = {"claude", "codex:work"};  // gemini hidden: no line
    payload.tools[1].hasQuotaHeadline = false;
    payload.tools[1].menuBarText = "$4.10";
    EXPECT_EQ(barLine(entry(payload)).tooltip,
              "Claude: 5h 62%, resets in 2h 30m, Over pace +12%; Week 48%, resets in 3d, Under pace \u22129%\n"
              "Codex \u00B7 work: $4.10");
    EXPECT_EQ(barLine(entry(emptyPayload(), ReadStatus::missing)).tooltip,
              "Open the app once and this fills in automatically.");
}

// A running `bar --follow`, its stdout read through a pipe with deadlines.
class FollowingBar {
public:
    explicit FollowingBar(const std::vector<std::string>& arguments) {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0) return;
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(fds[1], STDOUT_FILENO);
            std::vector<char*> argv{const_cast<char*>(MW_CLI_PATH)};
            for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
            argv.push_back(nullptr);
            ::execv(MW_CLI_PATH, argv.data());
            ::_exit(127);
        }
        ::close(fds[1]);
        out_ = fds[0];
    }
    ~FollowingBar() {
        closeReader();
        if (pid_ > 0 && !reaped_) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
    }

    // The next line, or nothing when none came within `seconds`.
    std::optional<std::string> line(double seconds) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        for (;;) {
            if (const auto end = buffer_.find('\n'); end != std::string::npos) {
                std::string line = buffer_.substr(0, end);
                buffer_.erase(0, end + 1);
                return line;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return std::nullopt;
            pollfd fd{out_, POLLIN, 0};
            if (::poll(&fd, 1, static_cast<int>(left.count())) <= 0) continue;
            char chunk[4096];
            const ssize_t n = ::read(out_, chunk, sizeof chunk);
            if (n <= 0) return std::nullopt;
            buffer_.append(chunk, static_cast<std::size_t>(n));
        }
    }

    void closeReader() {
        if (out_ >= 0) ::close(out_);
        out_ = -1;
    }
    void signal(int number) const { ::kill(pid_, number); }

    // The exit status once the process has ended, or nothing after `seconds`.
    std::optional<int> exitStatus(double seconds) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (std::chrono::steady_clock::now() < deadline) {
            int status = 0;
            if (::waitpid(pid_, &status, WNOHANG) == pid_) {
                reaped_ = true;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            ::usleep(10'000);
        }
        return std::nullopt;
    }

private:
    pid_t pid_ = -1;
    int out_ = -1;
    bool reaped_ = false;
    std::string buffer_;
};

// What Waybar's custom module reads with "return-type": "json".
void expectWaybarObject(const std::string& text) {
    const auto json = nlohmann::json::parse(text, nullptr, false);
    ASSERT_TRUE(json.is_object()) << text;
    EXPECT_TRUE(json["text"].is_string()) << text;
    EXPECT_TRUE(json["tooltip"].is_string()) << text;
    ASSERT_TRUE(json["class"].is_array()) << text;
    for (const auto& name : json["class"]) EXPECT_TRUE(name.is_string()) << text;
    ASSERT_TRUE(json["percentage"].is_number_integer()) << text;
    EXPECT_GE(json["percentage"].get<int>(), 0);
    EXPECT_LE(json["percentage"].get<int>(), 100);
    if (json.contains("alt")) {
        EXPECT_TRUE(json["alt"].is_string()) << text;
    }
}

std::string textOf(const std::optional<std::string>& line) {
    if (!line) return "(no line)";
    return nlohmann::json::parse(*line, nullptr, false).value("text", "(not JSON: " + *line + ")");
}

TEST(BarFollow, PrintsAtStartOnEachChangeAndAtTheStaleMomentThenEndsOnTerm) {
    const testing::TempDir container;
    testing::writePayload(container, payloadOf({tool("claude", 30)}));
    // Time runs on from --now: the data turns stale five seconds in.
    FollowingBar bar({"--container", container.path().string(), "--now", formatISO8601(kNow + 1795), "bar",
                      "--follow"});
    const auto first = bar.line(5);
    EXPECT_EQ(textOf(first), "Cla 30%");
    if (first) expectWaybarObject(*first);

    testing::writePayload(container, payloadOf({tool("claude", 45)}));
    EXPECT_EQ(textOf(bar.line(2.5)), "Cla 45%");

    std::filesystem::remove(container / kPayloadFileName);
    const auto missing = bar.line(2.5);
    EXPECT_EQ(textOf(missing), "Waiting for Meterwick");
    testing::writePayload(container, payloadOf({tool("claude", 50)}));
    EXPECT_EQ(textOf(bar.line(2.5)), "Cla 50%");

    const auto stale = bar.line(8);
    EXPECT_EQ(textOf(stale), "Open Meterwick");
    if (stale) expectWaybarObject(*stale);

    bar.signal(SIGTERM);
    EXPECT_EQ(bar.exitStatus(5), 0);
}

TEST(BarFollow, EndsQuietlyWhenItsReaderGoesAway) {
    FollowingBar bar({"--container", "/nonexistent/mw", "bar", "--format", "plain", "--follow"});
    EXPECT_EQ(bar.line(5), "Can't read widget data");
    bar.closeReader();
    EXPECT_EQ(bar.exitStatus(5), 0);
}

}  // namespace
}  // namespace mw
