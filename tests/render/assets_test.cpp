#include "render/assets.hpp"

#include <gtest/gtest.h>

#include <filesystem>

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

}  // namespace
}  // namespace mw::render
