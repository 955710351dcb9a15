#include "payload/self_report.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::TempDir;

const Date kNow = *parseISO8601("2026-11-22T10:00:00Z");
const BundleInfo kBundle{"1.2.3", "/opt/meterwick/lib"};

std::vector<std::string> keysOf(const std::string& text) {
    std::vector<std::string> keys;
    const auto object = nlohmann::ordered_json::parse(text);
    for (auto it = object.begin(); it != object.end(); ++it) keys.push_back(it.key());
    return keys;
}

TEST(SelfReport, WritesEveryKeyInOrderCompactly) {
    WidgetPayload payload;
    payload.updatedAt = kNow - 60;
    const auto text =
        encodeSelfReport(makeSelfReport("accounts-limit", ReadStatus::ok, payload, "claude:work", kNow, kBundle));
    EXPECT_EQ(text,
              R"({"recordedAt":"2026-11-22T10:00:00Z","bundleVersion":"1.2.3","bundlePath":"/opt/meterwick/lib",)"
              R"("kind":"accounts-limit","payloadReadStatus":"ok","payloadUpdatedAt":"2026-11-22T09:59:00Z",)"
              R"("resolvedToolID":"claude:work"})");
}

TEST(SelfReport, OmitsAbsentValuesAndNamesUnknownVersions) {
    const auto text = encodeSelfReport(makeSelfReport("focus", ReadStatus::decodeFailed, emptyPayload(),
                                                      std::nullopt, kNow, BundleInfo{std::nullopt, "/x"}));
    EXPECT_EQ(keysOf(text), (std::vector<std::string>{"recordedAt", "bundleVersion", "bundlePath", "kind",
                                                      "payloadReadStatus"}));
    EXPECT_EQ(nlohmann::json::parse(text)["bundleVersion"], "unknown");
    EXPECT_EQ(nlohmann::json::parse(text)["payloadReadStatus"], "decodeFailed");
}

TEST(SelfReport, WrittenBesideThePayload) {
    TempDir dir;
    writeSelfReport(dir.path(), "sparkline", ReadStatus::missing, emptyPayload(), std::nullopt, kNow, kBundle);
    const auto j = nlohmann::json::parse(testing::readFile(dir / kSelfReportFileName));
    EXPECT_EQ(j["kind"], "sparkline");
    EXPECT_EQ(j["payloadReadStatus"], "missing");
}

TEST(SelfReport, TheRealBundleIsThisBinarysDirectory) {
    const auto bundle = SelfReportAnchor::bundle();
    EXPECT_TRUE(bundle.version.has_value());
    EXPECT_TRUE(std::filesystem::is_directory(bundle.path));
}

TEST(SelfReport, FailuresAreSilent) {
    TempDir dir;
    // No container: nothing anywhere.
    writeSelfReport(std::nullopt, "focus", ReadStatus::noContainer, emptyPayload(), std::nullopt, kNow, kBundle);
    // A container that vanished, and text that is not UTF-8.
    writeSelfReport(dir / "gone", "focus", ReadStatus::ok, emptyPayload(), std::nullopt, kNow, kBundle);
    writeSelfReport(dir.path(), "focus", ReadStatus::ok, emptyPayload(), std::nullopt, kNow,
                    BundleInfo{"1", "/bad\xff"});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 0);
}

TEST(SelfReport, ALinkAtTheReportPathIsReplacedNotFollowed) {
    TempDir dir;
    dir.write("elsewhere", "precious");
    std::filesystem::create_symlink(dir / "elsewhere", dir / kSelfReportFileName);
    writeSelfReport(dir.path(), "focus", ReadStatus::ok, emptyPayload(), std::nullopt, kNow, kBundle);
    EXPECT_EQ(testing::readFile(dir / "elsewhere"), "precious");
    EXPECT_FALSE(std::filesystem::is_symlink(dir / kSelfReportFileName));
}

// Builds of several widgets write at nearly the same time: the file is always
// one whole report.
TEST(SelfReport, ConcurrentWritersNeverLeaveAPartialReport) {
    TempDir dir;
    const std::string kinds[] = {"accounts", "accounts-limit", "dashboard", "focus", "sparkline"};
    // Processes first: forking once threads run can leave a child stuck on
    // a lock some other thread held at the time.
    std::vector<pid_t> children;
    for (int p = 0; p < 3; ++p) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            for (int i = 0; i < 50; ++i)
                writeSelfReport(dir.path(), "focus", ReadStatus::ok, emptyPayload(), std::nullopt, kNow, kBundle);
            ::_exit(0);
        }
        children.push_back(pid);
    }
    std::atomic<bool> done{false};
    std::atomic<int> badReads{0};
    std::thread reader([&] {
        while (!done) {
            const auto text = testing::readFile(dir / kSelfReportFileName);
            if (!text.empty() && !nlohmann::json::accept(text)) ++badReads;
        }
    });
    std::vector<std::thread> writers;
    for (int t = 0; t < 8; ++t) {
        writers.emplace_back([&, t] {
            for (int i = 0; i < 50; ++i)
                writeSelfReport(dir.path(), kinds[(t + i) % 5], ReadStatus::ok, emptyPayload(),
                                std::string(200 * (t + 1), 'x'), kNow, kBundle);
        });
    }
    for (auto& w : writers) w.join();
    for (const pid_t pid : children) ::waitpid(pid, nullptr, 0);
    done = true;
    reader.join();
    EXPECT_EQ(badReads.load(), 0);
    EXPECT_TRUE(nlohmann::json::accept(testing::readFile(dir / kSelfReportFileName)));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);  // no temporaries left
}

}  // namespace
}  // namespace mw
