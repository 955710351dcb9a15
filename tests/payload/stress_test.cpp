// Hostile and oversized payload files: whatever is in the container, a load
// ends with a status, never a crash, and within a small multiple of the
// file's size in memory.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "payload/codec.hpp"
#include "payload/sample.hpp"
#include "payload/store.hpp"
#include "support/child_process.hpp"
#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::inChild;
using testing::TempDir;

const Date kNow = *parseISO8601("2026-11-22T10:00:00Z");

// Big enough for memory to be dominated by the file, small enough for a
// debug build to load in a few seconds. MW_STRESS_FILE_MB asks for more
// (30 for the full-size check, just under the reader's 32 MB cap; larger
// files are unreadable without being read).
const std::size_t kHugeFile = [] {
    const char* mb = std::getenv("MW_STRESS_FILE_MB");
    const long n = mb != nullptr ? std::strtol(mb, nullptr, 10) : 0;
    const auto bytes = static_cast<std::size_t>(n > 0 ? n : 8) << 20;
    return std::min(bytes, kPayloadMaxBytes - (1 << 20));  // room for the rest of the document
}();

std::string describe(ReadStatus status) { return std::string(rawValue(status)); }

// One realistic account (windows, meters, daily values) as JSON text.
WidgetToolSnapshot sampleTool() { return samplePayload(kNow).tools.front(); }

std::string toolText() {
    WidgetPayload one;
    one.tools = {sampleTool()};
    return toJSON(one)["tools"][0].dump();
}

// A valid document of `count` copies of the sample account.
std::string manyAccounts(std::size_t count) {
    const std::string tool = toolText();
    std::string doc = R"({"updatedAt":"2026-11-22T10:00:00Z","tools":[)";
    doc.reserve(count * (tool.size() + 1) + 200);
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) doc += ',';
        doc += tool;
    }
    doc += R"(],"enabledToolIDs":["claude"],"showRemaining":true})";
    return doc;
}

// Writes the file from a child, so the test process never holds the bytes.
void writeInChild(const TempDir& dir, const std::function<std::string()>& make) {
    ASSERT_EQ(inChild([&] {
                  dir.write(kPayloadFileName, make());
                  return std::string();
              }),
              "");
}

// Loads in a child; `check` judges the result there. The child also measures
// how far the load raised the process's peak resident size.
std::string loadInChild(const TempDir& dir, double allowedMultiple,
                        const std::function<std::string(const LoadResult&)>& check) {
    const auto size = static_cast<double>(std::filesystem::file_size(dir / kPayloadFileName));
    return inChild([&] {
        const auto before = testing::peakResidentBytes();
        const LoadResult result = WidgetStore::load(dir.path());
        const auto grown = static_cast<double>(testing::peakResidentBytes() - before);
        std::fprintf(stderr, "[ measured ] %.0f MB file, peak grew %.0f MB (%.2fx), status %s\n", size / 1e6,
                     grown / 1e6, grown / size, rawValue(result.status).data());
        std::string problems = check(result);
        if (!testing::kMemoryIsInstrumented && grown > allowedMultiple * size)
            problems += "peak memory grew " + std::to_string(grown / size) + "x the file size; ";
        return problems;
    });
}

// Measured near 9x: the file (1x), the parsed document tree (about 6.5x: a
// tree node per key, several times the text it came from) and the records
// built from it (about 1.5x) are all alive at the end of a load. The bound
// leaves room for allocator noise, not for another copy of the tree.
TEST(PayloadStress, ManyAccountsLoadWithinASmallMultipleOfTheFile) {
    const TempDir dir;
    const std::size_t count = kHugeFile / (toolText().size() + 1);
    writeInChild(dir, [&] { return manyAccounts(count); });
    const auto expected = sampleTool();
    const auto problems = loadInChild(dir, 12.0, [&](const LoadResult& r) {
        if (r.status != ReadStatus::ok) return "status " + describe(r.status);
        if (r.payload.tools.size() != count) return "kept " + std::to_string(r.payload.tools.size()) + " tools";
        if (r.payload.tools.front() != expected || r.payload.tools.back() != expected)
            return std::string("tools differ");
        if (!r.payload.showRemaining) return std::string("lost a key after the tools");
        return std::string();
    });
    EXPECT_EQ(problems, "");
}

// Measured near 4x: the file, and while parsing two buffers of the parser
// (the string's value and its raw text, kept for error messages) plus the
// document's copy. The record's copy is made after the parser is gone.
TEST(PayloadStress, OneHugeStringLoadsWithinASmallMultipleOfTheFile) {
    const TempDir dir;
    writeInChild(dir, [] {
        std::string doc = R"({"tools":[],"primarySparklineToolID":")";
        doc.append(kHugeFile, 'x');
        doc += R"(","showRemaining":true})";
        return doc;
    });
    const auto problems = loadInChild(dir, 6.0, [](const LoadResult& r) {
        if (r.status != ReadStatus::ok) return "status " + describe(r.status);
        if (!r.payload.primarySparklineToolID || r.payload.primarySparklineToolID->size() != kHugeFile)
            return std::string("the string was not kept whole");
        return std::string();
    });
    EXPECT_EQ(problems, "");
}

// Faults at the far end of a huge file still fail the whole document, and
// cleanly.
TEST(PayloadStress, AHugeFileBrokenAtItsEndFailsToDecode) {
    const struct {
        const char* name;
        std::string tail;
    } cases[] = {
        {"cut off", ""},
        {"invalid UTF-8 at the end", "\"\xff\"}"},
    };
    for (const auto& c : cases) {
        const TempDir dir;
        writeInChild(dir, [&] {
            std::string doc = R"({"tools":[],"note":")";
            doc.append(kHugeFile, 'y');
            doc += "\",\"more\":";
            return doc + c.tail;
        });
        const auto problems = loadInChild(dir, 6.0, [](const LoadResult& r) {
            if (r.status != ReadStatus::decodeFailed) return "status " + describe(r.status);
            if (r.payload != emptyPayload()) return std::string("payload is not the empty one");
            return std::string();
        });
        EXPECT_EQ(problems, "") << c.name;
    }
}

TEST(PayloadStress, AMillionLevelsOfNestingFailToDecodeWithoutCrashing) {
    constexpr std::size_t kDepth = 1'000'000;
    const struct {
        const char* name;
        std::string bytes;
        ReadStatus expected;
    } cases[] = {
        {"arrays", "{\"tools\":" + std::string(kDepth, '[') + std::string(kDepth, ']') + "}", ReadStatus::decodeFailed},
        {"arrays never closed", "{\"x\":" + std::string(kDepth, '['), ReadStatus::decodeFailed},
        {"arrays at the root", std::string(kDepth, '[') + std::string(kDepth, ']'), ReadStatus::decodeFailed},
        {"objects", [] {
             std::string doc;
             for (std::size_t i = 0; i < kDepth; ++i) doc += "{\"a\":";
             return doc + "1" + std::string(kDepth, '}');
         }(),
         ReadStatus::decodeFailed},
        {"brackets inside a string", "{\"x\":\"" + std::string(kDepth, '[') + "\",\"showRemaining\":true}",
         ReadStatus::ok},
    };
    for (const auto& c : cases) {
        const TempDir dir;
        dir.write(kPayloadFileName, c.bytes);
        const auto result = WidgetStore::load(dir.path());
        EXPECT_EQ(result.status, c.expected) << c.name;
        EXPECT_EQ(result.payload.showRemaining, c.expected == ReadStatus::ok) << c.name;
    }
}

// A snapshot with one value spliced in as raw text, so that numbers beyond
// what a json value can hold reach the parser as written.
std::string documentWith(const char* key, std::string_view literal) {
    auto tool = nlohmann::json::parse(toolText());
    tool[key] = "@@";
    std::string text = R"({"tools":[)" + tool.dump() + R"(],"enabledToolIDs":["claude"]})";
    text.replace(text.find("\"@@\""), 4, literal);
    return text;
}

// Decodes one snapshot whose `key` is written as `literal`: the snapshot, or
// nothing when it (and so `tools`) was refused.
std::optional<WidgetToolSnapshot> snapshotWith(const char* key, std::string_view literal) {
    const auto payload = decodePayload(documentWith(key, literal));
    if (!payload) throw std::runtime_error("the whole document failed");
    if (payload->enabledToolIDs != std::vector<std::string>{"claude"}) throw std::runtime_error("lost a root key");
    if (payload->tools.empty()) return std::nullopt;
    return payload->tools.front();
}

TEST(PayloadStress, IntTakesEvery64BitIntegerAndWholeFloatsWithinIt) {
    constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
    constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
    const struct {
        const char* literal;
        std::optional<std::int64_t> kept;  // nothing: the snapshot is refused
    } cases[] = {
        {"9223372036854775807", kMax},
        {"-9223372036854775808", kMin},
        {"9223372036854775808", std::nullopt},
        {"18446744073709551617", std::nullopt},  // 2^64 + 1
        {"-9223372036854775809", std::nullopt},  // -2^63 - 1, which rounds to -2^63 as a double
        {"-9223372036854776832", std::nullopt},  // the last that rounds there
        {"-9223372036854777856", std::nullopt},
        {"-9.223372036854775808e18", std::nullopt},  // whole, but indistinguishable from the above
        {"9.223372036854775807e18", std::nullopt},   // rounds up to 2^63
        {"3.0", 3},
        {"3e0", 3},
        {"30E-1", 3},
        {"-0.0", 0},
        {"1e18", 1'000'000'000'000'000'000},
        {"3.5", std::nullopt},
        {"1e-7", std::nullopt},
        {"9.3e18", std::nullopt},
    };
    for (const auto& c : cases) {
        const auto snapshot = snapshotWith("dangerLevel", c.literal);
        ASSERT_EQ(snapshot.has_value(), c.kept.has_value()) << c.literal;
        if (snapshot) {
            EXPECT_EQ(snapshot->dangerLevel, *c.kept) << c.literal;
        }
    }
}

TEST(PayloadStress, DoubleTakesEveryFiniteNumber) {
    const struct {
        const char* literal;
        double kept;
    } cases[] = {
        {"18446744073709551617", 18446744073709551617.0},
        {"-9223372036854775809", -9223372036854775809.0},
        {"1e308", 1e308},
        {"-1.7976931348623157e308", -1.7976931348623157e308},
        {"1e-400", 0},  // underflows to zero
        {"-0", 0},
        {"7", 7},
    };
    for (const auto& c : cases) {
        const auto snapshot = snapshotWith("usagePercent", c.literal);
        ASSERT_TRUE(snapshot) << c.literal;
        EXPECT_EQ(snapshot->usagePercent, c.kept) << c.literal;
    }
}

TEST(PayloadStress, RangeFaultsDeepInsideOnlyEmptyTheirRootKey) {
    const auto dashboardWith = [](std::string_view literal) {
        std::string text = R"({"showRemaining":true,"dashboards":{"claude":{"subscriptionType":"max",)"
                           R"("cards":[],"daily":[],"isRateLimited":false,"tokens":{"todayInput":1,)"
                           R"("todayOutput":1,"todayCache":1,"todayCost":0.5,"monthInput":1,"monthOutput":1,)"
                           R"("monthCache":1,"monthCost":2,"modelBreakdown":{"opus":@@}}}}})";
        text.replace(text.find("@@"), 2, literal);
        return text;
    };
    const auto fine = decodePayload(dashboardWith("12.0"));
    ASSERT_TRUE(fine);
    ASSERT_EQ(fine->dashboards.size(), 1u);
    EXPECT_EQ(fine->dashboards.at("claude").tokens->modelBreakdown.at("opus"), 12);
    for (const char* literal : {"18446744073709551617", "12.5", "\"12\"", "null"}) {
        const auto payload = decodePayload(dashboardWith(literal));
        ASSERT_TRUE(payload) << literal;
        EXPECT_TRUE(payload->dashboards.empty()) << literal;
        EXPECT_TRUE(payload->showRemaining) << literal;
    }
}

// Numbers past the double range are beyond what the parser accepts at all:
// the document fails, wherever the number stands.
TEST(PayloadStress, NumbersPastTheDoubleRangeFailTheDocument) {
    for (const std::string& literal : {std::string("1e400"), std::string("-1e400"), "1" + std::string(400, '0')}) {
        EXPECT_FALSE(decodePayload(documentWith("usagePercent", literal))) << literal;
        EXPECT_FALSE(decodePayload(R"({"unknown":)" + literal + "}")) << literal;
    }
}

TEST(PayloadStress, TextMustBeUTF8AnywhereInTheDocument) {
    const struct {
        const char* name;
        std::string bytes;
        std::optional<std::string> kept;  // the primary curve tool, when the document decodes
    } cases[] = {
        {"stray continuation byte", "{\"primarySparklineToolID\":\"a\x80\"}", std::nullopt},
        {"overlong slash", "{\"primarySparklineToolID\":\"\xc0\xaf\"}", std::nullopt},
        {"encoded surrogate", "{\"primarySparklineToolID\":\"\xed\xa0\x80\"}", std::nullopt},
        {"beyond U+10FFFF", "{\"primarySparklineToolID\":\"\xf4\x90\x80\x80\"}", std::nullopt},
        {"sequence cut short", "{\"primarySparklineToolID\":\"\xe2\x82\"}", std::nullopt},
        {"in a key", "{\"\xff\":1,\"primarySparklineToolID\":\"a\"}", std::nullopt},
        {"in an unknown key's value", "{\"x\":\"\xfe\",\"primarySparklineToolID\":\"a\"}", std::nullopt},
        {"lone escaped high surrogate", R"({"primarySparklineToolID":"\ud800"})", std::nullopt},
        {"lone escaped low surrogate", R"({"primarySparklineToolID":"\udc00x"})", std::nullopt},
        {"raw control character", "{\"primarySparklineToolID\":\"a\tb\"}", std::nullopt},
        {"escaped pair", R"({"primarySparklineToolID":"\ud83d\ude00"})", "\xf0\x9f\x98\x80"},
        {"escaped NUL", R"({"primarySparklineToolID":"a\u0000b"})", std::string("a\0b", 3)},
        {"two- and three-byte text", "{\"primarySparklineToolID\":\"\xc3\xa9\xe2\x82\xac\"}", "\xc3\xa9\xe2\x82\xac"},
        {"byte order mark", "\xef\xbb\xbf{\"primarySparklineToolID\":\"a\"}", "a"},
    };
    for (const auto& c : cases) {
        const auto payload = decodePayload(c.bytes);
        ASSERT_EQ(payload.has_value(), c.kept.has_value()) << c.name;
        if (payload) {
            EXPECT_EQ(payload->primarySparklineToolID, c.kept) << c.name;
        }
    }
}

// The application replaces the file by renaming a new one over it; loads that
// overlap a replacement see one document or the other, whole.
TEST(PayloadStress, LoadsDuringAtomicReplacementSeeTheOldOrTheNewDocument) {
    const auto bulky = [](Date at) {
        auto payload = samplePayload(at);
        const auto tools = payload.tools;
        for (int i = 0; i < 60; ++i) payload.tools.insert(payload.tools.end(), tools.begin(), tools.end());
        return payload;
    };
    const WidgetPayload versions[] = {bulky(kNow), bulky(kNow + 60)};
    const std::string texts[] = {encodePayload(versions[0]), encodePayload(versions[1])};
    ASSERT_GT(texts[0].size(), 3 * 65536u) << "big enough to take several reads";

    const TempDir dir;
    dir.write(kPayloadFileName, texts[0]);
    constexpr int kReaders = 2;
    constexpr int kLoadsEach = 25;
    std::atomic<int> readersDone{0};
    std::atomic<int> replacements{0};
    std::thread writer([&] {
        for (int i = 1; readersDone < kReaders; ++i) {
            dir.write("incoming.json", texts[i % 2]);
            std::filesystem::rename(dir / "incoming.json", dir / kPayloadFileName);
            ++replacements;
        }
    });
    std::vector<std::string> problems(kReaders);
    std::vector<std::thread> readers;
    for (int r = 0; r < kReaders; ++r) {
        readers.emplace_back([&, r] {
            for (int i = 0; i < kLoadsEach; ++i) {
                const auto result = WidgetStore::load(dir.path());
                if (result.status != ReadStatus::ok)
                    problems[r] += describe(result.status) + "; ";
                else if (result.payload != versions[0] && result.payload != versions[1])
                    problems[r] += "a mixed document; ";
            }
            ++readersDone;
        });
    }
    for (auto& reader : readers) reader.join();
    writer.join();
    for (const auto& p : problems) EXPECT_EQ(p, "");
    EXPECT_GT(replacements.load(), kReaders) << "the file was replaced while loads ran";
}

}  // namespace
}  // namespace mw
