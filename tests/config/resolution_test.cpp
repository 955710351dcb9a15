#include "config/tool_resolution.hpp"

#include <gtest/gtest.h>

#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::payloadOf;
using testing::tool;

WidgetToolSnapshot ranked(const std::string& id, double usage, std::optional<double> rank, std::int64_t danger) {
    auto t = tool(id, usage);
    t.rankPercent = rank;
    t.dangerLevel = danger;
    return t;
}

TEST(HighestUsageTool, RanksByRankPercentThenDangerThenUsageThenPayloadOrder) {
    struct Case {
        const char* name;
        std::vector<WidgetToolSnapshot> tools;
        std::string expected;
    };
    const Case cases[] = {
        {"usage alone", {ranked("a", 40, {}, 0), ranked("b", 60, {}, 0)}, "b"},
        {"rankPercent wins over usage", {ranked("a", 90, 10, 0), ranked("b", 20, 50, 0)}, "b"},
        {"rank of one, usage of the other", {ranked("a", 30, 70, 0), ranked("b", 60, {}, 0)}, "a"},
        {"equal rank: higher danger", {ranked("a", 50, 80, 1), ranked("b", 40, 80, 3)}, "b"},
        {"equal rank and danger: higher usage", {ranked("a", 40, 80, 2), ranked("b", 50, 80, 2)}, "b"},
        {"full tie: payload order", {ranked("a", 50, 80, 2), ranked("b", 50, 80, 2)}, "a"},
        {"full tie, three: first", {ranked("c", 5, {}, 0), ranked("b", 5, {}, 0), ranked("a", 5, {}, 0)}, "c"},
    };
    for (const auto& c : cases) {
        const auto best = highestUsageTool(payloadOf(c.tools));
        ASSERT_TRUE(best) << c.name;
        EXPECT_EQ(best->toolID, c.expected) << c.name;
    }
}

TEST(HighestUsageTool, OnlyEnabledToolsNotExcluded) {
    auto payload = payloadOf({tool("a", 90), tool("b", 50), tool("c", 10)});
    payload.enabledToolIDs = {"b", "c"};
    EXPECT_EQ(highestUsageTool(payload)->toolID, "b");
    EXPECT_EQ(highestUsageTool(payload, {"b"})->toolID, "c");
    EXPECT_EQ(highestUsageTool(payload, {"b", "c"}), std::nullopt);
    EXPECT_EQ(highestUsageTool(emptyPayload()), std::nullopt);
}

TEST(ResolvedSnapshot, SpecificChoiceNeedsItsExactKeyEnabled) {
    auto payload = payloadOf({tool("codex-cli", 10), tool("codex-cli", 80, "work")});
    const WidgetToolChoice work{"codex-cli:work", "Codex work", "Work"};
    EXPECT_EQ(resolvedSnapshot(payload, work)->usagePercent, 80);
    EXPECT_EQ(resolvedSnapshot(payload, {"codex-cli", "Codex", "Codex"})->usagePercent, 10);
    EXPECT_EQ(resolvedSnapshot(payload, {"Codex-CLI:work", "", ""}), std::nullopt);  // case-sensitive

    payload.enabledToolIDs = {"codex-cli"};  // hidden in the app: never shown though still in tools
    EXPECT_EQ(resolvedSnapshot(payload, work), std::nullopt);
    EXPECT_EQ(resolvedToolKey(payload, work), "codex-cli:work");  // still named for the report and link

    payload.enabledToolIDs = {"codex-cli:work", "ghost"};
    EXPECT_EQ(resolvedSnapshot(payload, {"ghost", "Ghost", "Ghost"}), std::nullopt);  // enabled, no record
}

TEST(ResolvedToolKey, HighestNamesTheWinnerOrNothing) {
    const auto payload = payloadOf({tool("a", 10), tool("b", 30, "x")});
    EXPECT_EQ(resolvedToolKey(payload, highestUsageChoice()), "b:x");
    EXPECT_EQ(resolvedToolKey(emptyPayload(), highestUsageChoice()), std::nullopt);
}

TEST(ToolDataKeys, KeyThenToolIDThenPrimaryForHighestOnly) {
    auto payload = payloadOf({tool("claude", 10, "work"), tool("codex")});
    payload.primarySparklineToolID = "gemini";
    const auto& work = payload.tools[0];
    EXPECT_EQ(toolDataKeys(payload, highestUsageChoice(), work),
              (std::vector<std::string>{"claude:work", "claude", "gemini"}));
    EXPECT_EQ(toolDataKeys(payload, {"claude:work", "", ""}, work),
              (std::vector<std::string>{"claude:work", "claude"}));
    EXPECT_EQ(toolDataKeys(payload, {"codex", "", ""}, payload.tools[1]), (std::vector<std::string>{"codex"}));
}

}  // namespace
}  // namespace mw
