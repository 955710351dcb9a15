#include "render/describe.hpp"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <numbers>

#include "render/fake_measurer.hpp"
#include "render/layout.hpp"

namespace mw::render {
namespace {

using nlohmann::json;

const testing::FakeMeasurer kMeasurer;

// Every key of `expected` is in `actual` with the same value; objects are
// compared the same way, key by key.
void expectHas(const json& actual, const json& expected, const std::string& where = "") {
    for (const auto& [key, value] : expected.items()) {
        ASSERT_TRUE(actual.contains(key)) << where << key;
        if (value.is_object()) {
            expectHas(actual[key], value, where + key + ".");
        } else {
            EXPECT_EQ(actual[key], value) << where << key;
        }
    }
}

TEST(Describe, DumpsDrawnNodesInPaintOrder) {
    const View v =
        VStack({Text("Usage").font(Font::system(12, Weight::bold)).foreground(Color::secondary()),
                Circle()
                    .trim(0, 0.25)
                    .stroke(Color::rgb(1, 0, 0), StrokeStyle{.lineWidth = 9, .cap = LineCap::round})
                    .rotation(-std::numbers::pi / 2)
                    .frame(40, 40)
                    .link("meterwick://tool/claude"),
                Image::system("link").font(Font::system(10))},
               {.alignment = HAlign::leading, .spacing = 0})
            .frame(Frame::maxInfinity(Alignment::topLeading()))
            .widgetURL("meterwick://open");
    const auto j = describe(layout(v, {100, 120}, kMeasurer), Appearance::dark);

    expectHas(j, json::parse(R"({"size": [100, 120], "url": "meterwick://open"})"));
    const auto& nodes = j["nodes"];
    ASSERT_EQ(nodes.size(), 4u);
    expectHas(nodes[0], json::parse(R"({"kind": "text", "text": "Usage", "frame": [0, 0, 30, 14.4],
        "font": {"size": 12, "weight": "bold", "design": "default", "monospacedDigits": false, "tracking": 0},
        "color": "#FFFFFF9E"})"));
    EXPECT_EQ(nodes[0]["font"].size(), 5u);
    expectHas(nodes[1],
              json::parse(R"({"kind": "link", "url": "meterwick://tool/claude", "frame": [0, 14.4, 40, 40]})"));
    expectHas(nodes[2], json::parse(R"({"kind": "shape", "shape": "circle", "paint": "stroke", "trim": [0, 0.25],
        "rotation": -90, "stroke": {"cap": "round", "lineWidth": 9}, "color": "#FF0000FF"})"));
    expectHas(nodes[3], json::parse(R"({"kind": "image", "symbol": "link", "color": "#FFFFFFD9"})"));
}

TEST(Describe, MarksShrunkAndCutText) {
    const View v = Text("abcdefghij").font(Font::system(20)).lineLimit(1).minimumScaleFactor(0.5);
    expectHas(describe(layout(v, {40, 30}, kMeasurer))["nodes"][0],
              json::parse(R"({"scale": 0.5, "truncated": true, "font": {"size": 10}, "lineLimit": 1})"));
}

}  // namespace
}  // namespace mw::render
