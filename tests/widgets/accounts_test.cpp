// The Accounts widget: panels from a real payload file, the board's caps,
// overflow note, insight budget, data-age mark, row links and row contents.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/display_list.hpp"
#include "support/payloads.hpp"
#include "model/insights.hpp"
#include "model/pace.hpp"
#include "payload/codec.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"
#include "support/temp_dir.hpp"
#include "widgets/accounts/kind.hpp"
#include "widgets/accounts/board.hpp"
#include "widgets/accounts/rows.hpp"
#include "widgets/accounts/view.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {
namespace {

using render::DisplayList;
using render::TextDraw;
using testing::account;
using testing::kFiveHours;
using testing::kNow;
using testing::kWeek;
using testing::pacedWindow;
using testing::tool;
using testing::window;
using Texts = std::vector<std::string>;
constexpr auto S = WidgetFamily::systemSmall, M = WidgetFamily::systemMedium, L = WidgetFamily::systemLarge,
               XL = WidgetFamily::systemExtraLarge;

const render::testing::FakeMeasurer kMeasurer;

render::Size contentSize(WidgetFamily family) {
    const auto size = widgetSize(family);
    return {size.width - 32, size.height - 32};
}

DisplayList draw(const render::View& view, WidgetFamily family) {
    return render::layout(view, contentSize(family), kMeasurer);
}

// The drawn texts, less the one-letter initials of tools drawn without a logo.
Texts textsOf(const DisplayList& list) {
    auto out = testing::texts(list);
    std::erase_if(out, [](const std::string& text) { return text.size() <= 1; });
    return out;
}

std::size_t countOf(const Texts& texts, const std::string& text) {
    return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text));
}

// How many texts show `line`, whole or cut short with an ellipsis.
std::size_t shownCount(const Texts& texts, const std::string& line) {
    const std::string ellipsis = "\u2026";
    return static_cast<std::size_t>(std::count_if(texts.begin(), texts.end(), [&](const std::string& text) {
        if (text == line) return true;
        if (text.size() <= ellipsis.size() || !text.ends_with(ellipsis)) return false;
        return line.starts_with(text.substr(0, text.size() - ellipsis.size()));
    }));
}

// `n` accounts, each with a 5-hour window burning fast enough to run out and
// a weekly window, so every account has insight lines to offer.
AccountsBoard board(std::size_t n, WidgetFamily family, double age = 10) {
    std::vector<WidgetAccount> accounts;
    for (std::size_t i = 0; i < n; ++i) {
        accounts.push_back(account(tool(
            "tool" + std::to_string(i), std::nullopt,
            std::vector{pacedWindow("5h", 50, kFiveHours, 0.2), pacedWindow("Week", 30 + double(i), kWeek, 0.5)})));
    }
    return {accounts, family, kNow, kNow - age, false};
}

// End to end, from the container to the drawing.
TEST(AccountsWidgetView, PanelsFromThePayloadFile) {
    auto payload = testing::payloadOf({tool("claude", std::nullopt, std::vector{window("5h", 10)})});
    payload.updatedAt = kNow - 1799;
    auto stale = payload;
    stale.updatedAt = kNow - 1800;
    const struct {
        const char* name;
        std::optional<std::string> file;  // nothing: no container at all
        std::string title, symbol;
    } cases[] = {
        {"no container", std::nullopt, "Can't read widget data", "exclamationmark.triangle"},
        {"decode failed", "not json", "Widget data unreadable", "exclamationmark.triangle"},
        {"stale with accounts", encodePayload(stale), "Open Meterwick", "arrow.clockwise.circle"},
        {"fresh: the board", encodePayload(payload), "Usage", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        testing::TempDir dir;
        if (c.file) dir.write(kPayloadFileName, *c.file);
        ProviderContext context{c.file ? std::optional(dir.path()) : std::nullopt, kNow, {}};
        const auto list = draw(accountsWidgetView(AccountsProvider::snapshot(context), L), L);
        EXPECT_NE(testing::textNamed(list, c.title), nullptr);
        const auto symbols = testing::opsOf(list, [&](const render::DrawOp& op) {
            const auto* image = std::get_if<render::ImageDraw>(&op.item);
            return image && image->name == c.symbol;
        });
        EXPECT_EQ(symbols.size(), c.symbol.empty() ? 0u : 1u);
    }
}

TEST(AccountsBoard, RowCapsOverflowNoteAndInsightBudget) {
    const struct {
        WidgetFamily family;
        std::size_t accounts, rows;
        std::string note;  // empty: none
        std::size_t insightLines;
    } cases[] = {
        {M, 5, 5, "", 0},        {M, 6, 4, "+2 more", 0},  {L, 4, 4, "", 3},  {L, 6, 6, "", 2},
        {L, 7, 7, "", 0},        {L, 8, 6, "+2 more", 2},  {XL, 12, 12, "", 3}, {XL, 13, 11, "+2 more", 3},
        {S, 1, 1, "", 3},        {S, 2, 0, "+2 more", 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(rawValue(c.family)) + " with " + std::to_string(c.accounts));
        const AccountsBoard b = board(c.accounts, c.family);
        const auto list = draw(body(b), c.family);
        const auto texts = textsOf(list);
        EXPECT_EQ(list.links.size(), c.rows);
        EXPECT_EQ(countOf(texts, "Usage"), c.family == M ? 0u : 1u);
        // Medium has only the trailing group; the other sizes repeat it after the title.
        const auto notes = std::ranges::count_if(texts, [](const std::string& t) { return t.ends_with(" more"); });
        EXPECT_EQ(notes, c.note.empty() ? 0 : c.family == M ? 1 : 2);
        if (!c.note.empty()) {
            EXPECT_EQ(countOf(texts, c.note), static_cast<std::size_t>(notes));
            const auto* last = testing::opsOf(list, [&](const render::DrawOp& op) {
                const auto* t = std::get_if<TextDraw>(&op.item);
                return t && t->text() == c.note;
            }).back();
            // The last one sits at the right edge.
            EXPECT_NEAR(last->frame.maxX(), contentSize(c.family).width, 1e-6);
        }
        const auto lines = insights(b.accounts, b.now);
        ASSERT_GE(lines.size(), c.insightLines);
        for (std::size_t i = 0; i < lines.size() && i <= c.insightLines; ++i)
            EXPECT_EQ(shownCount(texts, lines[i].text), i < c.insightLines ? 1u : 0u) << lines[i].text;
    }
}

TEST(AccountsBoard, DataAgeShowsFromFiveMinutes) {
    for (const auto family : {M, L}) {
        const auto young = textsOf(draw(body(board(2, family, 299)), family));
        EXPECT_EQ(countOf(young, "4m ago") + countOf(young, "Live"), 0u);
        EXPECT_EQ(countOf(textsOf(draw(body(board(2, family, 300)), family)), "5m ago"), 1u);
    }
    // Hidden rows bring the trailing group, but fresh data still shows no age.
    const auto hidden = textsOf(draw(body(board(6, M, 30)), M));
    EXPECT_EQ(countOf(hidden, "+2 more"), 1u);
    EXPECT_EQ(countOf(hidden, "Live"), 0u);
}

TEST(AccountRows, PercentText) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [used, usedText, leftText] : {std::tuple{62.9, "62%", "37%"}, {140.0, "140%", "0%"},
                                                   {-5.0, "0%", "100%"}, {1500.0, "999%", "0%"}, {nan, "0%", "0%"}}) {
        EXPECT_EQ(percentText(window("5h", used), false), usedText) << used;
        EXPECT_EQ(percentText(window("5h", used), true), leftText) << used;
    }
}

// Rows as the sample draws them are in the golden describe files; here a
// past reset and room left, which none of those shows.
TEST(AccountRows, ShowWhatEachAccountHas) {
    auto both =
        tool("claude", "work", std::vector{window("5h", 100, 7800, kFiveHours), window("Week", 40, -60, kWeek)});
    both.displayName = "Claude \u00B7 Work";
    auto plain = tool("codex", std::nullopt, std::vector{window("Now", 20)});

    // The weekly reset has passed: no countdown for it.
    const auto row = draw(body(AccountRow{account(both), kNow, false, 86}), L);
    EXPECT_EQ(textsOf(row), (Texts{"Claude", "Work", "5h", "100%", "2h 10m", "Week", "40%"}));
    EXPECT_EQ(testing::textNamed(row, "100%")->color, dangerRed());
    EXPECT_EQ(textsOf(draw(body(AccountRow{account(plain), kNow, true, 86}), L)), (Texts{"Codex", "Now", "80%"}));
    EXPECT_EQ(textsOf(draw(body(CompactAccountRow{account(both), kNow, true}), M)),
              (Texts{"Claude", "Work", "5h", "0%", "Week", "60%"}));
}

TEST(AccountsBoard, FullestBoardsFitTheirWidgets) {
    for (const auto& [family, accounts] : {std::pair{M, 5}, {M, 9}, {L, 7}, {L, 9}, {XL, 12}, {XL, 40}}) {
        const auto size = contentSize(family);
        const auto fit = render::sizeThatFits(body(board(accounts, family, 900)), size.width, std::nullopt, kMeasurer);
        EXPECT_LE(fit.height, size.height) << rawValue(family) << " with " << accounts;
    }
}

}  // namespace
}  // namespace mw
