#include "render/describe.hpp"

#include <gtest/gtest.h>

#include <numbers>

#include "render/fake_measurer.hpp"
#include "render/layout.hpp"

namespace mw::render {
namespace {

const testing::FakeMeasurer kMeasurer;

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

    EXPECT_EQ(j["size"], nlohmann::json::parse("[100,120]"));
    EXPECT_EQ(j["url"], "meterwick://open");
    const auto& nodes = j["nodes"];
    ASSERT_EQ(nodes.size(), 4u);

    EXPECT_EQ(nodes[0]["kind"], "text");
    EXPECT_EQ(nodes[0]["text"], "Usage");
    EXPECT_EQ(nodes[0]["frame"], nlohmann::json::parse("[0,0,30,14.4]"));
    EXPECT_EQ(nodes[0]["font"], nlohmann::json::parse(
                                    R"({"size":12,"weight":"bold","design":"default","monospacedDigits":false,"tracking":0})"));
    EXPECT_EQ(nodes[0]["color"], "#FFFFFF8C");

    EXPECT_EQ(nodes[1]["kind"], "link");
    EXPECT_EQ(nodes[1]["url"], "meterwick://tool/claude");
    EXPECT_EQ(nodes[1]["frame"], nlohmann::json::parse("[0,14.4,40,40]"));

    EXPECT_EQ(nodes[2]["kind"], "shape");
    EXPECT_EQ(nodes[2]["shape"], "circle");
    EXPECT_EQ(nodes[2]["paint"], "stroke");
    EXPECT_EQ(nodes[2]["trim"], nlohmann::json::parse("[0,0.25]"));
    EXPECT_EQ(nodes[2]["rotation"], -90);
    EXPECT_EQ(nodes[2]["stroke"]["cap"], "round");
    EXPECT_EQ(nodes[2]["stroke"]["lineWidth"], 9);
    EXPECT_EQ(nodes[2]["color"], "#FF0000FF");

    EXPECT_EQ(nodes[3]["kind"], "image");
    EXPECT_EQ(nodes[3]["symbol"], "link");
    EXPECT_EQ(nodes[3]["color"], "#FFFFFFD9");
}

TEST(Describe, MarksShrunkAndCutText) {
    const View v = Text("abcdefghij").font(Font::system(20)).lineLimit(1).minimumScaleFactor(0.5);
    const auto node = describe(layout(v, {40, 30}, kMeasurer))["nodes"][0];
    EXPECT_EQ(node["scale"], 0.5);
    EXPECT_EQ(node["truncated"], true);
    EXPECT_EQ(node["font"]["size"], 10);
    EXPECT_EQ(node["lineLimit"], 1);
}

}  // namespace
}  // namespace mw::render
