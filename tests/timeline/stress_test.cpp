// Timeline builds under pressure: many at once, in threads and in processes,
// and in containers where the self-report cannot be written. The timelines
// never change, and the report on disk is always one whole report.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <set>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "bundle/bundle.hpp"
#include "payload/self_report.hpp"
#include "support/child_process.hpp"
#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::inChild;
using testing::kNow;
using testing::TempDir;

const BundleInfo kBundle{"9.9.9", "/opt/meterwick"};
const WidgetToolChoice kClaude{"claude", "Claude", "Cla"};

// A fresh container holding the payload every build reads.
struct Container {
    Container() {
        testing::writePayload(
            dir, testing::payloadOf({testing::tool("claude", 20), testing::tool("codex", 70, "work")}, kNow - 600));
    }
    ProviderContext context() const { return {dir.path(), kNow, kBundle}; }
    TempDir dir;
};

// The five widgets' timelines from one container.
struct Timelines {
    Timeline<AccountsEntry> accounts;
    Timeline<AccountsLimitEntry> limit;
    Timeline<DashboardEntry> dashboard;
    Timeline<FocusEntry> focus;
    Timeline<SparklineEntry> sparkline;
    bool operator==(const Timelines&) const = default;
};

Timelines buildAll(const ProviderContext& ctx) {
    return {AccountsProvider::timeline(ctx), AccountsLimitProvider::timeline({}, ctx),
            DashboardProvider::timeline({kClaude}, ctx), FocusProvider::timeline({}, ctx),
            SparklineProvider::timeline({kClaude}, ctx)};
}

// The timelines of a healthy, writable container. Built on first use, so
// call it before forking or limiting the process.
const Timelines& reference() {
    static const Timelines timelines = buildAll(Container().context());
    return timelines;
}

// Builds the timeline of kind `n % 5`; says which kind it built when it does
// not match the reference.
std::string buildOne(int n, const ProviderContext& ctx) {
    switch (n % 5) {
        case 0:
            return AccountsProvider::timeline(ctx) == reference().accounts ? "" : "accounts ";
        case 1:
            return AccountsLimitProvider::timeline({}, ctx) == reference().limit ? "" : "accounts-limit ";
        case 2:
            return DashboardProvider::timeline({kClaude}, ctx) == reference().dashboard ? "" : "dashboard ";
        case 3:
            return FocusProvider::timeline({}, ctx) == reference().focus ? "" : "focus ";
        default:
            return SparklineProvider::timeline({kClaude}, ctx) == reference().sparkline ? "" : "sparkline ";
    }
}

std::set<std::string> namesIn(const std::filesystem::path& dir) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) names.insert(entry.path().filename());
    return names;
}

// What is wrong with the report text, if anything.
std::string judgeReport(const std::string& text) {
    if (!nlohmann::json::accept(text)) return "not JSON: " + text;
    const auto report = nlohmann::json::parse(text);
    static const std::set<std::string> kinds{"accounts", "accounts-limit", "dashboard", "focus", "sparkline"};
    if (!report.contains("kind") || !kinds.contains(report["kind"].get<std::string>())) return "bad kind: " + text;
    if (report.value("payloadReadStatus", "") != "ok") return "bad status: " + text;
    if (report.value("recordedAt", "") != formatISO8601(kNow)) return "bad time: " + text;
    return "";
}

// Hundreds of builds at once, in several processes each running threads, and
// in threads of this one: every build gives the reference timeline, and a
// reader never catches the report half-written.
TEST(TimelineStress, ConcurrentBuildsAlwaysLeaveAWholeReport) {
    reference();
    const Container container;
    const auto& dir = container.dir;
    const auto ctx = container.context();

    const auto buildInThreads = [&](int threads, int each) {
        std::vector<std::string> problems(static_cast<std::size_t>(threads));
        std::vector<std::thread> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back([&, t] {
                for (int i = 0; i < each; ++i) problems[static_cast<std::size_t>(t)] += buildOne(t + i, ctx);
            });
        for (auto& w : workers) w.join();
        std::string all;
        for (const auto& p : problems) all += p;
        return all;
    };

    // Processes first, while this one has no threads of its own.
    std::vector<pid_t> children;
    for (int p = 0; p < 3; ++p) {
        const pid_t pid = ::fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) ::_exit(buildInThreads(4, 15).empty() ? 0 : 1);
        children.push_back(pid);
    }

    std::atomic<bool> done{false};
    std::string readerProblems;
    int reads = 0;
    std::thread reader([&] {
        while (!done) {
            const auto text = testing::readFile(dir / kSelfReportFileName);
            if (text.empty()) continue;  // not yet written
            ++reads;
            if (auto problem = judgeReport(text); !problem.empty() && readerProblems.size() < 1000)
                readerProblems += problem + "\n";
        }
    });
    const auto problems = buildInThreads(6, 20);
    for (const pid_t pid : children) {
        int status = 0;
        ::waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a child's builds differed, status " << status;
    }
    done = true;
    reader.join();

    EXPECT_EQ(problems, "");
    EXPECT_EQ(readerProblems, "");
    EXPECT_GT(reads, 0);
    EXPECT_EQ(judgeReport(testing::readFile(dir / kSelfReportFileName)), "");
    EXPECT_EQ(namesIn(dir.path()), (std::set<std::string>{kPayloadFileName, kSelfReportFileName}))
        << "no temporaries left";
}

// A report that cannot be written changes nothing else: the same timelines,
// and whatever stood at the report's name before is left as it was.
TEST(TimelineStress, AFullDiskLeavesTimelinesAndTheOldReportAlone) {
    reference();
    for (const rlim_t limit : {rlim_t{0}, rlim_t{64}}) {  // nothing fits; a report is cut off part way
        const Container container;
        const auto& dir = container.dir;
        const auto ctx = container.context();
        AccountsProvider::timeline(ctx);
        const auto before = testing::readFile(dir / kSelfReportFileName);
        ASSERT_GT(before.size(), limit);

        const auto problems = inChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const struct rlimit small {limit, limit};
            if (::setrlimit(RLIMIT_FSIZE, &small) != 0) return std::string("setrlimit failed");
            std::string found;
            for (int n = 0; n < 5; ++n) found += buildOne(n, ctx);
            return found.empty() ? "" : "timelines differ: " + found;
        });
        EXPECT_EQ(problems, "") << "limit " << limit;
        EXPECT_EQ(testing::readFile(dir / kSelfReportFileName), before) << "limit " << limit;
        EXPECT_EQ(namesIn(dir.path()), (std::set<std::string>{kPayloadFileName, kSelfReportFileName}))
            << "limit " << limit;
    }
}

// A report that cannot be written at all: the same timelines, and the
// container exactly as it was.
TEST(TimelineStress, AContainerThatRefusesTheReportLeavesTimelinesAlone) {
    const auto expectUntouched = [](const Container& container, const char* name) {
        const auto before = namesIn(container.dir.path());
        EXPECT_EQ(buildAll(container.context()), reference()) << name;
        EXPECT_EQ(namesIn(container.dir.path()), before) << name;
    };
    {
        // Works for root too: nothing renames a file over a directory.
        const Container container;
        const auto& dir = container.dir;
        std::filesystem::create_directory(dir / kSelfReportFileName);
        dir.write(std::string(kSelfReportFileName) + "/inside", "kept");
        expectUntouched(container, "a directory at the report's name");
        EXPECT_EQ(testing::readFile(dir / kSelfReportFileName / "inside"), "kept");
    }
    if (::geteuid() == 0) {
        std::printf("[ skipped  ] a read-only container: permissions do not bind root\n");
        return;
    }
    const Container container;
    std::filesystem::permissions(container.dir.path(), std::filesystem::perms(0555));
    expectUntouched(container, "a read-only container");
    EXPECT_FALSE(std::filesystem::exists(container.dir / kSelfReportFileName));
    std::filesystem::permissions(container.dir.path(), std::filesystem::perms(0755));
}

}  // namespace
}  // namespace mw
