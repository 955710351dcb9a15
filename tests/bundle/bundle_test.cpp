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

TEST(WidgetBundle, FindsEachWidgetByItsKindOrItsWordExactly) {
    const auto& widgets = widgetDeclarations();
    ASSERT_EQ(widgets.size(), 5u);
    for (const auto& w : widgets) {
        EXPECT_EQ(findWidget(w.kind), &w);
        EXPECT_EQ(findWidget(w.kindWord), &w);
    }
    EXPECT_EQ(findWidget("meterwickfocus"), nullptr);
    EXPECT_EQ(findWidget("Focus"), nullptr);
}

TEST(WidgetBundle, HooksTurnStoredParametersIntoEntries) {
    TempDir dir;
    testing::writePayload(dir, payloadOf({tool("claude", 10, "work"), tool("codex", 80)}, kNow - 300));
    const ProviderContext context{dir.path(), kNow, {"1.0", "/x"}};

    const auto& focus = *findWidget("focus");
    const auto entry = focus.snapshot(context, {{"tool", "claude:work"}, {"style", "enhanced"}});
    const auto& typed = std::get<FocusEntry>(entry);
    EXPECT_EQ(typed.chosen.label, "Claude \u00B7 work");  // looked up in the current list
    EXPECT_EQ(typed.style, WidgetDetailStyle::enhanced);
    EXPECT_EQ(entryResolvedToolID(entry), "claude:work");
    EXPECT_EQ(entryTapURL(entry), "meterwick://tool/claude:work");
    EXPECT_FALSE(std::filesystem::exists(dir / kSelfReportFileName));

    const auto& limit = *findWidget("MeterwickAccountsByLimit");
    const auto timeline = limit.timeline(context, {{"provider", "codex"}, {"limit", "fiveHour"}});
    ASSERT_EQ(timeline.entries.size(), 3u);  // now, +15 min, the stale moment
    EXPECT_EQ(std::get<AccountsLimitEntry>(timeline.entries[0]).limit, WidgetLimitChoice::fiveHour);
    const auto report = nlohmann::json::parse(testing::readFile(dir / kSelfReportFileName));
    EXPECT_EQ(report["kind"], "accounts-limit");
    EXPECT_EQ(report["resolvedToolID"], "codex");

    const auto& accounts = *findWidget("accounts");
    EXPECT_EQ(entryTapURL(accounts.placeholder(kNow)), "meterwick://open");
    EXPECT_EQ(std::get<AccountsEntry>(accounts.snapshot(context, {})).readStatus, ReadStatus::ok);
}

TEST(EntryJSON, CarriesDateStatusOptionsToolAndPanel) {
    auto payload = payloadOf({tool("codex", 80)}, kNow - 1800);
    const AnyEntry stale = FocusEntry{kNow, payload, highestUsageChoice(), ReadStatus::ok, WidgetDetailStyle::classic};
    const auto j = toJSON(stale);
    EXPECT_EQ(j["date"], "2025-01-31T14:05:00Z");
    EXPECT_EQ(j["readStatus"], "ok");
    EXPECT_EQ(j["tool"]["id"], "highest");
    EXPECT_EQ(j["tool"]["compactLabel"], "Highest");
    EXPECT_EQ(j["style"], "classic");
    EXPECT_EQ(j["resolvedToolID"], "codex");
    EXPECT_EQ(j["panel"]["title"], "Open Meterwick");
    EXPECT_EQ(j["panel"]["systemImage"], "arrow.clockwise.circle");

    const AnyEntry accounts = AccountsEntry{kNow, payloadOf({tool("codex")}), ReadStatus::ok};
    const auto a = toJSON(accounts);
    EXPECT_TRUE(a["panel"].is_null());
    EXPECT_FALSE(a.contains("resolvedToolID"));
    EXPECT_EQ(a.size(), 3u);  // date, readStatus, panel

    const auto limit = toJSON(findWidget("accounts-limit")->placeholder(kNow));
    EXPECT_EQ(limit["provider"]["id"], "all");
    EXPECT_EQ(limit["limit"], "weekly");
    EXPECT_EQ(limit["percent"], "left");
    EXPECT_EQ(limit["order"], "mostRoom");

    const auto timeline = toJSON(AnyTimeline{{accounts}, kNow + 120});
    EXPECT_EQ(timeline["reloadAfter"], "2025-01-31T14:07:00Z");
    EXPECT_EQ(timeline["entries"].size(), 1u);
}

}  // namespace
}  // namespace mw
