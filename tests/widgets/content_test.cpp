// The content decisions of the five widgets: which panel, if any, an entry
// shows at its date.

#include <gtest/gtest.h>

#include "timeline/test_payloads.hpp"
#include "widgets/accounts/content.hpp"
#include "widgets/dashboard/content.hpp"
#include "widgets/focus/content.hpp"
#include "widgets/limit/content.hpp"
#include "widgets/sparkline/content.hpp"

namespace mw {

void PrintTo(const WidgetEmptyState& panel, std::ostream* out) {
    *out << '{' << panel.title << " | " << panel.subtitle << " | " << panel.systemImage << '}';
}

namespace {

using testing::kNow;
using testing::payloadOf;
using testing::tool;
using testing::window;

const WidgetEmptyState kStale{"Open Meterwick", "Usage updates while the app is running.", "arrow.clockwise.circle"};
const WidgetEmptyState kCantRead{"Can't read widget data", "Open Meterwick, then Settings, Widgets, and use Repair.",
                                 "exclamationmark.triangle"};
const WidgetEmptyState kWaiting{"Waiting for Meterwick", "Open the app once and this fills in automatically.",
                                "arrow.clockwise.circle"};
const WidgetEmptyState kUndecodable{"Widget data unreadable", "Update Meterwick, or use Repair in Settings, Widgets.",
                                    "exclamationmark.triangle"};
const WidgetEmptyState kNoProviders{"No providers connected", "Connect a provider in Meterwick and this fills in.",
                                    "link"};
const WidgetEmptyState kHidden{"All providers hidden", "Turn one back on in Settings, Providers.", "eye.slash"};
const WidgetEmptyState kNoAccounts{"No accounts yet", "Connect a provider in Meterwick and this fills in.",
                                   "clock.arrow.circlepath"};

const WidgetToolChoice kClaude{"claude", "Claude Code", "Claude"};

WidgetPayload hiddenTools() {
    auto p = payloadOf({tool("claude")});
    p.enabledToolIDs.clear();
    return p;
}

TEST(FocusPanel, TableRowsInOrder) {
    auto enabledButAbsent = payloadOf({tool("codex")});
    enabledButAbsent.enabledToolIDs = {"ghost", "claude"};
    struct Case {
        const char* name;
        WidgetPayload payload;
        WidgetToolChoice chosen;
        ReadStatus status;
        std::optional<WidgetEmptyState> expected;
    };
    const Case cases[] = {
        {"stale beats content", payloadOf({tool("claude")}, kNow - 1800), kClaude, ReadStatus::ok, kStale},
        {"1799 s old shows content", payloadOf({tool("claude")}, kNow - 1799), kClaude, ReadStatus::ok, std::nullopt},
        {"highest shows content", payloadOf({tool("claude")}), highestUsageChoice(), ReadStatus::ok, std::nullopt},
        {"noContainer", emptyPayload(), kClaude, ReadStatus::noContainer, kCantRead},
        {"unreadable", emptyPayload(), kClaude, ReadStatus::unreadable, kCantRead},
        {"missing", emptyPayload(), kClaude, ReadStatus::missing, kWaiting},
        {"decodeFailed", emptyPayload(), highestUsageChoice(), ReadStatus::decodeFailed, kUndecodable},
        {"turned off, even with no tools", payloadOf({}), kClaude, ReadStatus::ok,
         WidgetEmptyState{"Claude is turned off", "Re-enable it in Settings, or pick another in Edit Widget.",
                          "eye.slash"}},
        {"no tools", payloadOf({}), highestUsageChoice(), ReadStatus::ok, kNoProviders},
        {"unknown specific tool", enabledButAbsent, {"x", "X", "x"}, ReadStatus::ok,
         WidgetEmptyState{"x is turned off", "Re-enable it in Settings, or pick another in Edit Widget.",
                          "eye.slash"}},
        {"highest, enabled ids match no tool", [] {
             auto p = payloadOf({tool("codex")});
             p.enabledToolIDs = {"ghost"};
             return p;
         }(), highestUsageChoice(), ReadStatus::ok,
         WidgetEmptyState{"No tool data yet", "Open Meterwick to connect a tool.", "clock.arrow.circlepath"}},
        {"specific tool enabled but absent", enabledButAbsent, kClaude, ReadStatus::ok,
         WidgetEmptyState{"Claude not connected", "Open Meterwick, or pick another tool.", "clock.arrow.circlepath"}},
        {"tools exist, none enabled", hiddenTools(), highestUsageChoice(), ReadStatus::ok, kHidden},
        {"never written is never stale", payloadOf({tool("claude")}, kDistantPast), kClaude, ReadStatus::ok,
         std::nullopt},
    };
    for (const auto& c : cases) {
        const FocusEntry entry{kNow, c.payload, c.chosen, c.status, WidgetDetailStyle::classic};
        EXPECT_EQ(focusPanel(entry), c.expected) << c.name;
    }
}

TEST(FocusPanel, SlugAccountsAreChosenByTheirFullKey) {
    const auto payload = payloadOf({tool("codex-cli", 10, "work")});
    EXPECT_EQ(focusPanel({kNow, payload, {"codex-cli:work", "", "Work"}, ReadStatus::ok, {}}), std::nullopt);
    EXPECT_EQ(focusPanel({kNow, payload, {"codex-cli", "", "Codex"}, ReadStatus::ok, {}})->title,
              "Codex is turned off");
}

TEST(AccountsPanel, TableRowsInOrder) {
    auto disconnected = tool("claude");
    disconnected.isConnected = false;  // and no windows: not an account
    auto windowsOnly = disconnected;
    windowsOnly.windows = std::vector<WidgetUsageWindow>{};
    struct Case {
        const char* name;
        WidgetPayload payload;
        ReadStatus status;
        std::optional<WidgetEmptyState> expected;
    };
    const Case cases[] = {
        {"stale, even with accounts", payloadOf({tool("claude")}, kNow - 3600), ReadStatus::ok, kStale},
        {"accounts", payloadOf({tool("claude")}, kNow - 1799), ReadStatus::ok, std::nullopt},
        {"disconnected with a windows array counts", payloadOf({windowsOnly}), ReadStatus::ok, std::nullopt},
        {"noContainer", emptyPayload(), ReadStatus::noContainer, kCantRead},
        {"unreadable", emptyPayload(), ReadStatus::unreadable, kCantRead},
        {"missing", emptyPayload(), ReadStatus::missing, kWaiting},
        {"decodeFailed", emptyPayload(), ReadStatus::decodeFailed, kUndecodable},
        {"no tools, none enabled either", payloadOf({}), ReadStatus::ok, kNoProviders},
        {"tools, none enabled", hiddenTools(), ReadStatus::ok, kHidden},
        {"enabled, but nothing to show", payloadOf({disconnected}), ReadStatus::ok, kNoAccounts},
    };
    for (const auto& c : cases) EXPECT_EQ(accountsPanel({kNow, c.payload, c.status}), c.expected) << c.name;
}

AccountsLimitEntry limitEntry(WidgetPayload payload, WidgetProviderChoice provider,
                              WidgetLimitChoice limit = WidgetLimitChoice::weekly,
                              ReadStatus status = ReadStatus::ok) {
    return {kNow, std::move(payload), status, std::move(provider), limit, WidgetPercentChoice::left,
            WidgetOrderChoice::mostRoom};
}

TEST(AccountsLimitPanel, SharedAndProviderPanels) {
    auto weekly = tool("claude");
    weekly.windows = std::vector{window("5h", 10, 18000), window("Week", 40, 604800)};
    auto sessionOnly = tool("codex");
    sessionOnly.windows = std::vector{window("5h", 10, 18000)};
    auto hiddenCodex = payloadOf({weekly, sessionOnly});
    hiddenCodex.enabledToolIDs = {"claude"};
    const WidgetProviderChoice codex{"codex", "Codex"};
    const WidgetProviderChoice gemini{"gemini", "Gemini"};
    const std::string usageLimit = "Connect a provider with a usage limit and this fills in.";

    struct Case {
        const char* name;
        AccountsLimitEntry entry;
        std::optional<WidgetEmptyState> expected;
    };
    const Case cases[] = {
        {"stale", limitEntry(payloadOf({weekly}, kNow - 1800), allProvidersChoice()), kStale},
        {"all, weekly", limitEntry(payloadOf({weekly, sessionOnly}), allProvidersChoice()), std::nullopt},
        {"codex, 5-hour", limitEntry(payloadOf({weekly, sessionOnly}), codex, WidgetLimitChoice::fiveHour),
         std::nullopt},
        {"decodeFailed", limitEntry(emptyPayload(), codex, WidgetLimitChoice::weekly, ReadStatus::decodeFailed),
         kUndecodable},
        {"missing", limitEntry(emptyPayload(), allProvidersChoice(), WidgetLimitChoice::weekly, ReadStatus::missing),
         kWaiting},
        {"provider hidden", limitEntry(hiddenCodex, codex),
         WidgetEmptyState{"Codex is turned off", "Re-enable it in Settings, or pick another in Edit Widget.",
                          "eye.slash"}},
        {"provider gone, nothing connected", limitEntry(payloadOf({}), gemini),
         WidgetEmptyState{"Gemini is turned off", "Re-enable it in Settings, or pick another in Edit Widget.",
                          "eye.slash"}},
        {"all, no tools", limitEntry(payloadOf({}), allProvidersChoice()), kNoProviders},
        {"all, none enabled", limitEntry(hiddenTools(), allProvidersChoice()), kHidden},
        {"codex, no weekly window", limitEntry(payloadOf({weekly, sessionOnly}), codex),
         WidgetEmptyState{"No Codex accounts yet", usageLimit, "clock.arrow.circlepath"}},
        {"all, no 5-hour window anywhere", limitEntry(payloadOf({tool("claude")}), allProvidersChoice(),
                                                       WidgetLimitChoice::fiveHour),
         WidgetEmptyState{"No accounts yet", usageLimit, "clock.arrow.circlepath"}},
    };
    for (const auto& c : cases) EXPECT_EQ(accountsLimitPanel(c.entry), c.expected) << c.name;

    auto offline = tool("codex");
    offline.isConnected = false;
    EXPECT_EQ(accountsLimitPanel(limitEntry(payloadOf({weekly, offline}), codex)),
              (WidgetEmptyState{"No Codex accounts yet", "Connect Codex in Meterwick and this fills in.",
                                "clock.arrow.circlepath"}));
    EXPECT_EQ(accountsLimitPanel(limitEntry(payloadOf({offline}), allProvidersChoice())), kNoAccounts);
}

std::vector<SparklinePoint> curve(int points) {
    std::vector<SparklinePoint> out;
    for (int i = 0; i < points; ++i) out.push_back({kNow - 60.0 * i, 1.0 * i});
    return out;
}

TEST(SparklinePanel, CurveLookupAndTooShortCurves) {
    const WidgetEmptyState noCurve{"No curve yet", "The pace curve appears after a few minutes of use.",
                                   "chart.xyaxis.line"};
    auto payload = payloadOf({tool("claude", 50, "work"), tool("codex", 10)});
    const WidgetToolChoice work{"claude:work", "Claude work", "Work"};
    const WidgetToolChoice codex{"codex", "Codex", "Cod"};

    payload.sparklines = {{"claude", curve(3)}};  // stored under the tool ID only
    EXPECT_EQ(sparklinePanel({kNow, payload, ReadStatus::ok, work}), std::nullopt);
    EXPECT_EQ(sparklineCurve({kNow, payload, ReadStatus::ok, work})->size(), 3u);

    payload.sparklines = {{"claude:work", curve(1)}, {"claude", curve(5)}};  // the key comes first
    EXPECT_EQ(sparklinePanel({kNow, payload, ReadStatus::ok, work}), noCurve);

    payload.sparklines = {{"gemini", curve(4)}};
    payload.primarySparklineToolID = "gemini";
    EXPECT_EQ(sparklinePanel({kNow, payload, ReadStatus::ok, highestUsageChoice()}), std::nullopt);
    EXPECT_EQ(sparklinePanel({kNow, payload, ReadStatus::ok, codex}), noCurve);  // the primary is for "highest" only

    EXPECT_EQ(sparklinePanel({kNow, emptyPayload(), ReadStatus::missing, codex}), kWaiting);
    EXPECT_EQ(sparklinePanel({kNow + 1800, payload, ReadStatus::ok, codex}), kStale);
    EXPECT_EQ(sparklinePanel({kNow, payload, ReadStatus::ok, {"cursor", "Cursor", "Cur"}})->title,
              "Cur is turned off");
}

TEST(DashboardPanel, RecordLookup) {
    auto payload = payloadOf({tool("claude", 50, "work"), tool("codex", 10)});
    payload.dashboards["claude"].cards.push_back(WidgetUsageCard{});
    EXPECT_EQ(dashboardPanel({kNow, payload, ReadStatus::ok, highestUsageChoice()}), std::nullopt);
    const auto missing = dashboardPanel({kNow, payload, ReadStatus::ok, {"codex", "Codex", "Cod"}});
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->title, "No dashboard yet");
    payload.dashboards["codex"] = WidgetDashboard{};  // a record with nothing to draw
    EXPECT_EQ(dashboardPanel({kNow, payload, ReadStatus::ok, {"codex", "Codex", "Cod"}})->title, "No dashboard yet");
    EXPECT_EQ(dashboardPanel({kNow, payloadOf({}), ReadStatus::ok, highestUsageChoice()}), kNoProviders);
}

}  // namespace
}  // namespace mw
