#include "model/brand.hpp"

#include <gtest/gtest.h>

#include "support/payloads.hpp"

namespace mw {
namespace {

Color bytes(int r, int g, int b) { return Color::legible(r / 255.0, g / 255.0, b / 255.0); }

TEST(ColorFromHex, TrimsDropsOneHashThenNeedsSixHexCharacters) {
    struct Case {
        const char* text;
        std::optional<Color> color;
    };
    const Case cases[] = {
        {" #d97757\n", bytes(217, 119, 87)},
        {"D97757", bytes(217, 119, 87)},
        {"\t\r\n000000 \n", bytes(0, 0, 0)},
        {"\u00A0ffffff\u3000", bytes(255, 255, 255)},  // Unicode spaces trim too
        {"+ABCDE", bytes(0x0A, 0xBC, 0xDE)},            // six characters, and a plus sign is allowed
        {"#+ABCDE", bytes(0x0A, 0xBC, 0xDE)},
        {"-ABCDE", std::nullopt},                        // no sign for an unsigned number
        {"++ABCD", std::nullopt},
        {"#D9775", std::nullopt},
        {"D9775G", std::nullopt},
        {"D977570", std::nullopt},
        {"##D97757", std::nullopt},                      // only one hash is dropped
        {"D97 57", std::nullopt},
        {"   ", std::nullopt},
        {"D9775\u00E9", std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(colorFromHex(c.text), c.color) << c.text;
}

TEST(BrandColors, BuiltInTableMatchesWholeToolIDsExactly) {
    EXPECT_EQ(brandHexText("claude"), "D97757");
    EXPECT_EQ(brandHexText("opencode"), "FF8A4C");
    for (const char* other : {"Claude", "claude-work", ""}) EXPECT_EQ(brandHexText(other), "6B7280") << other;
}

TEST(BrandColors, ToolColorFallsBackToTheBuiltInBrand) {
    auto s = testing::tool("codex");
    s.brandHex = "#FF0000";
    EXPECT_EQ(toolColor(s), bytes(255, 0, 0));
    s.brandHex = "";
    EXPECT_EQ(toolColor(s), bytes(16, 163, 127));
    s.brandHex = "not a colour";
    s.toolID = "claude-work";
    EXPECT_EQ(toolColor(s), bytes(107, 114, 128));
}

}  // namespace
}  // namespace mw
