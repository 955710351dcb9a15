#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "model/brand.hpp"
#include "support/display_list.hpp"
#include "support/payloads.hpp"
#include "model/pace.hpp"
#include "payload/sample.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/dashboard/content.hpp"
#include "widgets/dashboard/format.hpp"
#include "widgets/dashboard/plan.hpp"
#include "widgets/dashboard/sections.hpp"
#include "widgets/dashboard/view.hpp"

namespace mw {
namespace {

using mw::testing::hasText;
using mw::testing::kNow;
using mw::testing::tool;
using render::DisplayList;
using render::ShapeDraw;
using render::TextDraw;
using testing::textNamed;

const render::testing::FakeMeasurer kMeasurer;
constexpr auto L = WidgetFamily::systemLarge;
constexpr auto XL = WidgetFamily::systemExtraLarge;
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max(), kMin = std::numeric_limits<std::int64_t>::min();

render::Size contentSize(WidgetFamily family) {
    return {family == XL ? 748.0 : 332.0, 350};
}

DashboardEntry entryOf(const WidgetPayload& payload, const std::string& id) {
    return DashboardEntry{kNow, payload, ReadStatus::ok, WidgetToolChoice{id, id, id}};
}

DisplayList lay(const DashboardEntry& entry, WidgetFamily family) {
    return render::layout(dashboardView(entry, family), contentSize(family), kMeasurer);
}


// The chart's bars: the only small-cornered rounded rectangles.
std::vector<const ShapeDraw*> bars(const DisplayList& list) {
    std::vector<const ShapeDraw*> out;
    for (const auto& op : list.ops)
        if (const auto* s = std::get_if<ShapeDraw>(&op.item);
            s && s->shape.kind == render::ShapeKind::roundedRectangle && s->shape.cornerRadius <= 2)
            out.push_back(s);
    return out;
}

WidgetUsageCard card(std::string title, double used = 40) {
    WidgetUsageCard c;
    c.title = std::move(title);
    c.icon = "gauge";
    c.usedPercent = used;
    c.resetText = "Resets in 2h";
    return c;
}

WidgetTokenSummary tokens() {
    return {1'284'310, 212'774, 8'930'112, 14.37, 31'877'402, 5'120'965, 220'411'870, 402.18, "model-x", {}};
}

// `cards` cards, `days` days of history at 40 %, and a token table if asked.
WidgetDashboard dashboard(std::size_t cards, std::size_t days, bool withTokens) {
    WidgetDashboard d;
    d.subscriptionType = "Pro";
    for (std::size_t i = 0; i < cards; ++i) d.cards.push_back(card("Card " + std::to_string(i + 1)));
    for (std::size_t i = 0; i < days; ++i) d.daily.push_back({"day " + std::to_string(i + 1), 40, 1, 1});
    if (withTokens) d.tokens = tokens();
    return d;
}

// One enabled tool "claude" with `d` as its dashboard, written a minute ago.
WidgetPayload payloadWith(const WidgetDashboard& d) {
    auto p = mw::testing::payloadOf({tool("claude")});
    p.updatedAt = kNow - 60;
    p.dashboards["claude"] = d;
    return p;
}

DisplayList drawn(const WidgetDashboard& d, WidgetFamily family) {
    return lay(entryOf(payloadWith(d), "claude"), family);
}

// ---------------------------------------------------------------- number texts

TEST(DashboardFormat, GroupedCounts) {
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "0"}, {999, "999"}, {1000, "1,000"}, {1'284'310, "1,284,310"}, {-1000, "-1,000"}, {-999, "-999"},
        {kMax, "9,223,372,036,854,775,807"}, {kMin, "-9,223,372,036,854,775,808"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(groupedCount(value), text) << value;
}

TEST(DashboardFormat, AxisDaysAreShort) {
    const std::pair<const char*, const char*> cases[] = {
        {"2026-11-09", "Nov 9"}, {"2026-01-31", "Jan 31"}, {"2026-13-01", "2026-13-01"}, {"yesterday", "yesterday"},
        {"2026-1-09", "2026-1-09"}};
    for (const auto& [day, text] : cases) EXPECT_EQ(shortDayText(day), text) << day;
}

// Halves round up, in integers, and may round into the next unit.
TEST(DashboardFormat, CompactCountsKeepThreeSignificantDigits) {
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "0"}, {999, "999"}, {1000, "1K"}, {1500, "1.5K"}, {1'284'310, "1.28M"}, {1'285'000, "1.29M"},
        {12'843'100, "12.8M"}, {128'431'000, "128M"}, {999'499, "999K"}, {999'500, "1M"}, {-1'284'310, "-1.28M"},
        {2'000'000'000, "2B"}, {1'234'567'890'123, "1.23T"}, {999'999'999'999'999, "1e15"}, {kMax, "9.22e18"},
        {kMin, "-9.22e18"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(compactCount(value), text) << value;
}

// No sign on a cost that rounds to nothing; a dash for what is not a number.
TEST(DashboardFormat, DollarsRoundToTheCentHalvesAwayFromZero) {
    const std::pair<double, const char*> cases[] = {
        {0, "$0.00"}, {14.37, "$14.37"}, {14.375, "$14.38"}, {2.125, "$2.13"}, {-2.125, "-$2.13"}, {0.004, "$0.00"},
        {-0.001, "$0.00"}, {-3.5, "-$3.50"}, {1284.5, "$1,284.50"}, {1e21, "$1e21"}, {std::nan(""), "\xE2\x80\x94"},
        {std::numeric_limits<double>::infinity(), "\xE2\x80\x94"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(dollarText(value), text) << value;
    EXPECT_EQ(compactDollarText(402.18), "$402.18");
    EXPECT_EQ(compactDollarText(12'840.5), "$12.8K");
    EXPECT_EQ(compactDollarText(-2500), "-$2.5K");
}

TEST(DashboardFormat, TableGoesCompactAsAWholeWhenOneFigureIsTooLong) {
    const auto t = tokens();  // longest grouped figure: "220,411,870", 11 characters
    EXPECT_EQ(tokenNumberStyle(t, 11), NumberStyle::grouped);
    EXPECT_EQ(tokenNumberStyle(t, 10), NumberStyle::compact);
    auto costly = t;
    costly.monthCost = 123'456'789;  // "$123,456,789.00"
    EXPECT_EQ(tokenNumberStyle(costly, 11), NumberStyle::compact);
}

// ---------------------------------------------------------------- lookup, panels and link


TEST(DashboardView, PanelsTakeTheWholeWidgetAndTheTapNamesTheResolvedTool) {
    const auto p = samplePayload(kNow);
    EXPECT_TRUE(hasText(lay(entryOf(p, "gemini"), XL), "No dashboard yet"));  // enabled, but no record
    EXPECT_TRUE(hasText(lay(DashboardEntry{kNow + 1800, p, ReadStatus::ok, {"claude", "Claude", "Claude"}}, L),
                        "Open Meterwick"));
    EXPECT_EQ(dashboardTapURL(entryOf(p, "claude:work")), "meterwick://tool/claude:work");
    EXPECT_EQ(dashboardTapURL(entryOf(p, "highest")), "meterwick://tool/claude:work");  // 91 % session
    EXPECT_EQ(dashboardTapURL(entryOf(emptyPayload(), "highest")), "meterwick://open");
}

// ---------------------------------------------------------------- plan

TEST(DashboardPlan, DailyWindowIsFourteenDaysLargeAndThirtyExtraLarge) {
    const struct {
        std::size_t days;
        WidgetFamily family;
        std::size_t shown, slots;
    } cases[] = {{40, L, 14, 14}, {40, XL, 30, 30}, {14, L, 14, 14}, {5, L, 5, 14}, {5, XL, 5, 30}, {1, XL, 1, 30}};
    for (const auto& c : cases) {
        const auto plan = dashboardPlan(dashboard(3, c.days, true), c.family);
        EXPECT_EQ(plan.chartDays, c.shown) << c.days;
        EXPECT_EQ(plan.chartSlots, c.slots) << c.days;
    }
}

// Extra large sets the cards beside the table when there is one, else across the whole width.
TEST(DashboardPlan, CardGrid) {
    const struct {
        std::size_t cards;
        WidgetFamily family;
        bool tokens;
        std::size_t columns, shown;
        bool wide, sideBySide;
    } cases[] = {{1, L, true, 1, 1, true, false},  {2, L, true, 2, 2, true, false},   {3, L, true, 3, 3, false, false},
                 {4, L, false, 2, 4, true, false}, {5, L, false, 3, 5, false, false}, {9, L, false, 3, 6, false, false},
                 {3, XL, true, 3, 3, false, true}, {3, XL, false, 3, 3, true, false}};
    for (const auto& c : cases) {
        const auto plan = dashboardPlan(dashboard(c.cards, 14, c.tokens), c.family);
        EXPECT_EQ(plan.cardColumns, c.columns) << c.cards;
        EXPECT_EQ(plan.cardsShown, c.shown) << c.cards;
        EXPECT_EQ(plan.wideCards, c.wide) << c.cards;
        EXPECT_EQ(plan.sideBySide, c.sideBySide) << c.cards;
    }
}

TEST(DashboardPlan, TableGivesWayBeforeChartAndCards) {
    // Two rows of tall cards leave a large widget no room for the table.
    const auto crowded = dashboardPlan(dashboard(6, 14, true), L);
    EXPECT_EQ(crowded.tableRows, 0);
    EXPECT_EQ(crowded.chartDays, 14u);
    EXPECT_EQ(crowded.cardsShown, 6u);
    // Extra large sets the table beside the cards, so it stays.
    EXPECT_EQ(dashboardPlan(dashboard(6, 30, true), XL).tableRows, 2);
    // Two rows of wide cards are low enough for everything.
    EXPECT_EQ(dashboardPlan(dashboard(4, 14, true), L).tableRows, 2);
}

// ---------------------------------------------------------------- drawing

TEST(DashboardView, MissingDataLeavesItsSectionOut) {
    const auto noTokens = drawn(dashboard(2, 3, false), L);
    EXPECT_FALSE(hasText(noTokens, "Tokens"));
    EXPECT_TRUE(hasText(noTokens, "Daily peak"));
    const auto noCards = drawn(dashboard(0, 3, true), XL);
    EXPECT_FALSE(hasText(noCards, "Card 1"));
    EXPECT_TRUE(hasText(noCards, "Tokens"));
    const auto noHistory = drawn(dashboard(2, 0, true), L);
    EXPECT_FALSE(hasText(noHistory, "Daily peak"));
    EXPECT_TRUE(bars(noHistory).empty());
    EXPECT_TRUE(hasText(noHistory, "Card 2"));
}

TEST(DashboardView, BarsTurnRedFromNinetyPercentAndOneDayShowsOneBar) {
    auto d = dashboard(0, 0, false);
    d.daily = {{"a", 89.9, 1, 1}, {"b", 90, 1, 1}, {"c", 140, 1, 1}};
    const auto list = drawn(d, L);  // `bars` points into it
    const auto found = bars(list);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0]->color, toolColor(tool("claude")));  // the tool's brand
    EXPECT_EQ(found[1]->color, dangerRed());
    EXPECT_EQ(found[2]->color, dangerRed());

    const auto one = drawn(dashboard(0, 1, false), L);
    EXPECT_EQ(bars(one).size(), 1u);
    EXPECT_TRUE(hasText(one, "day 1"));
    EXPECT_TRUE(hasText(one, "1 day"));
}

TEST(DashboardView, HiddenCardsAreCountedAndAChartlessDashboardUsesTheRoom) {
    const auto nine = drawn(dashboard(9, 14, true), L);
    EXPECT_TRUE(hasText(nine, "+3 more"));
    EXPECT_FALSE(hasText(drawn(dashboard(3, 14, true), L), "+0 more"));

    // Without history the cards are drawn roomy, and extra large stacks the
    // table under them rather than beside them.
    for (const auto family : {L, XL}) {
        const auto plan = dashboardPlan(dashboard(3, 0, true), family);
        EXPECT_TRUE(plan.roomyCards) << rawValue(family);
        EXPECT_FALSE(plan.sideBySide) << rawValue(family);
    }
    EXPECT_FALSE(dashboardPlan(dashboard(3, 14, true), XL).roomyCards);
}

TEST(DashboardView, HeaderCapsulesAndTheRecordsOwnTimeInTheFooter) {
    auto d = dashboard(1, 1, false);
    d.isRateLimited = true;
    d.lastUpdated = kNow - 600;  // wins over the payload's time
    const auto list = drawn(d, L);
    ASSERT_TRUE(hasText(list, "Rate limited"));
    EXPECT_EQ(textNamed(list, "Rate limited")->color, dangerRed());
    EXPECT_TRUE(hasText(list, "Updated 10m ago"));
}

TEST(DashboardView, CardTexts) {
    auto c = card("Weekly");
    c.burnRateETA = "Runs out in 1h";
    EXPECT_EQ(cardDetailText(c), "Runs out in 1h");
    c.rateDeltaText = "+6% vs pace";
    EXPECT_EQ(cardDetailText(c), "+6% vs pace");  // the delta comes first
    EXPECT_EQ(cardDetailColor(c), Color::secondary());
    c.overRate = true;
    EXPECT_EQ(cardDetailColor(c), warnOrange());
    EXPECT_EQ(cardDetailText(card("Idle")), std::nullopt);

    auto d = dashboard(0, 0, false);
    c.usedPercent = 62.9;
    auto idle = card("Idle", 12);
    idle.isIdle = true;
    d.cards = {c, idle};
    auto p = payloadWith(d);
    auto list = lay(entryOf(p, "claude"), L);
    ASSERT_TRUE(hasText(list, "62%"));  // truncated
    // An idle card is quieter but stays legible: its title is secondary, not faded.
    EXPECT_EQ(textNamed(list, "Idle")->color, Color::secondary());

    p.showRemaining = true;  // the ring shows what is left
    list = lay(entryOf(p, "claude"), L);
    EXPECT_TRUE(hasText(list, "37%"));
    EXPECT_TRUE(hasText(list, "left"));
}

TEST(DashboardView, TableFiguresGoCompactWhenTheyDoNotFit) {
    auto d = dashboard(3, 14, true);
    d.tokens->monthCache = 98'765'432'109'876;
    const auto list = drawn(d, XL);
    EXPECT_TRUE(hasText(list, "98.8T"));
    EXPECT_TRUE(hasText(list, "1.28M"));
    EXPECT_FALSE(hasText(list, "1,284,310"));
}

TEST(DashboardView, FooterText) {
    const Date now = kNow;
    const std::pair<DashboardFooter, const char*> cases[] = {
        {{now, now - 30, std::nullopt, std::nullopt}, "Updated now"},
        {{now, now - 150, now + 180, std::nullopt}, "Updated 2m ago \xC2\xB7 next in 3m"},
        {{now, now - 150, now + 20, "Studio"}, "Updated 2m ago \xC2\xB7 next in <1m \xC2\xB7 via Studio"},
        {{now, now - 7200, now - 5, "Studio"}, "Updated 2h ago \xC2\xB7 via Studio"},  // refresh overdue
        {{now, now, now + 7500, ""}, "Updated now \xC2\xB7 next in 2h 5m"},
    };
    for (const auto& [footer, text] : cases) EXPECT_EQ(dashboardFooterText(footer), text);
}

// Whatever the data, every drawing stays inside the content area.
TEST(DashboardView, NothingLeavesTheContentArea) {
    const std::string longText(200, 'W');
    auto loud = dashboard(6, 30, true);
    loud.subscriptionType = loud.relayedFrom.emplace(longText);
    loud.isRateLimited = true;
    loud.tokens->monthCache = std::numeric_limits<std::int64_t>::max();
    loud.tokens->model = longText;
    for (auto& c : loud.cards) c.title = c.resetText = c.rateDeltaText.emplace(longText);
    for (const auto& record : {dashboard(1, 1, false), dashboard(3, 14, true), dashboard(6, 30, true),
                               dashboard(9, 60, true), dashboard(4, 0, true), dashboard(0, 2, true), loud}) {
        auto p = payloadWith(record);
        p.tools[0].displayName = longText;
        p.updatedAt = kNow - 900;  // old enough for a freshness mark in the header, not stale
        for (const auto family : {L, XL}) {
            const auto size = contentSize(family);
            const auto list = lay(entryOf(p, "claude"), family);
            ASSERT_NE(textNamed(list, "Updated 15m ago"), nullptr) << "the dashboard, not a panel";
            for (const auto& op : list.ops) {
                EXPECT_GE(op.frame.minX(), -0.5);
                EXPECT_GE(op.frame.minY(), -0.5);
                EXPECT_LE(op.frame.maxX(), size.width + 0.5) << record.cards.size() << " cards";
                EXPECT_LE(op.frame.maxY(), size.height + 0.5) << record.cards.size() << " cards";
            }
        }
    }
}

}  // namespace
}  // namespace mw
