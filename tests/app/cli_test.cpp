// End-to-end checks of the meterwick-widgets command: exit statuses and the
// JSON it prints.

#include <sys/wait.h>

#include <cstdlib>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "payload/self_report.hpp"
#include "timeline/test_payloads.hpp"

namespace mw {
namespace {

using testing::TempDir;

struct Run {
    int status = -1;
    std::string out;
    std::string err;
};

// Runs the built binary with the environment pointing at no container, so a
// test never reads the machine's own data.
Run run(const std::string& arguments) {
    const TempDir io;
    const std::string command = "env METERWICK_CONTAINER=/nonexistent/mw '" MW_CLI_PATH "' " + arguments + " >'" +
                                (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, testing::readFile(io / "out"), testing::readFile(io / "err")};
}

TEST(Cli, UsageErrorsExitWithStatusTwoAndSayWhy) {
    struct Case {
        const char* arguments;
        const char* message;
    };
    const Case cases[] = {
        {"timeline bogus", "unknown widget kind \"bogus\""},
        {"timeline focus --family systemLarge", "accepted: systemSmall"},
        {"timeline dashboard --family huge", "accepted: systemLarge, systemExtraLarge"},
        {"timeline focus --set style=fancy", "accepted: classic, enhanced"},
        {"snapshot focus --set colour=red", "accepted: tool, style"},
        {"timeline accounts --set tool=claude", "has no options"},
        {"--now yesterday timeline focus", "--now"},
        {"--now 2025-01-31T14:05:00.5Z placeholder focus", "--now"},
        {"frobnicate", ""},
        {"", ""},
        {"choices everything", ""},
        {"lookup tool", ""},
    };
    for (const auto& c : cases) {
        const auto result = run(c.arguments);
        EXPECT_EQ(result.status, 2) << c.arguments;
        EXPECT_TRUE(result.out.empty()) << c.arguments;
        EXPECT_NE(result.err.find(c.message), std::string::npos) << c.arguments << ": " << result.err;
    }
}

TEST(Cli, HelpAndVersionSucceed) {
    EXPECT_EQ(run("--help").status, 0);
    const auto version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_FALSE(version.out.empty());
}

TEST(Cli, TimelinePrintsEntriesAndWritesTheSelfReport) {
    const TempDir container;
    testing::writePayload(container,
                          testing::payloadOf({testing::tool("claude", 30), testing::tool("codex", 60, "work")},
                                             testing::kNow - 600));
    const auto result = run("--container '" + container.path().string() +
                            "' --now 2025-01-31T14:05:00Z timeline MeterwickFocus --set style=enhanced");
    ASSERT_EQ(result.status, 0) << result.err;
    const auto json = nlohmann::json::parse(result.out);
    ASSERT_EQ(json["entries"].size(), 2u);
    EXPECT_EQ(json["reloadAfter"], "2025-01-31T14:15:00Z");
    const auto& first = json["entries"][0];
    EXPECT_EQ(first["date"], "2025-01-31T14:05:00Z");
    EXPECT_EQ(first["readStatus"], "ok");
    EXPECT_EQ(first["tool"]["id"], "highest");
    EXPECT_EQ(first["style"], "enhanced");
    EXPECT_EQ(first["resolvedToolID"], "codex:work");
    EXPECT_TRUE(first["panel"].is_null());
    EXPECT_EQ(json["entries"][1]["date"], "2025-01-31T14:25:00Z");
    EXPECT_EQ(json["entries"][1]["panel"]["title"], "Open Meterwick");

    const auto report = nlohmann::json::parse(testing::readFile(container / kSelfReportFileName));
    EXPECT_EQ(report["kind"], "focus");
    EXPECT_EQ(report["resolvedToolID"], "codex:work");
}

TEST(Cli, MissingContainerIsAPanelNotAnError) {
    const auto result = run("timeline accounts --container /nonexistent/elsewhere --now 2025-01-31T14:05:00Z");
    ASSERT_EQ(result.status, 0) << result.err;
    const auto json = nlohmann::json::parse(result.out);
    ASSERT_EQ(json["entries"].size(), 3u);
    EXPECT_EQ(json["entries"][0]["readStatus"], "noContainer");
    EXPECT_EQ(json["entries"][0]["panel"]["title"], "Can't read widget data");
}

TEST(Cli, PlaceholderAndSnapshotWriteNoReport) {
    const TempDir container;
    const std::string at = "--container '" + container.path().string() + "' ";
    EXPECT_EQ(run(at + "placeholder sparkline").status, 0);
    const auto snapshot = run(at + "snapshot accounts-limit --set provider=claude");
    ASSERT_EQ(snapshot.status, 0) << snapshot.err;
    EXPECT_EQ(nlohmann::json::parse(snapshot.out)["provider"]["label"], "Claude");
    EXPECT_TRUE(std::filesystem::is_empty(container.path()));
}

TEST(Cli, ChoicesAndLookup) {
    const TempDir container;
    testing::writePayload(container, testing::payloadOf({testing::tool("claude", 30, "work")}));
    const std::string at = "--container '" + container.path().string() + "' ";
    const auto choices = run(at + "choices tool");
    ASSERT_EQ(choices.status, 0) << choices.err;
    const auto list = nlohmann::json::parse(choices.out);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[1]["id"], "claude:work");

    const auto lookup = run(at + "lookup provider gemini all");
    ASSERT_EQ(lookup.status, 0) << lookup.err;
    EXPECT_EQ(nlohmann::json::parse(lookup.out),
              nlohmann::json::parse(R"([{"id":"gemini","label":"Gemini"},{"id":"all","label":"All providers"}])"));
}

}  // namespace
}  // namespace mw
