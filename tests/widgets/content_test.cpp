// The content decisions of the five widgets: which panel, if any, an entry
// shows at its date.

#include "widgets/accounts/content.hpp"

#include <gtest/gtest.h>

#include "support/payloads.hpp"
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
using Panel = std::optional<WidgetEmptyState>;
constexpr auto ok = ReadStatus::ok;

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
const auto kEmpty = emptyPayload();

WidgetEmptyState turnedOff(const std::string& name) {
    return {name + " is turned off", "Re-enable it in Settings, or pick another in Edit Widget.", "eye.slash"};
}

// Tools to list, but none of them enabled.
WidgetPayload hiddenTools() {
    auto p = payloadOf({tool("claude")});
    p.enabledToolIDs.clear();
    return p;
}

TEST(FocusPanel, TableRowsInOrder) {
    auto enabledButAbsent = payloadOf({tool("codex")});
    enabledButAbsent.enabledToolIDs = {"ghost", "claude"};
    auto ghostOnly = payloadOf({tool("codex")});
    ghostOnly.enabledToolIDs = {"ghost"};
    const auto highest = highestUsageChoice();
    const struct {
        const char* name;
        WidgetPayload payload;
        WidgetToolChoice chosen;
        ReadStatus status;
        Panel expected;
    } cases[] = {
        {"stale beats content", payloadOf({tool("claude")}, kNow - 1800), kClaude, ok, kStale},
        {"1799 s old shows content", payloadOf({tool("claude")}, kNow - 1799), kClaude, ok, std::nullopt},
        {"never written is never stale", payloadOf({tool("claude")}, kDistantPast), kClaude, ok, {}},
        {"highest shows content", payloadOf({tool("claude")}), highest, ok, std::nullopt},
        {"noContainer", kEmpty, kClaude, ReadStatus::noContainer, kCantRead},
        {"unreadable", kEmpty, kClaude, ReadStatus::unreadable, kCantRead},
        {"missing", kEmpty, kClaude, ReadStatus::missing, kWaiting},
        {"decodeFailed", kEmpty, highest, ReadStatus::decodeFailed, kUndecodable},
        {"turned off, even with no tools", payloadOf({}), kClaude, ok, turnedOff("Claude")},
        {"no tools", payloadOf({}), highest, ok, kNoProviders},
        {"unknown specific tool", enabledButAbsent, {"x", "X", "x"}, ok, turnedOff("x")},
        {"highest, enabled ids match no tool", ghostOnly, highest, ok,
         WidgetEmptyState{"No tool data yet", "Open Meterwick to connect a tool.", "clock.arrow.circlepath"}},
        {"specific tool enabled but absent", enabledButAbsent, kClaude, ok,
         WidgetEmptyState{"Claude not connected", "Open Meterwick, or pick another tool.", "clock.arrow.circlepath"}},
        {"tools exist, none enabled", hiddenTools(), highest, ok, kHidden},
    };
    for (const auto& c : cases)
        EXPECT_EQ(focusPanel({kNow, c.payload, c.chosen, c.status, WidgetDetailStyle::classic}), c.expected) << c.name;

    // Accounts are chosen by their full key.
    const auto slugged = payloadOf({tool("codex-cli", 10, "work")});
    EXPECT_EQ(focusPanel({kNow, slugged, {"codex-cli:work", "", "Work"}, ok, {}}), std::nullopt);
    EXPECT_EQ(focusPanel({kNow, slugged, {"codex-cli", "", "Codex"}, ok, {}}), turnedOff("Codex"));
}

TEST(AccountsPanel, TableRowsInOrder) {
    auto disconnected = tool("claude");
    disconnected.isConnected = false;  // and no windows: not an account
    auto windowsOnly = disconnected;
    windowsOnly.windows = std::vector<WidgetUsageWindow>{};
    const struct {
        const char* name;
        WidgetPayload payload;
        ReadStatus status;
        Panel expected;
    } cases[] = {
        {"stale, even with accounts", payloadOf({tool("claude")}, kNow - 3600), ok, kStale},
        {"accounts", payloadOf({tool("claude")}, kNow - 1799), ok, std::nullopt},
        {"disconnected with a windows array counts", payloadOf({windowsOnly}), ok, std::nullopt},
        {"missing", kEmpty, ReadStatus::missing, kWaiting},
        {"no tools, none enabled either", payloadOf({}), ok, kNoProviders},
        {"tools, none enabled", hiddenTools(), ok, kHidden},
        {"enabled, but nothing to show", payloadOf({disconnected}), ok, kNoAccounts},
    };
    for (const auto& c : cases) EXPECT_EQ(accountsPanel({kNow, c.payload, c.status}), c.expected) << c.name;
}

TEST(AccountsLimitPanel, SharedAndProviderPanels) {
    auto weekly = tool("claude");
    weekly.windows = std::vector{window("5h", 10, std::nullopt, 18000), window("Week", 40, std::nullopt, 604800)};
    auto sessionOnly = tool("codex");
    sessionOnly.windows = std::vector{window("5h", 10, std::nullopt, 18000)};
    auto offline = tool("codex");
    offline.isConnected = false;
    auto hiddenCodex = payloadOf({weekly, sessionOnly});
    hiddenCodex.enabledToolIDs = {"claude"};
    const auto both = payloadOf({weekly, sessionOnly});
    const WidgetProviderChoice all = allProvidersChoice(), codex{"codex", "Codex"}, gemini{"gemini", "Gemini"};
    const auto noAccounts = [](const char* title, const char* subtitle) {
        return WidgetEmptyState{title, subtitle, "clock.arrow.circlepath"};
    };
    const char* usageLimit = "Connect a provider with a usage limit and this fills in.";
    constexpr auto week = WidgetLimitChoice::weekly, fiveHour = WidgetLimitChoice::fiveHour;

    const struct {
        const char* name;
        WidgetPayload payload;
        WidgetProviderChoice provider;
        WidgetLimitChoice limit;
        ReadStatus status;
        Panel expected;
    } cases[] = {
        {"stale", payloadOf({weekly}, kNow - 1800), all, week, ok, kStale},
        {"all, weekly", both, all, week, ok, std::nullopt},
        {"codex, 5-hour", both, codex, fiveHour, ok, std::nullopt},
        {"decodeFailed", kEmpty, codex, week, ReadStatus::decodeFailed, kUndecodable},
        {"provider hidden", hiddenCodex, codex, week, ok, turnedOff("Codex")},
        {"provider gone", payloadOf({}), gemini, week, ok, turnedOff("Gemini")},
        {"all, no tools", payloadOf({}), all, week, ok, kNoProviders},
        {"all, none enabled", hiddenTools(), all, week, ok, kHidden},
        {"codex, no weekly window", both, codex, week, ok, noAccounts("No Codex accounts yet", usageLimit)},
        {"all, no 5-hour window anywhere", payloadOf({tool("claude")}), all, fiveHour, ok,
         noAccounts("No accounts yet", usageLimit)},
        {"codex offline", payloadOf({weekly, offline}), codex, week, ok,
         noAccounts("No Codex accounts yet", "Connect Codex in Meterwick and this fills in.")},
        {"all offline", payloadOf({offline}), all, week, ok, kNoAccounts},
    };
    for (const auto& c : cases) {
        const AccountsLimitEntry entry{
            kNow, c.payload, c.status, c.provider, c.limit, WidgetPercentChoice::left, WidgetOrderChoice::mostRoom};
        EXPECT_EQ(accountsLimitPanel(entry), c.expected) << c.name;
    }
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
    const WidgetToolChoice work{"claude:work", "Claude work", "Work"}, codex{"codex", "Codex", "Cod"};

    payload.sparklines = {{"claude", curve(3)}};  // stored under the tool ID only
    EXPECT_EQ(sparklinePanel({kNow, payload, ok, work}), std::nullopt);
    payload.sparklines = {{"claude:work", curve(1)}, {"claude", curve(5)}};  // the key comes first
    EXPECT_EQ(sparklinePanel({kNow, payload, ok, work}), noCurve);
    EXPECT_EQ(sparklinePanel({kNow, payload, ok, codex}), noCurve);
    // Only points inside the last five hours count, with an older one carried onto the start.
    payload.sparklines["codex"] = {{kNow - 6 * 3600, 1}, {kNow - 5.5 * 3600, 2}};
    EXPECT_EQ(sparklinePanel({kNow, payload, ok, codex}), noCurve);
    payload.sparklines["codex"] = {{kNow - 6 * 3600, 1}, {kNow - 3600, 2}};
    EXPECT_EQ(sparklinePanel({kNow, payload, ok, codex}), std::nullopt);

    EXPECT_EQ(sparklinePanel({kNow, kEmpty, ReadStatus::missing, codex}), kWaiting);
    EXPECT_EQ(sparklinePanel({kNow + 1800, payload, ok, codex}), kStale);
    EXPECT_EQ(sparklinePanel({kNow, payload, ok, {"cursor", "Cursor", "Cur"}}), turnedOff("Cur"));
}

TEST(DashboardPanel, RecordLookup) {
    auto payload = payloadOf({tool("claude", 50, "work"), tool("codex", 10)});
    payload.dashboards["claude"].cards.push_back(WidgetUsageCard{});
    const WidgetToolChoice codex{"codex", "Codex", "Cod"};
    EXPECT_EQ(dashboardPanel({kNow, payload, ok, highestUsageChoice()}), std::nullopt);
    const WidgetEmptyState noDashboard{
        "No dashboard yet", "Meterwick fills this in once it has loaded this tool's usage.", "square.grid.2x2"};
    EXPECT_EQ(dashboardPanel({kNow, payload, ok, codex}), noDashboard);
    payload.dashboards["codex"] = WidgetDashboard{};  // a record with nothing to draw
    EXPECT_EQ(dashboardPanel({kNow, payload, ok, codex}), noDashboard);
    EXPECT_EQ(dashboardPanel({kNow, payloadOf({}), ok, highestUsageChoice()}), kNoProviders);
}

}  // namespace
}  // namespace mw
