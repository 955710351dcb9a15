#include "payload/codec.hpp"

#include <algorithm>

#include <gtest/gtest.h>

#include "payload/hash.hpp"
#include "payload/sample.hpp"

namespace mw {
namespace {

// A complete, valid snapshot; tests break one key at a time.
nlohmann::json snapshotJSON() {
    return {{"toolID", "claude"},      {"displayName", "Claude"}, {"compactLabel", "Claude"},
            {"isConnected", true},     {"usagePercent", 42.5},    {"isUnderRate", false},
            {"dangerLevel", 1},        {"menuBarText", "42%"},    {"menuBarDelta", "+3%"},
            {"brandHex", "D97757"}};
}

nlohmann::json rootWith(const nlohmann::json& tool) {
    return {{"updatedAt", "2025-01-31T14:05:00Z"},
            {"tools", {tool}},
            {"enabledToolIDs", {"claude"}},
            {"showRemaining", true},
            {"sparklines", {{"claude", {{{"t", "2025-01-31T14:00:00Z"}, {"v", 1.5}}}}}}};
}

std::optional<WidgetPayload> decode(const nlohmann::json& j) { return decodePayload(j.dump()); }

TEST(DecodePayload, EmptyObjectIsTheEmptyPayload) {
    const auto payload = decodePayload("{}");
    ASSERT_TRUE(payload);
    EXPECT_EQ(*payload, emptyPayload());
    EXPECT_EQ(payload->updatedAt, kDistantPast);
}

TEST(DecodePayload, RootsThatAreNotObjectsFail) {
    for (const char* bytes : {"[]", "\"text\"", "42", "null", "", "{", "{\"a\":}", "{} {}"})
        EXPECT_FALSE(decodePayload(bytes)) << bytes;
}

TEST(DecodePayload, ValidDocumentKeepsEveryKey) {
    const auto payload = decode(rootWith(snapshotJSON()));
    ASSERT_TRUE(payload);
    ASSERT_EQ(payload->tools.size(), 1u);
    EXPECT_EQ(payload->tools[0].usagePercent, 42.5);
    EXPECT_EQ(payload->updatedAt, parseISO8601("2025-01-31T14:05:00Z"));
    EXPECT_TRUE(payload->showRemaining);
    EXPECT_EQ(payload->sparklines.at("claude").size(), 1u);
}

// One broken snapshot empties `tools` and nothing else.
TEST(DecodePayload, ABadNestedRecordEmptiesOnlyItsRootKey) {
    struct Case {
        const char* name;
        std::function<void(nlohmann::json&)> breakIt;
    };
    const Case cases[] = {
        {"missing required key", [](auto& s) { s.erase("brandHex"); }},
        {"required null", [](auto& s) { s["brandHex"] = nullptr; }},
        {"string for a bool", [](auto& s) { s["isConnected"] = "true"; }},
        {"number for a bool", [](auto& s) { s["isConnected"] = 1; }},
        {"bool for a double", [](auto& s) { s["usagePercent"] = true; }},
        {"fractional int", [](auto& s) { s["dangerLevel"] = 1.5; }},
        {"int beyond 64 bits", [](auto& s) { s["dangerLevel"] = 1e30; }},
        {"optional of wrong type", [](auto& s) { s["accountSlug"] = 7; }},
        {"date with fraction", [](auto& s) { s["resetAt"] = "2025-01-31T14:05:00.123Z"; }},
        {"date without zone", [](auto& s) { s["resetAt"] = "2025-01-31T14:05:00"; }},
        {"bad window", [](auto& s) { s["windows"] = {{{"id", "w"}, {"label", "5h"}}}; }},
        {"windows not an array", [](auto& s) { s["windows"] = {{"id", "w"}}; }},
    };
    for (const auto& c : cases) {
        auto tool = snapshotJSON();
        c.breakIt(tool);
        const auto payload = decode(rootWith(tool));
        ASSERT_TRUE(payload) << c.name;
        EXPECT_TRUE(payload->tools.empty()) << c.name;
        EXPECT_EQ(payload->enabledToolIDs, std::vector<std::string>{"claude"}) << c.name;
        EXPECT_TRUE(payload->showRemaining) << c.name;
        EXPECT_EQ(payload->sparklines.size(), 1u) << c.name;
    }
}

TEST(DecodePayload, LenientOptionalsAndNumbers) {
    auto tool = snapshotJSON();
    tool["accountSlug"] = nullptr;   // null optional: absent
    tool["dangerLevel"] = 2.0;       // integral float: an Int
    tool["usagePercent"] = 7;        // integer: a Double
    tool["unknownKey"] = {1, 2, 3};  // ignored
    tool["windows"] = nlohmann::json::array();
    const auto payload = decode(rootWith(tool));
    ASSERT_TRUE(payload);
    ASSERT_EQ(payload->tools.size(), 1u);
    const auto& s = payload->tools[0];
    EXPECT_EQ(s.accountSlug, std::nullopt);
    EXPECT_EQ(s.dangerLevel, 2);
    EXPECT_EQ(s.usagePercent, 7.0);
    ASSERT_TRUE(s.windows);  // present though empty
    EXPECT_TRUE(s.windows->empty());
}

TEST(DecodePayload, EachRootKeyFallsBackAlone) {
    const auto payload = decode({{"updatedAt", "2025-01-31T14:05:00.5Z"},
                                 {"tools", nullptr},
                                 {"sparklines", {{"claude", {{{"t", "bad"}, {"v", 1}}}}}},
                                 {"primarySparklineToolID", 3},
                                 {"enabledToolIDs", {"a", 2}},
                                 {"dashboards", "none"},
                                 {"showRemaining", "yes"},
                                 {"extra", true}});
    ASSERT_TRUE(payload);
    EXPECT_EQ(*payload, emptyPayload());
}

TEST(DecodePayload, RefusesAbsurdNestingAndInvalidText) {
    const std::string deep = "{\"x\":" + std::string(600, '[') + std::string(600, ']') + "}";
    EXPECT_FALSE(decodePayload(deep));
    const std::string fine = "{\"x\":" + std::string(100, '[') + std::string(100, ']') + "}";
    EXPECT_TRUE(decodePayload(fine));
    // Brackets inside strings do not count.
    EXPECT_TRUE(decodePayload("{\"x\":\"" + std::string(1000, '[') + "\\\"\"}"));
    EXPECT_FALSE(decodePayload("{\"tools\":\"\xff\xfe\"}"));  // not UTF-8
}

TEST(DecodePayload, SamplePayloadRoundTrips) {
    const auto sample = samplePayload(*parseISO8601("2026-11-22T10:00:00Z"));
    const auto decoded = decodePayload(encodePayload(sample));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(*decoded, sample);
    EXPECT_EQ(hashValue(decoded->dashboards.at("claude")), hashValue(sample.dashboards.at("claude")));
    // Cursor reports a week of daily spend, one value a day, oldest first.
    const auto cursor = std::find_if(sample.tools.begin(), sample.tools.end(),
                                     [](const WidgetToolSnapshot& t) { return t.toolID == "cursor"; });
    ASSERT_NE(cursor, sample.tools.end());
    ASSERT_TRUE(cursor->dailyValues);
    ASSERT_EQ(cursor->dailyValues->size(), 7u);
    EXPECT_LT(cursor->dailyValues->front().day, cursor->dailyValues->back().day);
}

TEST(EncodePayload, OmitsAbsentOptionals) {
    WidgetToolSnapshot s;
    s.toolID = "codex";
    WidgetPayload p;
    p.tools = {s};
    const auto j = toJSON(p);
    const auto& tool = j["tools"][0];
    for (const char* key : {"accountSlug", "resetAt", "forecastLabel", "hasQuotaHeadline", "rankPercent", "windows"})
        EXPECT_FALSE(tool.contains(key)) << key;
    EXPECT_FALSE(j.contains("primarySparklineToolID"));
    EXPECT_EQ(j["updatedAt"], "0001-01-01T00:00:00Z");
}

TEST(EnabledTools, MatchesFullToolKeysInPayloadOrder) {
    WidgetToolSnapshot main, work, other;
    main.toolID = "claude";
    work.toolID = "claude";
    work.accountSlug = "work";
    other.toolID = "codex";
    WidgetPayload p;
    p.tools = {work, other, main};
    p.enabledToolIDs = {"claude", "codex"};  // the bare id does not enable the slugged account
    auto enabled = enabledTools(p);
    ASSERT_EQ(enabled.size(), 2u);
    EXPECT_EQ(toolKey(enabled[0]), "codex");
    EXPECT_EQ(toolKey(enabled[1]), "claude");
    p.enabledToolIDs = {"claude:work"};
    enabled = enabledTools(p);
    ASSERT_EQ(enabled.size(), 1u);
    EXPECT_EQ(toolKey(enabled[0]), "claude:work");
    p.enabledToolIDs.clear();
    EXPECT_TRUE(enabledTools(p).empty());
}

TEST(RecordHashing, AbsentAndPresentOptionalsDiffer) {
    WidgetUsageWindow a{"w", "5h", 10, std::nullopt, std::nullopt};
    WidgetUsageWindow b = a;
    b.durationSeconds = 0.0;
    EXPECT_NE(a, b);
    EXPECT_NE(hashValue(a), hashValue(b));
    b.durationSeconds.reset();
    EXPECT_EQ(hashValue(a), hashValue(b));
}

}  // namespace
}  // namespace mw
