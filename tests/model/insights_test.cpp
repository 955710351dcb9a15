#include "model/insights.hpp"

#include <gtest/gtest.h>

#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::kFiveHours;
using testing::kNow;
using testing::kWeek;
using testing::pacedWindow;
using testing::tool;
using testing::window;

WidgetAccount named(std::string name, std::vector<WidgetUsageWindow> windows) {
    auto s = tool(name, std::nullopt, std::move(windows));
    s.displayName = std::move(name);
    return WidgetAccount{std::move(s)};
}

std::vector<std::pair<WidgetInsightKind, std::string>> lines(const std::vector<WidgetInsight>& list) {
    std::vector<std::pair<WidgetInsightKind, std::string>> result;
    for (const auto& insight : list) result.emplace_back(insight.kind, insight.text);
    return result;
}

TEST(Insights, RunsOutSoonestFirstThenNextResetThenHeadroom) {
    auto gemini = named("Gemini", {window("5h", 99, 60, kFiveHours)});
    gemini.snapshot.hasQuotaHeadline = false;  // shows no windows, so says nothing
    const std::vector<WidgetAccount> accounts{
        named("Codex", {pacedWindow("5h", 10, kFiveHours, 0.5), pacedWindow("Week", 30, kWeek, 0.25)}),
        named("Claude \u00B7 work", {pacedWindow("5h", 50, kFiveHours, 0.25), window("Week", 62.1, 172800, kWeek)}),
        gemini,
    };
    using K = WidgetInsightKind;
    EXPECT_EQ(lines(insights(accounts, kNow)), (std::vector<std::pair<K, std::string>>{
                                                   {K::runsOut, "Claude 5h runs out in 1h 15m"},
                                                   {K::runsOut, "Codex Week runs out in 4d 2h"},
                                                   {K::nextReset, "Codex 5h resets in 2h 30m"},
                                                   {K::headroom, "Codex has 70% left this week"},
                                               }));
}

TEST(Insights, AccountsOfOneProviderAreToldApart) {
    const auto paced = [] { return std::vector{pacedWindow("5h", 50, kFiveHours, 0.25)}; };
    auto work = named("Claude \u00B7 Work", paced());
    auto personal = named("Claude \u00B7 Personal", paced());
    work.snapshot.toolID = personal.snapshot.toolID = "claude";
    personal.snapshot.accountSlug = "personal";
    personal.snapshot.windows->front().usedPercent = 40;
    const auto codex = named("Codex", paced());
    const auto texts = lines(insights({work, personal, codex}, kNow));
    ASSERT_GE(texts.size(), 3u);
    EXPECT_EQ(texts[0].second, "Claude Work 5h runs out in 1h 15m");
    EXPECT_EQ(texts[1].second, "Codex 5h runs out in 1h 15m");
    EXPECT_EQ(texts[2].second, "Claude Personal 5h runs out in 1h 53m");
    // A provider with one account keeps its short name.
    EXPECT_EQ(lines(insights({work, codex}, kNow))[0].second, "Claude 5h runs out in 1h 15m");
}

TEST(Insights, RunsOutNeedsAPaceARateAndRoomBeforeTheReset) {
    struct Case {
        const char* name;
        WidgetUsageWindow window;
    };
    const Case cases[] = {
        {"behind its pace", pacedWindow("5h", 20, kFiveHours, 0.25)},
        {"already at the limit", pacedWindow("5h", 100, kFiveHours, 0.25)},
        {"nothing used", pacedWindow("5h", 0, kFiveHours, 0.25)},
        {"no time gone", pacedWindow("5h", 50, kFiveHours, 0)},
        {"reset in the past", window("5h", 50, -60, kFiveHours)},
        {"no duration", window("5h", 50, 60)},
    };
    for (const auto& c : cases) {
        for (const auto& insight : insights({named("A", {c.window})}, kNow))
            EXPECT_NE(insight.kind, WidgetInsightKind::runsOut) << c.name << ": " << insight.text;
    }
}

TEST(Insights, TiesGoToTheEarlierAccountAndTextsAreNotRepeated) {
    const std::vector<WidgetAccount> twins{
        named("Claude \u00B7 a", {pacedWindow("5h", 50, kFiveHours, 0.25), window("Week", 40, 3600, kWeek)}),
        named("Claude \u00B7 b", {pacedWindow("5h", 50, kFiveHours, 0.25), window("Week", 40, 3600, kWeek)}),
    };
    using K = WidgetInsightKind;
    EXPECT_EQ(lines(insights(twins, kNow)), (std::vector<std::pair<K, std::string>>{
                                                {K::runsOut, "Claude 5h runs out in 1h 15m"},
                                                {K::nextReset, "Claude Week resets in 1h"},
                                                {K::headroom, "Claude has 60% left this week"},
                                            }));

    const std::vector<WidgetAccount> pair{named("X", {window("Week", 40, 7200, kWeek)}),
                                          named("Y", {window("Week", 40, 7200, kWeek)})};
    EXPECT_EQ(lines(insights(pair, kNow)), (std::vector<std::pair<K, std::string>>{
                                               {K::nextReset, "X Week resets in 2h"},
                                               {K::headroom, "X has 60% left this week"},
                                           }));
}

TEST(Insights, HeadroomTruncatesAndNeverGoesNegative) {
    EXPECT_EQ(insights({named("A", {window("Week", 62.9)})}, kNow).back().text, "A has 37% left this week");
    EXPECT_EQ(insights({named("A", {window("Week", 130)})}, kNow).back().text, "A has 0% left this week");
    // Weekly by length, not label; and the made-up "Now" window is no weekly window.
    EXPECT_EQ(insights({named("A", {window("Seven days", 10, std::nullopt, kWeek)})}, kNow).back().text,
              "A has 90% left this week");
    EXPECT_TRUE(insights({named("A", {})}, kNow).empty());
    EXPECT_TRUE(insights({}, kNow).empty());
}

TEST(Insights, PayloadNamesAreIsolatedAndPercentagesBelievable) {
    // An override in a name used to reorder the rest of the sentence, and
    // ±1e308 used to print as a 16-digit percentage.
    const auto headroom = [](const std::string& name, double used) {
        for (const auto& insight : insights({named(name, {window("Week", used, 172800, kWeek)})}, kNow))
            if (insight.kind == WidgetInsightKind::headroom) return insight.text;
        return std::string();
    };
    EXPECT_EQ(headroom("Claude", -1e308), "Claude has 100% left this week");
    EXPECT_EQ(headroom("Claude", 1e308), "Claude has 0% left this week");
    EXPECT_EQ(headroom("x\u202Ey", 10), "\u2068x\u202Ey\u2069 has 90% left this week");
}

}  // namespace
}  // namespace mw
