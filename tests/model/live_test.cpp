#include "model/live.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <set>

namespace mw {
namespace {

using nlohmann::ordered_json;

std::vector<std::string> keysOf(const std::string& text) {
    const auto document = ordered_json::parse(text);
    std::vector<std::string> keys;
    for (const auto& [key, value] : document.items()) keys.push_back(key);
    return keys;
}

LiveProviderSnapshot fullProvider() {
    return LiveProviderSnapshot("claude:work", "claude", "Claude \u00B7 work", 42.5, Date::fromUnix(1738332300), 2,
                                "D97757", "5h", 18000,
                                LiveWindowSnapshot("Week", 61.25, Date::fromUnix(1738800000), 604800));
}

TEST(LiveRecords, EncodesOnlyPresentKeysInDeclarationOrder) {
    const LiveProviderSnapshot sparse("a", "codex", "Codex", 1, std::nullopt, 0, "10A37F", std::nullopt, 18000);
    EXPECT_EQ(keysOf(encodeLive(sparse)), (std::vector<std::string>{"id", "toolID", "displayName", "percent",
                                                                     "dangerLevel", "brandHex", "windowSeconds"}));
    EXPECT_EQ(keysOf(encodeLive(fullProvider())),
              (std::vector<std::string>{"id", "toolID", "displayName", "percent", "resetAtEpoch", "dangerLevel",
                                        "brandHex", "windowLabel", "windowSeconds", "secondary"}));
    EXPECT_EQ(keysOf(encodeLive(LiveWindowSnapshot("5h", 3))), (std::vector<std::string>{"label", "percent"}));
    // Reset dates travel as Unix seconds.
    EXPECT_EQ(encodeLive(LiveWindowSnapshot("5h", 3, Date{0}, 60)),
              R"({"label":"5h","percent":3.0,"resetAtEpoch":978307200.0,"durationSeconds":60.0})");
    EXPECT_EQ(keysOf(encodeLive(LiveActivityContentPayload(fullProvider(), {}))),
              (std::vector<std::string>{"primary", "all"}));
}

TEST(LiveRecords, RoundTripsThroughTextAndEpochSeconds) {
    const LiveProviderSnapshot sparse("b", "x", "X", 0, std::nullopt, -1, "");
    const LiveActivityContentPayload content(fullProvider(), {fullProvider(), sparse});
    EXPECT_EQ(decodeLive<LiveActivityContentPayload>(encodeLive(content)), content);
    EXPECT_EQ(decodeLive<LiveProviderSnapshot>(encodeLive(sparse)), sparse);
    EXPECT_EQ(decodeLive<LiveWindowSnapshot>(encodeLive(*fullProvider().secondary)), fullProvider().secondary);
    EXPECT_EQ(fullProvider().resetAt(), Date::fromUnix(1738332300));
    EXPECT_EQ(LiveWindowSnapshot("5h", 10, Date{0}).resetAt(), Date{0});
}

TEST(LiveRecords, DecodingIsStrictAboutRequiredKeysAndTypes) {
    const auto valid = ordered_json::parse(encodeLive(fullProvider()));
    ASSERT_TRUE(decodeLive<LiveProviderSnapshot>(valid.dump()));

    // Required keys may be neither missing nor null; an optional one may be
    // either, and null reads as missing.
    const std::set<std::string> optional{"resetAtEpoch", "windowLabel", "windowSeconds", "secondary"};
    for (const auto& [key, value] : valid.items()) {
        auto missing = valid;
        missing.erase(key);
        auto null = valid;
        null[key] = nullptr;
        const auto withoutKey = decodeLive<LiveProviderSnapshot>(missing.dump());
        const auto withNull = decodeLive<LiveProviderSnapshot>(null.dump());
        EXPECT_EQ(withoutKey.has_value(), optional.contains(key)) << key;
        EXPECT_EQ(withNull, withoutKey) << key;
    }

    // A fractional level, text for numbers, a number for text, a malformed secondary.
    const std::pair<const char*, ordered_json> mistyped[] = {
        {"dangerLevel", 2.5}, {"percent", "42"}, {"resetAtEpoch", "1738332300"}, {"windowLabel", 5},
        {"secondary", ordered_json{{"percent", 1}}}, {"secondary", ordered_json::array()}};
    for (const auto& [key, value] : mistyped) {
        auto document = valid;
        document[key] = value;
        EXPECT_FALSE(decodeLive<LiveProviderSnapshot>(document.dump())) << key << " = " << value;
    }

    EXPECT_TRUE(decodeLive<LiveProviderSnapshot>(
        R"({"id":"a","toolID":"t","displayName":"T","percent":1,"dangerLevel":3.0,"brandHex":"","extra":true})"));
    EXPECT_FALSE(decodeLive<LiveProviderSnapshot>("[]"));
    EXPECT_FALSE(decodeLive<LiveProviderSnapshot>("{"));
    EXPECT_FALSE(decodeLive<LiveActivityContentPayload>(R"({"primary":)" + valid.dump() + "}"));
    EXPECT_FALSE(decodeLive<LiveActivityContentPayload>(R"({"primary":)" + valid.dump() + R"(,"all":[{}]})"));
    EXPECT_TRUE(decodeLive<LiveActivityContentPayload>(R"({"primary":)" + valid.dump() + R"(,"all":[]})"));
}

TEST(LiveRecords, HashingCoversNestedFields) {
    const std::hash<LiveProviderSnapshot> hash;
    EXPECT_EQ(hash(fullProvider()), hash(fullProvider()));
    auto withoutSecondary = fullProvider();
    withoutSecondary.secondary.reset();
    auto otherSecondary = fullProvider();
    otherSecondary.secondary->durationSeconds.reset();
    EXPECT_NE(hash(fullProvider()), hash(withoutSecondary));
    EXPECT_NE(hash(fullProvider()), hash(otherSecondary));

    const std::hash<LiveActivityContentPayload> contentHash;
    EXPECT_NE(contentHash(LiveActivityContentPayload(fullProvider(), {fullProvider()})),
              contentHash(LiveActivityContentPayload(fullProvider(), {fullProvider(), fullProvider()})));
}

}  // namespace
}  // namespace mw
