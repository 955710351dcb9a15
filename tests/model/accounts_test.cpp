#include "model/accounts.hpp"

#include <gtest/gtest.h>

#include <functional>

#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::account;
using testing::payloadOf;
using testing::tool;
using testing::window;

std::vector<std::string> keys(const std::vector<WidgetAccount>& accounts) {
    std::vector<std::string> result;
    for (const auto& a : accounts) result.push_back(accountKey(a));
    return result;
}

TEST(AccountList, GroupsByToolInFirstOccurrenceOrderMainAccountFirst) {
    EXPECT_EQ(keys(accountList(payloadOf({tool("B"), tool("A"), tool("B", "work")}))),
              (std::vector<std::string>{"B", "B:work", "A"}));
    EXPECT_EQ(keys(accountList(payloadOf({tool("A", "work"), tool("A")}))),
              (std::vector<std::string>{"A", "A:work"}));
    // Slugged accounts keep payload order among themselves. A disconnected
    // snapshot stays only with windows, even none; a tool whose first
    // snapshot was dropped is placed by its first kept one.
    auto hidden = tool("C");
    hidden.isConnected = false;
    auto windowed = tool("D", std::nullopt, std::vector<WidgetUsageWindow>{});
    windowed.isConnected = false;
    EXPECT_EQ(
        keys(accountList(payloadOf({hidden, tool("A", "z"), windowed, tool("C", "y"), tool("A", "x")}))),
        (std::vector<std::string>{"A:z", "A:x", "D", "C:y"}));
}

TEST(AccountList, MatchesEnabledKeysExactly) {
    auto payload = payloadOf({tool("A", "work"), tool("B"), tool("C")});
    payload.enabledToolIDs = {"A", "b", "C"};  // bare tool of a slugged snapshot; wrong case
    EXPECT_EQ(keys(accountList(payload)), (std::vector<std::string>{"C"}));

    payload.enabledToolIDs.clear();
    EXPECT_TRUE(accountList(payload).empty());
}

TEST(ShownWindows, FollowsQuotaHeadlineAndFallsBackToHeadlineFigures) {
    const std::vector<WidgetUsageWindow> three{window("5h", 1), window("Week", 2), window("Opus", 3)};
    auto s = tool("A", std::nullopt, three);
    s.hasQuotaHeadline = false;
    EXPECT_TRUE(shownWindows(account(s)).empty());
    EXPECT_FALSE(secondWindow(account(s)));

    s.hasQuotaHeadline = true;
    EXPECT_EQ(shownWindows(account(s)), three);
    EXPECT_EQ(secondWindow(account(s)), three[1]);

    s.usagePercent = 42.5;
    s.resetAt = testing::kNow + 60;
    for (const auto& windows : {std::optional<std::vector<WidgetUsageWindow>>{},
                                std::optional<std::vector<WidgetUsageWindow>>{std::vector<WidgetUsageWindow>{}}}) {
        for (const auto& headline : {std::optional<bool>{}, std::optional<bool>{true}}) {
            s.windows = windows;
            s.hasQuotaHeadline = headline;
            const WidgetUsageWindow expected{"headline", "Now", 42.5, testing::kNow + 60, std::nullopt};
            EXPECT_EQ(shownWindows(account(s)), std::vector<WidgetUsageWindow>{expected});
            EXPECT_FALSE(secondWindow(account(s)));
        }
    }
}

TEST(Titles, SplitOnSpacedMiddleDot) {
    struct Case {
        const char* name;
        const char* provider;
        const char* account;
    };
    const Case cases[] = {
        {"Claude", "Claude", "Claude"},
        {"Claude \u00B7 work", "Claude", "work"},
        {"Tool \u00B7 work \u00B7 eu", "Tool", "work \u00B7 eu"},
        {"Tool\u00B7work", "Tool\u00B7work", "Tool\u00B7work"},    // no spaces: not a separator
        {"", "", ""},
        {" \u00B7 ", " \u00B7 ", " \u00B7 "},                       // nothing but a separator
        {"Tool \u00B7  \u00B7 eu", "Tool", "eu"},                  // empty pieces are dropped
    };
    for (const auto& c : cases) {
        auto s = tool("A");
        s.displayName = c.name;
        EXPECT_EQ(providerTitle(account(s)), c.provider) << c.name;
        EXPECT_EQ(accountTitle(account(s)), c.account) << c.name;
    }
}

TEST(LimitWindow, MatchesExactLabelOrExactDurationFirstWins) {
    const auto a = account(tool("A", std::nullopt,
                                    std::vector<WidgetUsageWindow>{
                                        window("Session", 1, std::nullopt, 3600),
                                        window("5h", 2, std::nullopt, 3600),     // the label wins
                                        window("week", 3, std::nullopt, 604800),  // matched by its length
                                        window("Week", 4, std::nullopt, 86400),
                                        window("other", 5, std::nullopt, 18000),
                                    }));
    EXPECT_EQ(limitWindow(a, WidgetLimitChoice::fiveHour)->usedPercent, 2);
    EXPECT_EQ(limitWindow(a, WidgetLimitChoice::weekly)->usedPercent, 3);

    auto byID = window("Session", 1);
    byID.id = "5h";
    const auto b = account(tool("B", std::nullopt, std::vector<WidgetUsageWindow>{byID, window("Weekly", 2)}));
    EXPECT_FALSE(limitWindow(b, WidgetLimitChoice::fiveHour));
    EXPECT_FALSE(limitWindow(b, WidgetLimitChoice::weekly));

    EXPECT_FALSE(limitWindow(account(tool("C")), WidgetLimitChoice::weekly));  // the "Now" window only
}

TEST(DurationText, RoundsToMinutesThenPicksTheUnit) {
    struct Case {
        double seconds;
        const char* text;
    };
    const Case cases[] = {
        {0, "0m"},         {29, "0m"},      {30, "1m"},         {89.9, "1m"},     {3569, "59m"}, {3570, "1h"},
        {3600, "1h"},      {7500, "2h 5m"}, {86369, "23h 59m"}, {86370, "1d"},    {89969, "1d"}, {90000, "1d 1h"},
        {273600, "3d 4h"}, {-29, "0m"},     {-30, "-1m"},       {-7200, "-120m"},
    };
    for (const auto& c : cases) EXPECT_EQ(durationText(c.seconds), c.text) << c.seconds;
}

TEST(WidgetAccountHash, CoversTheWholeSnapshot) {
    const std::hash<WidgetAccount> hash;
    auto s = tool("A", "work", std::vector<WidgetUsageWindow>{window("5h", 10, 60, 18000)});
    EXPECT_EQ(account(s), account(s));
    EXPECT_EQ(hash(account(s)), hash(account(s)));

    auto nested = s;
    nested.windows->front().durationSeconds.reset();
    auto empty = s;
    empty.windows = std::vector<WidgetUsageWindow>{};
    auto absent = empty;
    absent.windows.reset();
    auto meters = s;
    meters.meters = std::vector<WidgetMeter>{WidgetMeter{"m", "Credits", "credits", "3", {}, {}, false, {}, {}}};
    for (const auto& other : {nested, empty, absent, meters}) {
        EXPECT_NE(account(s), account(other));
        EXPECT_NE(hash(account(s)), hash(account(other)));
    }
    EXPECT_NE(hash(account(empty)), hash(account(absent)));
}

}  // namespace
}  // namespace mw
