#include "model/live.hpp"

#include <gtest/gtest.h>

#include <functional>

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

TEST(LiveRecords, ResetDatesTravelAsUnixSeconds) {
    const LiveWindowSnapshot window("5h", 10, Date{0});
    EXPECT_EQ(window.resetAtEpoch, 978307200.0);
    EXPECT_EQ(window.resetAt(), Date{0});

    const LiveProviderSnapshot provider("a", "codex", "Codex", 1, std::nullopt, 0, "10A37F");
    EXPECT_FALSE(provider.resetAtEpoch);
    EXPECT_FALSE(provider.resetAt());
    EXPECT_EQ(fullProvider().resetAt(), Date::fromUnix(1738332300));
}

TEST(LiveRecords, EncodesOnlyPresentKeysInDeclarationOrder) {
    const LiveProviderSnapshot sparse("a", "codex", "Codex", 1, std::nullopt, 0, "10A37F", std::nullopt, 18000);
    EXPECT_EQ(keysOf(encodeLive(sparse)), (std::vector<std::string>{"id", "toolID", "displayName", "percent",
                                                                     "dangerLevel", "brandHex", "windowSeconds"}));
    EXPECT_EQ(keysOf(encodeLive(fullProvider())),
              (std::vector<std::string>{"id", "toolID", "displayName", "percent", "resetAtEpoch", "dangerLevel",
                                        "brandHex", "windowLabel", "windowSeconds", "secondary"}));
    EXPECT_EQ(keysOf(encodeLive(LiveWindowSnapshot("5h", 3))), (std::vector<std::string>{"label", "percent"}));
    EXPECT_EQ(encodeLive(LiveWindowSnapshot("5h", 3, Date{0}, 60)),
              R"({"label":"5h","percent":3.0,"resetAtEpoch":978307200.0,"durationSeconds":60.0})");
    EXPECT_EQ(keysOf(encodeLive(LiveActivityContentPayload(fullProvider(), {}))),
              (std::vector<std::string>{"primary", "all"}));
}

TEST(LiveRecords, RoundTrip) {
    const LiveProviderSnapshot sparse("b", "x", "X", 0, std::nullopt, -1, "");
    const LiveActivityContentPayload content(fullProvider(), {fullProvider(), sparse});
    EXPECT_EQ(decodeLive<LiveActivityContentPayload>(encodeLive(content)), content);
    EXPECT_EQ(decodeLive<LiveProviderSnapshot>(encodeLive(sparse)), sparse);
    EXPECT_EQ(decodeLive<LiveWindowSnapshot>(encodeLive(*fullProvider().secondary)), fullProvider().secondary);
}

TEST(LiveRecords, DecodingIsStrictAboutRequiredKeysAndTypes) {
    const auto valid = ordered_json::parse(encodeLive(fullProvider()));
    ASSERT_TRUE(decodeLive<LiveProviderSnapshot>(valid.dump()));

    for (const char* key : {"id", "toolID", "displayName", "percent", "dangerLevel", "brandHex"}) {
        auto missing = valid;
        missing.erase(key);
        EXPECT_FALSE(decodeLive<LiveProviderSnapshot>(missing.dump())) << key;
        auto null = valid;
        null[key] = nullptr;
        EXPECT_FALSE(decodeLive<LiveProviderSnapshot>(null.dump())) << key;
    }
    for (const char* key : {"resetAtEpoch", "windowLabel", "windowSeconds", "secondary"}) {
        auto missing = valid;
        missing.erase(key);
        EXPECT_TRUE(decodeLive<LiveProviderSnapshot>(missing.dump())) << key;
        auto null = valid;
        null[key] = nullptr;
        const auto decoded = decodeLive<LiveProviderSnapshot>(null.dump());
        ASSERT_TRUE(decoded) << key;
        EXPECT_EQ(*decoded, *decodeLive<LiveProviderSnapshot>(missing.dump())) << key;
    }

    struct Case {
        const char* name;
        const char* key;
        ordered_json value;
    };
    const Case mistyped[] = {
        {"fractional level", "dangerLevel", 2.5},
        {"percent as text", "percent", "42"},
        {"epoch as text", "resetAtEpoch", "1738332300"},
        {"label as number", "windowLabel", 5},
        {"secondary without its label", "secondary", ordered_json{{"percent", 1}}},
        {"secondary as array", "secondary", ordered_json::array()},
    };
    for (const auto& c : mistyped) {
        auto document = valid;
        document[c.key] = c.value;
        EXPECT_FALSE(decodeLive<LiveProviderSnapshot>(document.dump())) << c.name;
    }

    EXPECT_TRUE(decodeLive<LiveProviderSnapshot>(
        R"({"id":"a","toolID":"t","displayName":"T","percent":1,"dangerLevel":3.0,"brandHex":"","extra":true})"));
    EXPECT_FALSE(decodeLive<LiveProviderSnapshot>("[]"));
    EXPECT_FALSE(decodeLive<LiveProviderSnapshot>("{"));
    EXPECT_FALSE(decodeLive<LiveActivityContentPayload>(R"({"primary":)" + valid.dump() + "}"));
    EXPECT_FALSE(decodeLive<LiveActivityContentPayload>(R"({"primary":)" + valid.dump() + R"(,"all":[{}]})"));
    EXPECT_TRUE(decodeLive<LiveActivityContentPayload>(R"({"primary":)" + valid.dump() + R"(,"all":[]})"));
}

TEST(LiveRecords, EqualityAndHashingCoverEveryField) {
    const std::hash<LiveProviderSnapshot> hash;
    auto withoutSecondary = fullProvider();
    withoutSecondary.secondary.reset();
    EXPECT_NE(fullProvider(), withoutSecondary);
    EXPECT_NE(hash(fullProvider()), hash(withoutSecondary));
    EXPECT_EQ(hash(fullProvider()), hash(fullProvider()));

    auto otherSecondary = fullProvider();
    otherSecondary.secondary->durationSeconds.reset();
    EXPECT_NE(hash(fullProvider()), hash(otherSecondary));

    const std::hash<LiveActivityContentPayload> contentHash;
    const LiveActivityContentPayload a(fullProvider(), {fullProvider()});
    const LiveActivityContentPayload b(fullProvider(), {fullProvider(), fullProvider()});
    EXPECT_NE(a, b);
    EXPECT_NE(contentHash(a), contentHash(b));
    EXPECT_EQ(contentHash(a), contentHash(LiveActivityContentPayload(fullProvider(), {fullProvider()})));
}

}  // namespace
}  // namespace mw
