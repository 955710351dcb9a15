#include "bundle/bundle.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "payload/self_report.hpp"
#include "support/payloads.hpp"

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

TEST(Placeholders, EmptyPayloadDefaultOptionsAndNoFile) {
    // Placeholders take only a date: they have no way to reach a file.
    const auto focus = FocusProvider::placeholder(kNow);
    EXPECT_EQ(focus, (FocusEntry{kNow, emptyPayload(), highestUsageChoice(), ReadStatus::ok,
                                 WidgetDetailStyle::classic}));
    EXPECT_EQ(AccountsProvider::placeholder(kNow), (AccountsEntry{kNow, emptyPayload(), ReadStatus::ok}));
    EXPECT_EQ(AccountsLimitProvider::placeholder(kNow).provider, allProvidersChoice());
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
    AccountsLimitProvider::snapshot({}, contextFor(dir));
    AccountsProvider::snapshot(contextFor(dir));
    SparklineProvider::snapshot({}, contextFor(dir));
    DashboardProvider::snapshot({}, contextFor(dir));
    EXPECT_FALSE(std::filesystem::exists(dir / kSelfReportFileName));
}

// A container without a readable payload: entries carry the status, the
// report names it without a payload time or tool, and no container means no
// report at all.
TEST(Timelines, ReadProblemsAreReportedWithoutUpdatedAtOrTool) {
    const struct {
        const char* name;
        std::optional<std::string> file;  // nothing: no payload file
        ReadStatus status;
    } cases[] = {{"missing", std::nullopt, ReadStatus::missing}, {"undecodable", "not json", ReadStatus::decodeFailed}};
    for (const auto& c : cases) {
        TempDir dir;
        if (c.file) dir.write(kPayloadFileName, *c.file);
        const auto timeline = DashboardProvider::timeline({}, contextFor(dir));
        EXPECT_EQ(timeline.entries.front().readStatus, c.status) << c.name;
        EXPECT_EQ(timeline.entries.front().payload, emptyPayload()) << c.name;
        EXPECT_EQ(timeline.reloadAfter, kNow + 120) << c.name;
        const auto report = readReport(dir);
        EXPECT_EQ(report["kind"], "dashboard");
        EXPECT_EQ(report["payloadReadStatus"], rawValue(c.status));
        EXPECT_EQ(report["bundleVersion"], "9.9.9");
        EXPECT_EQ(report["recordedAt"], "2025-01-31T14:05:00Z");
        EXPECT_FALSE(report.contains("payloadUpdatedAt")) << c.name;
        EXPECT_FALSE(report.contains("resolvedToolID")) << c.name;
    }
    const auto timeline = FocusProvider::timeline({}, {std::nullopt, kNow, kBundle});
    ASSERT_EQ(timeline.entries.size(), 1u);
    EXPECT_EQ(timeline.entries[0].readStatus, ReadStatus::noContainer);
    EXPECT_EQ(timeline.reloadAfter, kNow + 120);
}

// The policy's dates are tested on their own; here which widgets look ahead
// (the account lists), that later entries copy the first, and the reports.
TEST(Timelines, EachWidgetReportsItsKindWordAndResolvedTool) {
    TempDir dir;
    testing::writePayload(dir, payloadOf({tool("claude", 20), tool("codex", 70, "work")}, kNow - 600));
    const auto ctx = contextFor(dir);
    using Reported = std::pair<std::string, std::string>;
    const auto reported = [&] {
        const auto report = readReport(dir);
        return Reported(report["kind"], report.value("resolvedToolID", "(none)"));
    };

    const auto focus = FocusProvider::timeline({}, ctx);
    EXPECT_EQ(reported(), Reported("focus", "codex:work"));
    EXPECT_EQ(readReport(dir)["payloadUpdatedAt"], "2025-01-31T13:55:00Z");
    ASSERT_EQ(focus.entries.size(), 2u);  // now and the stale moment
    EXPECT_EQ(focus.entries[1].chosen, highestUsageChoice());

    SparklineProvider::timeline({WidgetToolChoice{"gemini", "Gemini", "Gem"}}, ctx);
    EXPECT_EQ(reported(), Reported("sparkline", "gemini"));  // named even though it does not resolve
    DashboardProvider::timeline({WidgetToolChoice{"claude", "Claude", "Cla"}}, ctx);
    EXPECT_EQ(reported(), Reported("dashboard", "claude"));

    const auto limit = AccountsLimitProvider::timeline({WidgetProviderChoice{"codex", "Codex"}}, ctx);
    EXPECT_EQ(reported(), Reported("accounts-limit", "codex"));
    ASSERT_EQ(limit.entries.size(), 3u);  // now, +15 min, the stale moment at +20 min
    EXPECT_EQ(limit.entries[2].date, kNow + 1200);
    EXPECT_EQ(limit.entries[2].provider.id, "codex");
    AccountsLimitProvider::timeline({}, ctx);
    EXPECT_EQ(reported(), Reported("accounts-limit", "(none)"));  // all providers: nothing resolved
    AccountsProvider::timeline(ctx);
    EXPECT_EQ(reported(), Reported("accounts", "(none)"));
}

}  // namespace
}  // namespace mw
