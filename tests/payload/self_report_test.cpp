#include "payload/self_report.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/temp_dir.hpp"

namespace mw {
namespace {

using testing::TempDir;

const Date kNow = *parseISO8601("2026-11-22T10:00:00Z");
const BundleInfo kBundle{"1.2.3", "/opt/meterwick/lib"};

std::vector<std::string> keysOf(const std::string& text) {
    std::vector<std::string> keys;
    const auto object = nlohmann::ordered_json::parse(text);
    for (auto it = object.begin(); it != object.end(); ++it) keys.push_back(it.key());
    return keys;
}

TEST(SelfReport, WritesEveryKeyInOrderCompactly) {
    WidgetPayload payload;
    payload.updatedAt = kNow - 60;
    const auto text =
        encodeSelfReport(makeSelfReport("accounts-limit", ReadStatus::ok, payload, "claude:work", kNow, kBundle));
    EXPECT_EQ(text,
              R"({"recordedAt":"2026-11-22T10:00:00Z","bundleVersion":"1.2.3","bundlePath":"/opt/meterwick/lib",)"
              R"("kind":"accounts-limit","payloadReadStatus":"ok","payloadUpdatedAt":"2026-11-22T09:59:00Z",)"
              R"("resolvedToolID":"claude:work"})");
}

TEST(SelfReport, OmitsAbsentValuesAndNamesUnknownVersions) {
    const auto text = encodeSelfReport(makeSelfReport("focus", ReadStatus::decodeFailed, emptyPayload(),
                                                      std::nullopt, kNow, BundleInfo{std::nullopt, "/x"}));
    EXPECT_EQ(keysOf(text), (std::vector<std::string>{"recordedAt", "bundleVersion", "bundlePath", "kind",
                                                      "payloadReadStatus"}));
    EXPECT_EQ(nlohmann::json::parse(text)["bundleVersion"], "unknown");
    EXPECT_EQ(nlohmann::json::parse(text)["payloadReadStatus"], "decodeFailed");
}

TEST(SelfReport, FailuresAreSilent) {
    TempDir dir;
    // No container: nothing anywhere.
    writeSelfReport(std::nullopt, "focus", ReadStatus::noContainer, emptyPayload(), std::nullopt, kNow, kBundle);
    // A container that vanished, and text that is not UTF-8.
    writeSelfReport(dir / "gone", "focus", ReadStatus::ok, emptyPayload(), std::nullopt, kNow, kBundle);
    writeSelfReport(dir.path(), "focus", ReadStatus::ok, emptyPayload(), std::nullopt, kNow,
                    BundleInfo{"1", "/bad\xff"});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 0);
}

}  // namespace
}  // namespace mw
