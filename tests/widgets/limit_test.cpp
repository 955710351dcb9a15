#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/choices.hpp"
#include "model/brand.hpp"
#include "model/fixtures.hpp"
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
using mw::testing::kFiveHours;
using mw::testing::kNow;
using mw::testing::kWeek;
using mw::testing::snapshot;
using mw::testing::window;

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
    auto s = snapshot(std::move(toolID), std::move(slug), std::move(windows));
    s.displayName = s.accountSlug ? s.toolID + " \u00B7 " + *s.accountSlug : s.toolID;
    return s;
}

WidgetPayload payloadOf(std::vector<WidgetToolSnapshot> tools) {
    auto p = mw::testing::payloadOf(std::move(tools));
    p.updatedAt = kNow - 60;
    return p;
}

AccountsLimitEntry entryOf(WidgetPayload payload, WidgetProviderChoice provider = allProvidersChoice(),
                           WidgetLimitChoice limit = WidgetLimitChoice::weekly,
                           WidgetPercentChoice percent = WidgetPercentChoice::left,
                           WidgetOrderChoice order = WidgetOrderChoice::mostRoom) {
    return AccountsLimitEntry{kNow, std::move(payload), ReadStatus::ok, std::move(provider), limit, percent, order};
}

DisplayList lay(const AccountsLimitEntry& entry, WidgetFamily family) {
    return render::layout(accountsLimitView(entry, family), contentSize(family), kMeasurer);
}

std::vector<std::string> texts(const DisplayList& list) {
    std::vector<std::string> out;
    for (const auto& op : list.ops)
        if (const auto* t = std::get_if<TextDraw>(&op.item)) out.push_back(t->text());
    return out;
}

bool hasText(const DisplayList& list, const std::string& text) {
    const auto all = texts(list);
    return std::find(all.begin(), all.end(), text) != all.end();
}

// The figures of the rows in paint order: the texts ending in "%" or the dash.
std::vector<std::string> figures(const DisplayList& list) {
    std::vector<std::string> out;
    for (const auto& text : texts(list))
        if (text == "\u2014" || (!text.empty() && text.back() == '%')) out.push_back(text);
    return out;
}

std::vector<std::string> rowURLs(const DisplayList& list) {
    std::vector<std::string> out;
    for (const auto& link : list.links) out.push_back(link.url);
    return out;
}

TEST(LimitBoard, TitleNamesTheLimitAndWhatIsShown) {
    EXPECT_EQ(limitBoardTitle(WidgetLimitChoice::weekly, WidgetPercentChoice::left), "Weekly room");
    EXPECT_EQ(limitBoardTitle(WidgetLimitChoice::fiveHour, WidgetPercentChoice::left), "5-hour room");
    EXPECT_EQ(limitBoardTitle(WidgetLimitChoice::weekly, WidgetPercentChoice::used), "Weekly used");
    EXPECT_EQ(limitBoardTitle(WidgetLimitChoice::fiveHour, WidgetPercentChoice::used), "5-hour used");
}

TEST(LimitBoard, HeaderCarriesTitleProviderNameAndAge) {
    const auto payload = payloadOf({account("claude", std::nullopt, 10, 20), account("codex", std::nullopt, 5, 5)});
    const auto all = lay(entryOf(payload, allProvidersChoice(), WidgetLimitChoice::fiveHour, WidgetPercentChoice::used),
                         WidgetFamily::systemMedium);
    EXPECT_TRUE(hasText(all, "5-hour used"));
    EXPECT_FALSE(hasText(all, "All providers"));

    const auto one = lay(entryOf(payload, {"claude", "Claude"}), WidgetFamily::systemLarge);
    EXPECT_TRUE(hasText(one, "Weekly room"));
    EXPECT_TRUE(hasText(one, "Claude"));

    // The title is 12 pt bold, like the Accounts board's.
    const TextDraw* title = render::testing::textNamed(one, "Weekly room");
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->runs.front().style.font, render::Font::system(12, render::Weight::bold));

    // Fresh data shows no age; five minutes old shows it.
    EXPECT_FALSE(hasText(one, "1m ago"));
    auto old = payload;
    old.updatedAt = kNow - 300;
    EXPECT_TRUE(hasText(lay(entryOf(old), WidgetFamily::systemMedium), "5m ago"));
}

TEST(LimitBoard, RowsRankByRoomLeftWithMissingWindowsLastAndDashed) {
    const auto payload = payloadOf({
        account("a", std::nullopt, 10, 80),   // 20 left
        account("b", std::nullopt, 10, -1),   // no weekly window
        account("c", std::nullopt, 10, 42.5), // 57.5 left
        account("d", std::nullopt, 10, 130),  // over the limit: 0 left
    });
    for (const auto family : {WidgetFamily::systemMedium, WidgetFamily::systemLarge, WidgetFamily::systemExtraLarge}) {
        const auto left = lay(entryOf(payload), family);
        EXPECT_EQ(figures(left), (std::vector<std::string>{"57%", "20%", "0%", "\u2014"}));
        EXPECT_EQ(rowURLs(left), (std::vector<std::string>{"meterwick://tool/c", "meterwick://tool/a",
                                                           "meterwick://tool/d", "meterwick://tool/b"}));
    }
    // Percent used keeps the ranking by room and prints the use (truncated).
    const auto used = lay(entryOf(payload, allProvidersChoice(), WidgetLimitChoice::weekly, WidgetPercentChoice::used),
                          WidgetFamily::systemMedium);
    EXPECT_EQ(figures(used), (std::vector<std::string>{"42%", "80%", "130%", "\u2014"}));

    // The app's order is the account order as it stands.
    const auto app = lay(entryOf(payload, allProvidersChoice(), WidgetLimitChoice::weekly, WidgetPercentChoice::left,
                                 WidgetOrderChoice::app),
                         WidgetFamily::systemMedium);
    EXPECT_EQ(figures(app), (std::vector<std::string>{"20%", "\u2014", "57%", "0%"}));
}

TEST(LimitBoard, RowWithoutTheWindowHasNoResetAndAnEmptyTrack) {
    const auto payload = payloadOf({account("b", std::nullopt, 10, -1), account("a", std::nullopt, 10, 50)});
    const auto list = lay(entryOf(payload), WidgetFamily::systemLarge);
    // b comes last, and after its dash nothing: no reset countdown.
    EXPECT_TRUE(hasText(list, "2d 1h"));
    EXPECT_EQ(texts(list).back(), "\u2014");
    const TextDraw* dash = render::testing::textNamed(list, "\u2014");
    ASSERT_NE(dash, nullptr);
    EXPECT_EQ(dash->color, render::Color::tertiary());
}

TEST(LimitBoard, FigureTakesTheWindowsFillColour) {
    const auto tool = account("a", std::nullopt, 95, 10);  // a short window at 95 %: danger
    const auto list = lay(entryOf(payloadOf({tool}), allProvidersChoice(), WidgetLimitChoice::fiveHour),
                          WidgetFamily::systemMedium);
    const TextDraw* figure = render::testing::textNamed(list, "5%");
    ASSERT_NE(figure, nullptr);
    EXPECT_EQ(figure->color, toRender(dangerRed()));
    EXPECT_EQ(figure->color, toRender(fillColor(tool.windows->front(), toolColor(tool), kNow)));
}

TEST(LimitBoard, ProviderChoiceFiltersRows) {
    const auto payload = payloadOf({account("claude", std::nullopt, 10, 20), account("codex", std::nullopt, 5, 5),
                                    account("claude", "work", 10, 60)});
    const auto list = lay(entryOf(payload, {"claude", "Claude"}), WidgetFamily::systemLarge);
    EXPECT_EQ(rowURLs(list),
              (std::vector<std::string>{"meterwick://tool/claude", "meterwick://tool/claude:work"}));
    EXPECT_TRUE(hasText(list, "work"));  // the account title beside the provider title
}

TEST(LimitBoard, RowCapsPerFamilyWithOverflowNote) {
    const struct {
        WidgetFamily family;
        std::size_t accounts;
        std::size_t rows;
    } cases[] = {
        {WidgetFamily::systemMedium, 5, 5},       {WidgetFamily::systemMedium, 6, 4},
        {WidgetFamily::systemLarge, 7, 7},        {WidgetFamily::systemLarge, 8, 6},
        {WidgetFamily::systemExtraLarge, 12, 12}, {WidgetFamily::systemExtraLarge, 13, 11},
        {WidgetFamily::systemExtraLarge, 40, 11},
    };
    for (const auto& c : cases) {
        std::vector<WidgetToolSnapshot> tools;
        for (std::size_t i = 0; i < c.accounts; ++i)
            tools.push_back(account("t", "a" + std::to_string(i), 10, static_cast<double>(i)));
        const auto list = lay(entryOf(payloadOf(tools)), c.family);
        const auto size = contentSize(c.family);
        EXPECT_EQ(list.links.size(), c.rows) << rawValue(c.family) << " " << c.accounts;
        const std::string note = "+" + std::to_string(c.accounts - c.rows) + " more";
        EXPECT_EQ(hasText(list, note), c.accounts > c.rows) << note;
        // Every shown row lies inside the content area.
        for (const auto& link : list.links) {
            EXPECT_LE(link.rect.maxY(), size.height + 1e-6) << rawValue(c.family) << " " << c.accounts;
            EXPECT_LE(link.rect.maxX(), size.width + 1e-6);
        }
    }
}

TEST(LimitView, DrawsThePanelInPlaceOfTheBoard) {
    auto stale = payloadOf({account("claude", std::nullopt, 10, 20)});
    stale.updatedAt = kNow - 1800;
    const auto list = lay(entryOf(stale), WidgetFamily::systemMedium);
    EXPECT_TRUE(hasText(list, "Open Meterwick"));
    EXPECT_TRUE(list.links.empty());

    // Accounts, but none with the chosen window: the panel, not a board of dashes.
    const auto noWeekly = entryOf(payloadOf({account("claude", std::nullopt, 10, -1)}), {"claude", "Claude"});
    EXPECT_TRUE(hasText(lay(noWeekly, WidgetFamily::systemLarge), "No Claude accounts yet"));
}

}  // namespace
}  // namespace mw
