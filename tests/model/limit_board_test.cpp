#include "model/limit_board.hpp"

#include <gtest/gtest.h>

#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::payloadOf;
using testing::tool;
using testing::window;

using Windows = std::vector<WidgetUsageWindow>;
using L = WidgetLimitChoice;
using P = WidgetPercentChoice;
using O = WidgetOrderChoice;

WidgetPayload fleet() {
    auto hidden = tool("claude", "eu", Windows{window("Week", 5)});
    hidden.hasQuotaHeadline = false;
    return payloadOf({
        tool("claude", std::nullopt, Windows{window("5h", 70), window("Week", 40)}),
        tool("codex", std::nullopt, Windows{window("Session", 20, std::nullopt, testing::kFiveHours)}),
        tool("claude", "work", Windows{window("5h", 5), window("Week", 10)}),
        hidden,
        tool("cursor", std::nullopt, Windows{window("Week", 80)}),
        tool("gemini", std::nullopt, Windows{window("Week", 130)}),
    });
}

struct Row {
    std::string key;
    std::optional<double> shown;
    bool operator==(const Row&) const = default;
};

std::vector<Row> rows(const LimitBoard& board) {
    std::vector<Row> result;
    for (const auto& row : board.rows) {
        EXPECT_EQ(row.window.has_value(), row.shownPercent.has_value());
        result.push_back({accountKey(row.account), row.shownPercent});
    }
    return result;
}

TEST(LimitBoard, MostRoomFirstWindowlessLastOrAppOrder) {
    constexpr std::nullopt_t none = std::nullopt;
    struct Case {
        const char* provider;
        L limit;
        P percent;
        O order;
        std::vector<Row> rows;
    };
    const Case cases[] = {
        {"claude", L::weekly, P::left, O::mostRoom, {{"claude:work", 90}, {"claude", 60}, {"claude:eu", none}}},
        {"all", L::weekly, P::used, O::mostRoom,
         {{"claude:work", 10}, {"claude", 40}, {"cursor", 80}, {"gemini", 130}, {"claude:eu", none}, {"codex", none}}},
        {"all", L::fiveHour, P::left, O::mostRoom,
         {{"claude:work", 95}, {"codex", 80}, {"claude", 30}, {"claude:eu", none}, {"cursor", none}, {"gemini", none}}},
        {"all", L::weekly, P::left, O::app,
         {{"claude", 60}, {"claude:work", 90}, {"claude:eu", none}, {"codex", none}, {"cursor", 20}, {"gemini", 0}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(rows(limitBoard(fleet(), c.provider, c.limit, c.percent, c.order)), c.rows) << "case " << &c - cases;
}

TEST(LimitBoard, RoomLeftNeverExceedsTheWholeLimit) {
    // A window below zero used leaves the whole limit, not more, and does not
    // jump ahead of an untouched one.
    const auto payload = payloadOf({tool("claude", std::nullopt, Windows{window("Week", 0)}),
                                    tool("codex", std::nullopt, Windows{window("Week", -5)})});
    EXPECT_EQ(rows(limitBoard(payload, "all", L::weekly, P::left, O::mostRoom)),
              (std::vector<Row>{{"claude", 100}, {"codex", 100}}));
}

TEST(LimitBoard, TiesKeepAccountOrderAndProvidersMatchExactly) {
    const auto payload = payloadOf({
        tool("a", std::nullopt, Windows{window("Week", 150)}),
        tool("b", std::nullopt, Windows{window("Week", 100)}),
        tool("c", std::nullopt, Windows{window("Week", 50)}),
        tool("d", std::nullopt, Windows{window("Week", 50)}),
    });
    EXPECT_EQ(rows(limitBoard(payload, "all", L::weekly, P::left, O::mostRoom)),
              (std::vector<Row>{{"c", 50}, {"d", 50}, {"a", 0}, {"b", 0}}));
    for (const char* provider : {"Claude", "claude:work", "", "zzz"})
        EXPECT_TRUE(limitBoard(fleet(), provider, L::weekly, P::left, O::mostRoom).rows.empty()) << provider;
}

}  // namespace
}  // namespace mw
