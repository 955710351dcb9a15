#include "config/choices.hpp"

#include <gtest/gtest.h>

#include "config/family.hpp"
#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::payloadOf;
using testing::tool;

TEST(ToolChoices, HighestFirstThenEnabledToolsInPayloadOrder) {
    auto payload = payloadOf({tool("codex"), tool("claude"), tool("gemini")});
    payload.enabledToolIDs = {"gemini", "codex"};  // the app's order does not reorder the list
    const auto choices = toolChoices(payload);
    ASSERT_EQ(choices.size(), 3u);
    EXPECT_EQ(choices[0], (WidgetToolChoice{"highest", "Highest Usage", "Highest"}));
    EXPECT_EQ(choices[1], (WidgetToolChoice{"codex", "Codex", "Cod"}));
    EXPECT_EQ(choices[2].id, "gemini");
}

TEST(ToolChoices, AccountsOfOneToolAreSeparateChoicesButOneProvider) {
    const auto payload = payloadOf({tool("claude", 10, "work"), tool("claude", 20, "home"), tool("codex")});
    const auto tools = toolChoices(payload);
    ASSERT_EQ(tools.size(), 4u);
    EXPECT_EQ(tools[1].id, "claude:work");
    EXPECT_EQ(tools[1].label, "Claude \u00B7 work");
    EXPECT_EQ(tools[2].id, "claude:home");

    const auto providers = providerChoices(payload);
    ASSERT_EQ(providers.size(), 3u);
    EXPECT_EQ(providers[0], (WidgetProviderChoice{"all", "All providers"}));
    EXPECT_EQ(providers[1], (WidgetProviderChoice{"claude", "Claude"}));  // first account's name, before " · "
    EXPECT_EQ(providers[2], (WidgetProviderChoice{"codex", "Codex"}));
}

TEST(ProviderChoices, QuotaLessToolsAreToolsButNotProviders) {
    auto noQuota = tool("cursor");
    noQuota.hasQuotaHeadline = false;
    auto withQuota = tool("claude");
    withQuota.hasQuotaHeadline = true;
    const auto unsaid = tool("codex");  // absent: still a provider
    const auto payload = payloadOf({noQuota, withQuota, unsaid});

    EXPECT_EQ(toolChoices(payload).size(), 4u);
    const auto providers = providerChoices(payload);
    ASSERT_EQ(providers.size(), 3u);
    EXPECT_EQ(providers[1].id, "claude");
    EXPECT_EQ(providers[2].id, "codex");
}

TEST(ProviderChoices, AQuotaLessFirstAccountDoesNotTakeItsToolID) {
    auto first = tool("claude", 10, "a");
    first.hasQuotaHeadline = false;
    const auto payload = payloadOf({first, tool("claude", 10, "b")});
    const auto providers = providerChoices(payload);
    ASSERT_EQ(providers.size(), 2u);
    EXPECT_EQ(providers[1], (WidgetProviderChoice{"claude", "Claude"}));
}

TEST(Choices, EmptyPayloadListsOnlyTheSpecialEntries) {
    EXPECT_EQ(toolChoices(emptyPayload()), std::vector{highestUsageChoice()});
    EXPECT_EQ(providerChoices(emptyPayload()), std::vector{allProvidersChoice()});
    auto hiddenOnly = payloadOf({tool("claude")});
    hiddenOnly.enabledToolIDs.clear();
    EXPECT_EQ(toolChoices(hiddenOnly).size(), 1u);
}

TEST(ChoiceLookup, AnswersEveryIdentifierInOrder) {
    const auto payload = payloadOf({tool("claude", 10, "work"), tool("codex")});
    const auto tools = toolChoicesForIdentifiers(
        {"codex", "codex-cli:work", "highest", "gemini", "claude:work", "", "1tool", "\u00E9clair"},
        toolChoices(payload));
    ASSERT_EQ(tools.size(), 8u);
    EXPECT_EQ(tools[0], (WidgetToolChoice{"codex", "Codex", "Cod"}));  // still listed
    EXPECT_EQ(tools[1], (WidgetToolChoice{"codex-cli:work", "Codex-cli", "Codex-cli"}));
    EXPECT_EQ(tools[2], highestUsageChoice());
    EXPECT_EQ(tools[3], (WidgetToolChoice{"gemini", "Gemini", "Gemini"}));
    EXPECT_EQ(tools[4].label, "Claude \u00B7 work");
    EXPECT_EQ(tools[5], (WidgetToolChoice{"", "", ""}));
    EXPECT_EQ(tools[6].label, "1tool");
    EXPECT_EQ(tools[7].label, "\u00C9clair");  // any script with capitals

    const auto providers =
        providerChoicesForIdentifiers({"all", "copilot", "claude", "a:b"}, providerChoices(payload));
    EXPECT_EQ(providers[0], allProvidersChoice());
    EXPECT_EQ(providers[1], (WidgetProviderChoice{"copilot", "Copilot"}));
    EXPECT_EQ(providers[2], (WidgetProviderChoice{"claude", "Claude"}));
    EXPECT_EQ(providers[3].label, "A:b");  // provider ids are not split
}

TEST(ChoiceQueries, LoadThePayloadEachTime) {
    testing::TempDir dir;
    EXPECT_EQ(WidgetToolChoiceQuery::suggestedEntities(dir.path()).size(), 1u);  // missing file
    testing::writePayload(dir, payloadOf({tool("claude"), tool("codex")}));
    EXPECT_EQ(WidgetToolChoiceQuery::suggestedEntities(dir.path()).size(), 3u);
    EXPECT_EQ(WidgetProviderChoiceQuery::suggestedEntities(dir.path()).size(), 3u);
    EXPECT_EQ(WidgetToolChoiceQuery::entities({"codex"}, dir.path())[0].compactLabel, "Cod");
    EXPECT_EQ(WidgetToolChoiceQuery::entities({"codex"}, std::nullopt)[0].compactLabel, "Codex");
    EXPECT_EQ(WidgetProviderChoiceQuery::entities({"all"}, std::nullopt), std::vector{allProvidersChoice()});
    EXPECT_EQ(WidgetToolChoiceQuery::defaultResult(), highestUsageChoice());
    EXPECT_EQ(WidgetProviderChoiceQuery::defaultResult(), allProvidersChoice());
}

}  // namespace
}  // namespace mw
