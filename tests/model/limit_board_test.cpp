#include "model/limit_board.hpp"

#include <gtest/gtest.h>

#include "fixtures.hpp"

namespace mw {
namespace {

using testing::kFiveHours;
using testing::payloadOf;
using testing::snapshot;
using testing::window;

using Windows = std::vector<WidgetUsageWindow>;

WidgetPayload fleet() {
    auto hidden = snapshot("claude", "eu", Windows{window("Week", 5)});
    hidden.hasQuotaHeadline = false;
    return payloadOf({
        snapshot("claude", std::nullopt, Windows{window("5h", 70), window("Week", 40)}),
        snapshot("codex", std::nullopt, Windows{window("Session", 20, std::nullopt, kFiveHours)}),
        snapshot("claude", "work", Windows{window("5h", 5), window("Week", 10)}),
        hidden,
        snapshot("cursor", std::nullopt, Windows{window("Week", 80)}),
        snapshot("gemini", std::nullopt, Windows{window("Week", 130)}),
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

TEST(LimitBoard, MostRoomFirstWindowlessLast) {
    using L = WidgetLimitChoice;
    using P = WidgetPercentChoice;
    using O = WidgetOrderChoice;
    EXPECT_EQ(rows(limitBoard(fleet(), "claude", L::weekly, P::left, O::mostRoom)),
              (std::vector<Row>{{"claude:work", 90}, {"claude", 60}, {"claude:eu", std::nullopt}}));
    EXPECT_EQ(rows(limitBoard(fleet(), "all", L::weekly, P::used, O::mostRoom)),
              (std::vector<Row>{{"claude:work", 10},
                                {"claude", 40},
                                {"cursor", 80},
                                {"gemini", 130},
                                {"claude:eu", std::nullopt},
                                {"codex", std::nullopt}}));
    EXPECT_EQ(rows(limitBoard(fleet(), "all", L::fiveHour, P::left, O::mostRoom)),
              (std::vector<Row>{{"claude:work", 95},
                                {"codex", 80},
                                {"claude", 30},
                                {"claude:eu", std::nullopt},
                                {"cursor", std::nullopt},
                                {"gemini", std::nullopt}}));
}

TEST(LimitBoard, AppOrderKeepsTheAccountList) {
    EXPECT_EQ(rows(limitBoard(fleet(), "all", WidgetLimitChoice::weekly, WidgetPercentChoice::left,
                              WidgetOrderChoice::app)),
              (std::vector<Row>{{"claude", 60},
                                {"claude:work", 90},
                                {"claude:eu", std::nullopt},
                                {"codex", std::nullopt},
                                {"cursor", 20},
                                {"gemini", 0}}));
}

TEST(LimitBoard, TiesKeepAccountOrderAndProvidersMatchExactly) {
    const auto payload = payloadOf({
        snapshot("a", std::nullopt, Windows{window("Week", 150)}),
        snapshot("b", std::nullopt, Windows{window("Week", 100)}),
        snapshot("c", std::nullopt, Windows{window("Week", 50)}),
        snapshot("d", std::nullopt, Windows{window("Week", 50)}),
    });
    EXPECT_EQ(rows(limitBoard(payload, "all", WidgetLimitChoice::weekly, WidgetPercentChoice::left,
                              WidgetOrderChoice::mostRoom)),
              (std::vector<Row>{{"c", 50}, {"d", 50}, {"a", 0}, {"b", 0}}));
    for (const char* provider : {"Claude", "claude:work", "", "zzz"}) {
        EXPECT_TRUE(limitBoard(fleet(), provider, WidgetLimitChoice::weekly, WidgetPercentChoice::left,
                               WidgetOrderChoice::mostRoom)
                        .rows.empty())
            << provider;
    }
}

}  // namespace
}  // namespace mw
