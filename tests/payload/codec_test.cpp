#include "payload/codec.hpp"

#include <tuple>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

// One broken snapshot empties `tools` and nothing else.
TEST(DecodePayload, ABadNestedRecordEmptiesOnlyItsRootKey) {
    struct Case {
        const char* name;
        std::function<void(nlohmann::json&)> breakIt;
        const char* pointer;  // the innermost value that failed, as readPayload names it
        const char* reason;   // a piece of the reason it gives
    };
    const Case cases[] = {
        {"missing required key", [](auto& s) { s.erase("brandHex"); }, "/tools/0/brandHex", "missing required key"},
        {"required null", [](auto& s) { s["brandHex"] = nullptr; }, "/tools/0/brandHex", "found null"},
        {"string for a bool", [](auto& s) { s["isConnected"] = "true"; }, "/tools/0/isConnected", "expected a boolean"},
        {"number for a bool", [](auto& s) { s["isConnected"] = 1; }, "/tools/0/isConnected", "found an integer"},
        {"bool for a double", [](auto& s) { s["usagePercent"] = true; }, "/tools/0/usagePercent", "expected a number"},
        {"fractional int", [](auto& s) { s["dangerLevel"] = 1.5; }, "/tools/0/dangerLevel", "64-bit integer"},
        {"optional of wrong type", [](auto& s) { s["accountSlug"] = 7; }, "/tools/0/accountSlug", "expected a string"},
        {"date with fraction", [](auto& s) { s["resetAt"] = "2025-01-31T14:05:00.123Z"; }, "/tools/0/resetAt",
         "not accepted"},
        {"date without zone", [](auto& s) { s["resetAt"] = "2025-01-31T14:05:00"; }, "/tools/0/resetAt",
         "not accepted"},
        {"bad window", [](auto& s) { s["windows"] = {{{"id", "w"}, {"label", "5h"}}}; }, "/tools/0/windows/0/usedPercent",
         "missing required key"},
        {"windows not an array", [](auto& s) { s["windows"] = {{"id", "w"}}; }, "/tools/0/windows", "expected an array"},
    };
    for (const auto& c : cases) {
        auto tool = snapshotJSON();
        c.breakIt(tool);
        const auto document = rootWith(tool);
        const auto payload = decode(document);
        ASSERT_TRUE(payload) << c.name;
        EXPECT_TRUE(payload->tools.empty()) << c.name;
        EXPECT_EQ(payload->enabledToolIDs, std::vector<std::string>{"claude"}) << c.name;
        EXPECT_TRUE(payload->showRemaining) << c.name;
        EXPECT_EQ(payload->sparklines.size(), 1u) << c.name;

        const auto reading = readPayload(document.dump());
        EXPECT_EQ(reading.payload, payload) << c.name;
        ASSERT_EQ(reading.problems.size(), 2u) << c.name;  // and the missing `dashboards`
        EXPECT_EQ(reading.problems[0].pointer, c.pointer) << c.name;
        EXPECT_NE(reading.problems[0].reason.find(c.reason), std::string::npos) << c.name << ": "
                                                                               << reading.problems[0].reason;
        EXPECT_NE(reading.problems[0].effect.find("`tools` array is dropped"), std::string::npos) << c.name;
        EXPECT_EQ(reading.problems[1].pointer, "/dashboards") << c.name;
    }
}

// Keys that hold names: the pointer escapes "~" and "/" (RFC 6901).
TEST(ReadPayload, PointersEscapeObjectKeys) {
    auto document = rootWith(snapshotJSON());
    document["dashboards"] = nlohmann::json::object();
    document["sparklines"] = {{"a/b~c", {{{"t", "2025-01-31T14:00:00Z"}, {"v", "1"}}}}};
    const auto reading = readPayload(document.dump());
    ASSERT_EQ(reading.problems.size(), 1u);
    EXPECT_EQ(reading.problems[0].pointer, "/sparklines/a~1b~0c/0/v");
}

TEST(ReadPayload, DocumentsThatAreRefusedWhole) {
    for (const char* bytes : {"[]", "\"text\"", "42", "null", "", "{", "{\"a\":}", "{} {}"}) {
        EXPECT_FALSE(decodePayload(bytes)) << bytes;
        const auto reading = readPayload(bytes);
        EXPECT_FALSE(reading.payload) << bytes;
        ASSERT_EQ(reading.problems.size(), 1u) << bytes;
        EXPECT_EQ(reading.problems[0].pointer, "") << bytes;
        EXPECT_NE(reading.problems[0].effect.find("decodeFailed"), std::string::npos) << bytes;
    }
    EXPECT_NE(readPayload("{\"a\":}").problems[0].reason.find("not JSON: parse error at line 1"), std::string::npos);
    const std::string deep = "{\"x\":" + std::string(600, '[') + std::string(600, ']') + "}";
    EXPECT_NE(readPayload(deep).problems[0].reason.find("nested deeper"), std::string::npos);
    EXPECT_TRUE(decodePayload("{\"x\":" + std::string(100, '[') + std::string(100, ']') + "}"));
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

// A missing root key falls back like a failing one and is named too, except
// the optional primarySparklineToolID, whose default is its absence.
TEST(ReadPayload, NamesEveryRootKeyThatFellBack) {
    const auto pointersOf = [](const std::string& bytes) {
        std::vector<std::string> pointers;
        for (const auto& problem : readPayload(bytes).problems) pointers.push_back(problem.pointer);
        return pointers;
    };
    EXPECT_EQ(decodePayload("{}"), emptyPayload());
    EXPECT_EQ(pointersOf("{}"), (std::vector<std::string>{"/updatedAt", "/tools", "/sparklines", "/enabledToolIDs",
                                                           "/dashboards", "/showRemaining"}));
    // Each failing key falls back alone, to what the empty payload holds.
    const std::string allBad = R"({"updatedAt":"2025-01-31T14:05:00.5Z","tools":null,"sparklines":{"c":[{"t":"bad",
        "v":1}]},"primarySparklineToolID":3,"enabledToolIDs":["a",2],"dashboards":"none","showRemaining":"yes",
        "extra":true})";
    EXPECT_EQ(pointersOf(allBad), (std::vector<std::string>{"/updatedAt", "/tools", "/sparklines/c/0/t",
                                                            "/primarySparklineToolID", "/enabledToolIDs/1",
                                                            "/dashboards", "/showRemaining"}));
    EXPECT_EQ(decodePayload(allBad), emptyPayload());
    const auto sample = encodePayload(samplePayload(*parseISO8601("2026-11-22T10:00:00Z")));
    EXPECT_TRUE(readPayload(sample).problems.empty());
}

TEST(DecodePayload, SamplePayloadRoundTrips) {
    const auto sample = samplePayload(*parseISO8601("2026-11-22T10:00:00Z"));
    const auto decoded = decodePayload(encodePayload(sample));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(*decoded, sample);
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

// Converts to any member type, so `T{AnyMember{}, …}` finds how many members
// an aggregate has.
struct AnyMember {
    template <class T>
    operator T() const;
};

template <class T, class... Given>
constexpr std::size_t memberCount() {
    if constexpr (requires { T{Given{}..., AnyMember{}}; })
        return memberCount<T, Given..., AnyMember>();
    else
        return sizeof...(Given);
}

template <class Record>
void expectEveryMemberListed() {
    EXPECT_EQ(fieldCount<Record>(), memberCount<Record>()) << kRecordName<Record>;
}

// A member added to a record but not to its field list would be neither
// written, read, hashed nor in the schema.
TEST(FieldLists, NameEveryMember) {
    []<class... Records>(std::tuple<Records...>*) { (expectEveryMemberListed<Records>(), ...); }(
        static_cast<std::tuple<WidgetUsageWindow, WidgetMeter, WidgetDailyValue, SparklinePoint, WidgetToolSnapshot,
                               WidgetUsageCard, WidgetDailyEntry, WidgetTokenSummary, WidgetDashboard, WidgetPayload>*>(
            nullptr));
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
