#include "config/intents.hpp"

#include <gtest/gtest.h>

#include "support/payloads.hpp"
#include "widgets/dashboard/intent.hpp"
#include "widgets/focus/intent.hpp"
#include "widgets/limit/intent.hpp"
#include "widgets/sparkline/intent.hpp"

namespace mw {
namespace {

using testing::payloadOf;
using testing::tool;

std::vector<std::string> names(const IntentDescription& d) {
    std::vector<std::string> out;
    for (const auto& p : d.parameters) out.emplace_back(p.name);
    return out;
}

TEST(IntentDescriptions, TitlesParametersAndDefaults) {
    const auto& limit = AccountsLimitWidgetIntent::description();
    EXPECT_EQ(limit.title, "Accounts by Limit");
    EXPECT_EQ(names(limit), (std::vector<std::string>{"provider", "limit", "percent", "order"}));
    EXPECT_EQ(limit.parameters[0].title, "Provider");
    EXPECT_EQ(limit.parameters[0].defaultValue, std::nullopt);
    EXPECT_EQ(limit.parameters[1].title, "Limit");
    EXPECT_EQ(limit.parameters[1].defaultValue, "weekly");
    EXPECT_EQ(limit.parameters[2].title, "Show");
    EXPECT_EQ(limit.parameters[2].defaultValue, "left");
    EXPECT_EQ(limit.parameters[3].title, "Order");
    EXPECT_EQ(limit.parameters[3].defaultValue, "mostRoom");

    const auto& focus = FocusWidgetIntent::description();
    EXPECT_EQ(focus.title, "Focus Tool");
    EXPECT_EQ(focus.typeName, "FocusWidgetIntent");
    EXPECT_EQ(names(focus), (std::vector<std::string>{"tool", "style"}));
    EXPECT_EQ(typeName(focus.parameters[1].type), "WidgetDetailStyle");
    EXPECT_EQ(focus.parameters[1].unsetMeans, "classic");
    EXPECT_EQ(SparklineWidgetIntent::description().title, "Sparkline Tool");
    EXPECT_EQ(DashboardWidgetIntent::description().title, "Dashboard Tool");
    EXPECT_EQ(names(DashboardWidgetIntent::description()), std::vector<std::string>{"tool"});
    EXPECT_EQ(typeDisplayName(IntentParameterType::toolChoice), "Tool");
    EXPECT_EQ(typeDisplayName(IntentParameterType::percent), "Show");
}

TEST(ParseIntent, ReadsRawValuesAndEntityIdentifiers) {
    const auto lists = choiceLists(payloadOf({tool("claude", 10, "work"), tool("codex")}));
    const auto focus = parseIntent<FocusWidgetIntent>({"tool=claude:work", "style=enhanced"}, lists);
    ASSERT_TRUE(focus) << focus.error();
    EXPECT_EQ(focus->tool, (WidgetToolChoice{"claude:work", "Claude \u00B7 work", "Cla"}));
    EXPECT_EQ(focus->style, WidgetDetailStyle::enhanced);

    const auto gone = parseIntent<SparklineWidgetIntent>({"tool=cursor:old"}, lists);
    ASSERT_TRUE(gone);
    EXPECT_EQ(gone->tool, (WidgetToolChoice{"cursor:old", "Cursor", "Cursor"}));

    const auto limit = parseIntent<AccountsLimitWidgetIntent>(
        {"limit=fiveHour", "order=app", "provider=codex", "percent=used"}, lists);
    ASSERT_TRUE(limit) << limit.error();
    EXPECT_EQ(*limit, (AccountsLimitWidgetIntent{WidgetProviderChoice{"codex", "Codex"},
                                                       WidgetLimitChoice::fiveHour, WidgetPercentChoice::used,
                                                       WidgetOrderChoice::app}));
    EXPECT_EQ(parseIntent<DashboardWidgetIntent>({"tool=a=b"}, {})->tool->id, "a=b");  // first "=" splits
}

TEST(ParseIntent, ErrorsNameWhatIsAccepted) {
    struct Case {
        std::vector<std::string> assignments;
        std::string expected;
    };
    const Case cases[] = {
        {{"style=fancy"}, "unknown value \"fancy\" for \"style\"; accepted: classic, enhanced"},
        {{"style=Classic"}, "accepted: classic, enhanced"},
        {{"colour=red"}, "unknown option \"colour\" for Focus Tool; accepted: tool, style"},
        {{"style"}, "expected NAME=VALUE"},
        {{"=classic"}, "expected NAME=VALUE"},
        {{"style=classic", "style=enhanced"}, "more than once"},
        {{"tool="}, "needs a Tool identifier"},
    };
    for (const auto& c : cases) {
        const auto parsed = parseIntent<FocusWidgetIntent>(c.assignments, {});
        EXPECT_FALSE(parsed) << c.expected;
        EXPECT_NE(parsed.error().find(c.expected), std::string::npos) << parsed.error();
    }
    const auto limit = parseIntent<AccountsLimitWidgetIntent>({"limit=5h"}, {});
    EXPECT_NE(limit.error().find("accepted: weekly, fiveHour"), std::string::npos) << limit.error();
}

TEST(IntentFromParameters, StoredValuesAnOlderBuildWroteAreLeftUnset) {
    const auto focus = intentFromParameters<FocusWidgetIntent>({{"style", "retro"}, {"unknown", "x"}}, {});
    EXPECT_EQ(focus, FocusWidgetIntent{});
    const auto limit = intentFromParameters<AccountsLimitWidgetIntent>({{"limit", "monthly"}, {"percent", "used"}}, {});
    EXPECT_EQ(limit.limit, WidgetLimitChoice::weekly);
    EXPECT_EQ(limit.percent, WidgetPercentChoice::used);
}

}  // namespace
}  // namespace mw
