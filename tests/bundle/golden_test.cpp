// Every widget in every family, laid out with the real fonts on a handful of
// payloads, compared with the `describe` files under tests/golden. Each node
// sits on a line of its own, so a diff names the frame or text that moved.
// MW_UPDATE_SNAPSHOTS=1 rewrites the files.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "bundle/bundle.hpp"
#include "bundle/widget_view.hpp"
#include "platform/date.hpp"
#include "render/cairo/text.hpp"
#include "render/describe.hpp"
#include "support/temp_dir.hpp"

namespace mw {
namespace {

namespace fs = std::filesystem;

const fs::path kGoldenDir = MW_GOLDEN_DIR;
// The fixtures' dates are written for this moment.
constexpr const char* kNow = "2026-11-22T12:00:00Z";

bool updating() {
    const char* update = std::getenv("MW_UPDATE_SNAPSHOTS");
    return update && std::string(update) == "1";
}

// The describe document with one node per line.
std::string goldenText(const nlohmann::json& document) {
    std::string out = "{\"size\": " + document["size"].dump() + ", \"url\": " + document["url"].dump() +
                      ", \"nodes\": [\n";
    const auto& nodes = document["nodes"];
    for (std::size_t i = 0; i < nodes.size(); ++i) out += nodes[i].dump() + (i + 1 < nodes.size() ? ",\n" : "\n");
    return out + "]}\n";
}

std::string firstDifference(const std::string& expected, const std::string& actual) {
    std::istringstream e(expected), a(actual);
    std::string el, al;
    for (int line = 1;; ++line) {
        const bool moreE = static_cast<bool>(std::getline(e, el));
        const bool moreA = static_cast<bool>(std::getline(a, al));
        if (!moreE && !moreA) return {};
        if (el != al || moreE != moreA)
            return "line " + std::to_string(line) + "\n  expected: " + el + "\n  actual:   " + al;
    }
}

struct Variant {
    std::string suffix;
    IntentParameters parameters;
};

std::vector<Variant> variantsOf(std::string_view kindWord) {
    if (kindWord == "focus") return {{"", {}}, {"-enhanced", {{"style", "enhanced"}}}};
    if (kindWord == "accounts-limit") return {{"", {}}, {"-5h-used", {{"limit", "fiveHour"}, {"percent", "used"}}}};
    return {{"", {}}};
}

// A figure: a whole percent, signed or not; and what is left of one that
// was cut ("10…").
const std::regex kFigure(R"(^(\+|\xE2\x88\x92|-)?[0-9]+%( left)?$)");
const std::regex kCutFigure(R"(^(\+|\xE2\x88\x92|-)?[0-9]+%?\xE2\x80\xA6$)");

class Golden : public ::testing::TestWithParam<std::string> {};

TEST_P(Golden, EveryWidgetAndFamilyMatchesItsDescribeFile) {
    const std::string payload = GetParam();
    testing::TempDir container;
    fs::copy_file(kGoldenDir / "payloads" / (payload + ".json"), container / "widget-payload.json");
    const ProviderContext context{container.path(), *parseISO8601(kNow), BundleInfo{"golden", "/golden"}};

    for (const auto& widget : widgetDeclarations()) {
        for (const auto& variant : variantsOf(widget.kindWord)) {
            const auto timeline = widget.timeline(context, variant.parameters);
            for (const auto family : widget.families) {
                const std::string name =
                    std::string(widget.kindWord) + variant.suffix + "-" + std::string(rawValue(family)) + ".json";
                const auto list = layoutWidget(timeline.entries.front(), family, render::systemTextMeasurer());
                const auto document = render::describe(list, render::Appearance::light);

                // No figure is cut, nor drawn below its set size. The one
                // exception is the enhanced card's ring centre (a number and a
                // smaller "%" in one text): three digits at 15 pt overfill its
                // 35-pt frame, and the card is designed to let them shrink.
                for (const auto& node : document["nodes"]) {
                    if (node["kind"] != "text") continue;
                    EXPECT_FALSE(std::regex_match(node.value("text", ""), kCutFigure))
                        << payload << "/" << name << ": " << node.dump();
                    if (!std::regex_match(node.value("text", ""), kFigure)) continue;
                    EXPECT_FALSE(node.value("truncated", false)) << payload << "/" << name << ": " << node.dump();
                    if (node.contains("runs") && node["runs"].size() == 2) continue;
                    EXPECT_GE(node.value("scale", 1.0), 1.0) << payload << "/" << name << ": " << node.dump();
                }

                const fs::path path = kGoldenDir / payload / name;
                const std::string actual = goldenText(document);
                if (updating()) {
                    fs::create_directories(path.parent_path());
                    std::ofstream(path, std::ios::binary) << actual;
                    continue;
                }
                const std::string expected = testing::readFile(path);
                ASSERT_FALSE(expected.empty()) << "missing " << path << " (MW_UPDATE_SNAPSHOTS=1 writes it)";
                EXPECT_TRUE(expected == actual) << path << " differs at " << firstDifference(expected, actual);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Payloads, Golden,
                         ::testing::Values("sample", "one-account", "thirteen-accounts", "long-names",
                                           "extreme-percents"),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
}  // namespace mw
