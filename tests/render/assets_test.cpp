#include "render/assets.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "render/view.hpp"

namespace mw::render {
namespace {

TEST(Symbols, EveryNameWidgetsUseMapsToAShippedIcon) {
    const char* names[] = {"arrow.clockwise.circle", "exclamationmark.triangle", "eye.slash", "link",
                           "clock.arrow.circlepath", "arrow.clockwise", "gauge", "bolt", "clock", "calendar",
                           "chart.bar", "flame", "hourglass", "timer", "sparkles", "exclamationmark.octagon",
                           "person.crop.circle", "cpu", "dollarsign.circle"};
    for (const char* name : names) {
        const auto file = symbolFile(name);
        ASSERT_TRUE(file) << name;
        EXPECT_TRUE(std::filesystem::is_regular_file(assetDirectory() + "/" + std::string(*file))) << name;
    }
    EXPECT_EQ(symbolFile("bolt.fill"), symbolFile("bolt"));
    EXPECT_FALSE(symbolFile("no.such.symbol"));
    EXPECT_FALSE(symbolFile(""));
    EXPECT_TRUE(std::filesystem::is_regular_file(assetDirectory() + "/symbols/LICENSE"));
}

TEST(Assets, LookupTriesExtensionsAndRefusesEscapes) {
    EXPECT_TRUE(assetPath("symbols/link"));
    EXPECT_TRUE(assetPath("symbols/link.svg"));
    EXPECT_FALSE(assetPath("symbols/nothing-here"));
    EXPECT_FALSE(assetPath("../CMakeLists.txt"));
    EXPECT_FALSE(assetPath("/etc/passwd"));
    EXPECT_FALSE(assetPath(""));
}

TEST(Views, ModifiersReturnNewValuesAndLeaveTheOriginal) {
    const View circle = Circle();
    const View trimmed = circle.trim(0, 0.5);
    EXPECT_NE(&circle.node(), &trimmed.node());
    const View copy = trimmed;
    EXPECT_EQ(&copy.node(), &trimmed.node());  // copies share the node

    // Shape and image modifiers on other views change nothing.
    const View text = Text("x");
    EXPECT_EQ(&text.trim(0, 1).node(), &text.node());
    EXPECT_EQ(&text.resizable().node(), &text.node());

    // Modifiers on an empty view keep it empty, so stacks can still skip it.
    EXPECT_TRUE(View().padding(4).offset(1, 1).opacity(0.5).isEmpty());
    EXPECT_FALSE(View().frame(10, 10).isEmpty());  // a frame takes space
}

}  // namespace
}  // namespace mw::render
