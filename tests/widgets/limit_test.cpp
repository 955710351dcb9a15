#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/choices.hpp"
#include "model/brand.hpp"
#include "support/display_list.hpp"
#include "support/payloads.hpp"
#include "model/pace.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/limit/board.hpp"
#include "widgets/limit/content.hpp"
#include "widgets/limit/view.hpp"

namespace mw {
namespace {

using render::DisplayList;
using render::TextDraw;
using testing::textNamed;
using mw::testing::kFiveHours;
using mw::testing::hasText;
using mw::testing::texts;
using mw::testing::kNow;
using mw::testing::kWeek;
using mw::testing::tool;
using mw::testing::window;
using Texts = std::vector<std::string>;
constexpr auto M = WidgetFamily::systemMedium, L = WidgetFamily::systemLarge, XL = WidgetFamily::systemExtraLarge;
constexpr auto kWeekly = WidgetLimitChoice::weekly, kFiveHour = WidgetLimitChoice::fiveHour;
constexpr auto kLeft = WidgetPercentChoice::left, kUsed = WidgetPercentChoice::used;
const std::string kDash = "\u2014";

const render::testing::FakeMeasurer kMeasurer;

// The content area of each family (the widget less its 16 pt margins).
render::Size contentSize(WidgetFamily family) {
    const auto size = widgetSize(family);
    return {size.width - 32, size.height - 32};
}

// An account with a 5-hour and a weekly window at the given percents used;
// a negative percent leaves that window out.
WidgetToolSnapshot account(std::string toolID, std::optional<std::string> slug, double fiveHour, double weekly) {
    std::vector<WidgetUsageWindow> windows;
    if (fiveHour >= 0) windows.push_back(window("5h", fiveHour, 3600, kFiveHours));
    if (weekly >= 0) windows.push_back(window("Week", weekly, 2 * 86400 + 3600, kWeek));
    auto s = tool(std::move(toolID), std::move(slug), std::move(windows));
    s.displayName = s.accountSlug ? s.toolID + " \u00B7 " + *s.accountSlug : s.toolID;
    return s;
}

// Written a minute before kNow.
WidgetPayload payloadOf(std::vector<WidgetToolSnapshot> tools) {
    auto p = mw::testing::payloadOf(std::move(tools));
    p.updatedAt = kNow - 60;
    return p;
}

DisplayList lay(WidgetPayload payload, WidgetFamily family, WidgetProviderChoice provider = allProvidersChoice(),
                WidgetLimitChoice limit = kWeekly, WidgetPercentChoice percent = kLeft,
                WidgetOrderChoice order = WidgetOrderChoice::mostRoom) {
    const AccountsLimitEntry entry{kNow, std::move(payload), ReadStatus::ok, std::move(provider), limit, percent, order};
    return render::layout(accountsLimitView(entry, family), contentSize(family), kMeasurer);
}



// The figures of the rows in paint order: the texts ending in "%" or the dash.
Texts figures(const DisplayList& list) {
    Texts out;
    for (const auto& text : texts(list))
        if (text == kDash || (!text.empty() && text.back() == '%' && !text.starts_with("Under pace") &&
                              !text.starts_with("Over pace")))
            out.push_back(text);
    return out;
}

Texts rowURLs(const DisplayList& list) {
    Texts out;
    for (const auto& link : list.links) out.push_back(link.url);
    return out;
}

TEST(LimitBoard, HeaderCarriesTitleAndProviderName) {
    EXPECT_EQ(limitBoardTitle(kWeekly, kLeft), "Weekly room");
    EXPECT_EQ(limitBoardTitle(kFiveHour, kLeft), "5-hour room");
    EXPECT_EQ(limitBoardTitle(kWeekly, kUsed), "Weekly used");
    EXPECT_EQ(limitBoardTitle(kFiveHour, kUsed), "5-hour used");

    // All providers' boards are in the golden describe files; one names its provider.
    auto payload = payloadOf({account("claude", std::nullopt, 10, 20), account("codex", std::nullopt, 5, 5)});
    const auto one = lay(payload, L, {"claude", "Claude"});
    EXPECT_TRUE(hasText(one, "Claude"));
    EXPECT_TRUE(hasText(one, "Weekly room"));
}

TEST(LimitBoard, RowsRankByRoomLeftWithMissingWindowsLastAndDashed) {
    const auto payload = payloadOf({
        account("a", std::nullopt, 10, 80),    // 20 left
        account("b", std::nullopt, 10, -1),    // no weekly window
        account("c", std::nullopt, 10, 42.5),  // 57.5 left
        account("d", std::nullopt, 10, 130),   // over the limit: 0 left
    });
    // The ranking itself is the model's; here the rows draw it in order.
    const auto list = lay(payload, L);
    EXPECT_EQ(figures(list), (Texts{"57%", "20%", "0%", kDash}));
    EXPECT_EQ(rowURLs(list), (Texts{"meterwick://tool/c", "meterwick://tool/a", "meterwick://tool/d",
                                    "meterwick://tool/b"}));
    // Percent used prints the use, truncated.
    EXPECT_EQ(figures(lay(payload, M, allProvidersChoice(), kWeekly, kUsed)), (Texts{"42%", "80%", "130%", kDash}));

    // The windowless row comes last, dashed, with no reset countdown after it.
    EXPECT_TRUE(hasText(list, "2d 1h"));
    EXPECT_EQ(texts(list).back(), kDash);
    EXPECT_EQ(textNamed(list, kDash)->color, Color::tertiary());
}

// A short window at 95 %: danger, though the figure is the 5 % left. Which
// rows a provider keeps is the model's LimitBoard test.
TEST(LimitBoard, FigureTakesTheWindowsFillColour) {
    const auto danger = lay(payloadOf({account("a", std::nullopt, 95, 10)}), M, allProvidersChoice(), kFiveHour);
    ASSERT_NE(textNamed(danger, "5%"), nullptr);
    EXPECT_EQ(textNamed(danger, "5%")->color, dangerRed());
}

TEST(LimitBoard, RowCapsPerFamilyWithOverflowNote) {
    const struct {
        WidgetFamily family;
        std::size_t accounts, rows;
    } cases[] = {{M, 5, 5}, {M, 6, 4}, {L, 8, 6}, {XL, 40, 11}};  // the caps themselves: AccountsBoard's tests
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(rawValue(c.family)) + " with " + std::to_string(c.accounts));
        std::vector<WidgetToolSnapshot> tools;
        for (std::size_t i = 0; i < c.accounts; ++i)
            tools.push_back(account("t", "a" + std::to_string(i), 10, static_cast<double>(i)));
        const auto list = lay(payloadOf(tools), c.family);
        EXPECT_EQ(list.links.size(), c.rows);
        EXPECT_EQ(hasText(list, "+" + std::to_string(c.accounts - c.rows) + " more"), c.accounts > c.rows);
        for (const auto& link : list.links) {  // every shown row lies inside the content area
            EXPECT_LE(link.rect.maxY(), contentSize(c.family).height + 1e-6);
            EXPECT_LE(link.rect.maxX(), contentSize(c.family).width + 1e-6);
        }
    }
}

TEST(LimitView, DrawsThePanelInPlaceOfTheBoard) {
    auto stale = payloadOf({account("claude", std::nullopt, 10, 20)});
    stale.updatedAt = kNow - 1800;
    const auto list = lay(stale, M);
    EXPECT_TRUE(hasText(list, "Open Meterwick"));
    EXPECT_TRUE(list.links.empty());
    // Accounts, but none with the chosen window: the panel, not a board of dashes.
    EXPECT_TRUE(hasText(lay(payloadOf({account("claude", std::nullopt, 10, -1)}), L, {"claude", "Claude"}),
                        "No Claude accounts yet"));
}

}  // namespace
}  // namespace mw
