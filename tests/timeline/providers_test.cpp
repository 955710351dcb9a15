#include "timeline/providers.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "payload/self_report.hpp"
#include "timeline/test_payloads.hpp"

namespace mw {
namespace {

using testing::kNow;
using testing::payloadOf;
using testing::TempDir;
using testing::tool;

const BundleInfo kBundle{"9.9.9", "/opt/meterwick"};

ProviderContext contextFor(const TempDir& dir) { return {dir.path(), kNow, kBundle}; }

nlohmann::json readReport(const TempDir& dir) {
    return nlohmann::json::parse(testing::readFile(dir / kSelfReportFileName));
}

bool reportExists(const TempDir& dir) { return std::filesystem::exists(dir / kSelfReportFileName); }

TEST(Placeholders, EmptyPayloadDefaultOptionsAndNoFile) {
    // Placeholders take only a date: they have no way to reach a file.
    const auto focus = FocusProvider::placeholder(kNow);
    EXPECT_EQ(focus, (FocusEntry{kNow, emptyPayload(), highestUsageChoice(), ReadStatus::ok,
                                 WidgetDetailStyle::classic}));
    EXPECT_EQ(AccountsProvider::placeholder(kNow), (AccountsEntry{kNow, emptyPayload(), ReadStatus::ok}));
    EXPECT_EQ(AccountsLimitProvider::placeholder(kNow),
              (AccountsLimitEntry{kNow, emptyPayload(), ReadStatus::ok, allProvidersChoice(),
                                  WidgetLimitChoice::weekly, WidgetPercentChoice::left,
                                  WidgetOrderChoice::mostRoom}));
    EXPECT_EQ(SparklineProvider::placeholder(kNow).chosen, highestUsageChoice());
    EXPECT_EQ(DashboardProvider::placeholder(kNow).chosen, highestUsageChoice());
}

TEST(Snapshots, OneEntryForNowWithTheConfiguredOptionsAndNoReport) {
    TempDir dir;
    testing::writePayload(dir, payloadOf({tool("claude")}, kNow - 600));
    const WidgetToolChoice claude{"claude", "Claude", "Cla"};

    const auto focus = FocusProvider::snapshot({claude, WidgetDetailStyle::enhanced}, contextFor(dir));
    EXPECT_EQ(focus.date, kNow);
    EXPECT_EQ(focus.readStatus, ReadStatus::ok);
    EXPECT_EQ(focus.chosen, claude);
    EXPECT_EQ(focus.style, WidgetDetailStyle::enhanced);
    EXPECT_EQ(FocusProvider::snapshot({}, contextFor(dir)).style, WidgetDetailStyle::classic);
    EXPECT_EQ(AccountsLimitProvider::snapshot({}, contextFor(dir)).provider, allProvidersChoice());
    AccountsProvider::snapshot(contextFor(dir));
    SparklineProvider::snapshot({}, contextFor(dir));
    DashboardProvider::snapshot({}, contextFor(dir));
    EXPECT_FALSE(reportExists(dir));
}

TEST(Timelines, MissingPayloadGivesThreeAccountsEntriesAndAFastReload) {
    TempDir dir;
    const auto timeline = AccountsProvider::timeline(contextFor(dir));
    ASSERT_EQ(timeline.entries.size(), 3u);
    EXPECT_EQ(timeline.entries[1].date, kNow + 900);
    EXPECT_EQ(timeline.entries[2].date, kNow + 1800);
    EXPECT_EQ(timeline.entries[0].readStatus, ReadStatus::missing);
    EXPECT_EQ(timeline.reloadAfter, kNow + 120);

    const auto report = readReport(dir);
    EXPECT_EQ(report["kind"], "accounts");
    EXPECT_EQ(report["payloadReadStatus"], "missing");
    EXPECT_FALSE(report.contains("payloadUpdatedAt"));
    EXPECT_FALSE(report.contains("resolvedToolID"));
    EXPECT_EQ(report["bundleVersion"], "9.9.9");
    EXPECT_EQ(report["recordedAt"], "2025-01-31T14:05:00Z");
}

TEST(Timelines, EachWidgetReportsItsKindWordAndResolvedTool) {
    TempDir dir;
    auto payload = payloadOf({tool("claude", 20), tool("codex", 70, "work")}, kNow - 600);
    testing::writePayload(dir, payload);
    const auto ctx = contextFor(dir);

    const auto focus = FocusProvider::timeline({}, ctx);
    EXPECT_EQ(readReport(dir)["kind"], "focus");
    EXPECT_EQ(readReport(dir)["resolvedToolID"], "codex:work");
    EXPECT_EQ(readReport(dir)["payloadUpdatedAt"], "2025-01-31T13:55:00Z");
    ASSERT_EQ(focus.entries.size(), 2u);  // now and the stale moment
    EXPECT_EQ(focus.entries[1].date, kNow + 1200);
    EXPECT_EQ(focus.entries[1].chosen, highestUsageChoice());
    EXPECT_EQ(focus.reloadAfter, kNow + 600);

    SparklineProvider::timeline({WidgetToolChoice{"gemini", "Gemini", "Gem"}}, ctx);
    EXPECT_EQ(readReport(dir)["kind"], "sparkline");
    EXPECT_EQ(readReport(dir)["resolvedToolID"], "gemini");  // named even though it does not resolve

    DashboardProvider::timeline({WidgetToolChoice{"claude", "Claude", "Cla"}}, ctx);
    EXPECT_EQ(readReport(dir)["kind"], "dashboard");
    EXPECT_EQ(readReport(dir)["resolvedToolID"], "claude");

    const auto limit = AccountsLimitProvider::timeline({WidgetProviderChoice{"codex", "Codex"}}, ctx);
    EXPECT_EQ(readReport(dir)["kind"], "accounts-limit");
    EXPECT_EQ(readReport(dir)["resolvedToolID"], "codex");
    ASSERT_EQ(limit.entries.size(), 3u);  // now, +15 min, the stale moment at +20 min
    EXPECT_EQ(limit.entries[2].date, kNow + 1200);
    EXPECT_EQ(limit.entries[2].provider.id, "codex");

    AccountsLimitProvider::timeline({}, ctx);
    EXPECT_FALSE(readReport(dir).contains("resolvedToolID"));  // all providers: nothing resolved

    AccountsProvider::timeline(ctx);
    EXPECT_EQ(readReport(dir)["kind"], "accounts");
}

TEST(Timelines, HighestWithNothingToRankReportsNoTool) {
    TempDir dir;
    testing::writePayload(dir, payloadOf({}, kNow));
    const auto timeline = FocusProvider::timeline({}, contextFor(dir));
    EXPECT_FALSE(readReport(dir).contains("resolvedToolID"));
    EXPECT_EQ(timeline.reloadAfter, kNow + 120);  // written but no tools
}

TEST(Timelines, StaleAndFutureData) {
    TempDir dir;
    testing::writePayload(dir, payloadOf({tool("claude")}, kNow - 45 * 60));
    const auto stale = AccountsProvider::timeline(contextFor(dir));
    EXPECT_EQ(stale.entries.size(), 1u);
    EXPECT_EQ(stale.reloadAfter, kNow + 120);

    testing::writePayload(dir, payloadOf({tool("claude")}, kNow + 3600));
    const auto future = AccountsProvider::timeline(contextFor(dir));
    ASSERT_EQ(future.entries.size(), 4u);
    EXPECT_EQ(future.entries[3].date, kNow + 5400);
    EXPECT_EQ(future.reloadAfter, kNow + 600);
}

TEST(Timelines, NoContainerWritesNothingAnywhere) {
    const auto timeline = FocusProvider::timeline({}, {std::nullopt, kNow, kBundle});
    ASSERT_EQ(timeline.entries.size(), 1u);
    EXPECT_EQ(timeline.entries[0].readStatus, ReadStatus::noContainer);
    EXPECT_EQ(timeline.reloadAfter, kNow + 120);
}

TEST(Timelines, UndecodablePayloadIsReportedWithoutUpdatedAt) {
    TempDir dir;
    dir.write(kPayloadFileName, "not json");
    const auto timeline = DashboardProvider::timeline({}, contextFor(dir));
    EXPECT_EQ(timeline.entries[0].readStatus, ReadStatus::decodeFailed);
    EXPECT_EQ(timeline.entries[0].payload, emptyPayload());
    EXPECT_EQ(readReport(dir)["payloadReadStatus"], "decodeFailed");
    EXPECT_FALSE(readReport(dir).contains("payloadUpdatedAt"));
}

}  // namespace
}  // namespace mw
