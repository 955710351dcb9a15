// The Accounts widget: panels from a real payload file, the board's caps,
// overflow note, insight budget, data-age mark, row links and row contents.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "model/fixtures.hpp"
#include "model/insights.hpp"
#include "model/pace.hpp"
#include "payload/codec.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"
#include "support/temp_dir.hpp"
#include "timeline/providers.hpp"
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
using testing::snapshot;
using testing::window;

const render::testing::FakeMeasurer kMeasurer;

render::Size contentSize(WidgetFamily family) {
    const auto size = widgetSize(family);
    return {size.width - 32, size.height - 32};
}

DisplayList draw(const render::View& view, WidgetFamily family) {
    return render::layout(view, contentSize(family), kMeasurer);
}

// The drawn texts, less the one-letter initials of tools drawn without a logo.
std::vector<std::string> textsOf(const DisplayList& list) {
    std::vector<std::string> out;
    for (const auto& op : list.ops)
        if (const auto* t = std::get_if<TextDraw>(&op.item); t && t->text().size() > 1) out.push_back(t->text());
    return out;
}

std::size_t countOf(const std::vector<std::string>& texts, const std::string& text) {
    return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text));
}

// How many texts show `line`, whole or cut short with an ellipsis.
std::size_t shownCount(const std::vector<std::string>& texts, const std::string& line) {
    const std::string ellipsis = "\u2026";
    return static_cast<std::size_t>(std::count_if(texts.begin(), texts.end(), [&](const std::string& text) {
        if (text == line) return true;
        if (text.size() <= ellipsis.size() || !text.ends_with(ellipsis)) return false;
        return line.starts_with(text.substr(0, text.size() - ellipsis.size()));
    }));
}

std::vector<std::string> rowLinks(const DisplayList& list) {
    std::vector<std::string> out;
    for (const auto& link : list.links) out.push_back(link.url);
    return out;
}

// `n` accounts, each with a 5-hour window burning fast enough to run out and
// a weekly window, so every account has insight lines to offer.
std::vector<WidgetAccount> accounts(std::size_t n) {
    std::vector<WidgetAccount> out;
    for (std::size_t i = 0; i < n; ++i) {
        out.push_back(account(snapshot(
            "tool" + std::to_string(i), std::nullopt,
            std::vector{pacedWindow("5h", 50, kFiveHours, 0.2), pacedWindow("Week", 30 + double(i), kWeek, 0.5)})));
    }
    return out;
}

AccountsBoard board(std::size_t n, WidgetFamily family, double age = 10) {
    return {accounts(n), family, kNow, kNow - age, false};
}

TEST(AccountsWidgetView, PanelsFromThePayloadFile) {
    WidgetPayload stale = testing::payloadOf({snapshot("claude", std::nullopt, std::vector{window("5h", 10)})});
    stale.updatedAt = kNow - 1800;
    WidgetPayload fresh = stale;
    fresh.updatedAt = kNow - 1799;
    WidgetPayload hidden = fresh;
    hidden.enabledToolIDs.clear();
    WidgetPayload noAccounts = testing::payloadOf({snapshot("claude")});
    noAccounts.tools[0].isConnected = false;  // no windows either: not listed

    using Setup = std::function<void(const testing::TempDir&)>;
    const auto file = [](const WidgetPayload& p) -> Setup {
        return [bytes = encodePayload(p)](const testing::TempDir& d) { d.write(kPayloadFileName, bytes); };
    };
    struct Case {
        const char* name;
        Setup setup;  // nothing: no container at all
        std::string title;
        std::string symbol;
    };
    const Case cases[] = {
        {"no container", nullptr, "Can't read widget data", "exclamationmark.triangle"},
        {"missing", [](const testing::TempDir&) {}, "Waiting for Meterwick", "arrow.clockwise.circle"},
        {"unreadable", [](const testing::TempDir& d) { std::filesystem::create_directory(d / kPayloadFileName); },
         "Can't read widget data", "exclamationmark.triangle"},
        {"decode failed", [](const testing::TempDir& d) { d.write(kPayloadFileName, "not json"); },
         "Widget data unreadable", "exclamationmark.triangle"},
        {"no tools", file(testing::payloadOf({})), "No providers connected", "link"},
        {"all hidden", file(hidden), "All providers hidden", "eye.slash"},
        {"nothing listed", file(noAccounts), "No accounts yet", "clock.arrow.circlepath"},
        {"stale with accounts", file(stale), "Open Meterwick", "arrow.clockwise.circle"},
        {"fresh: the board", file(fresh), "Usage", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        testing::TempDir dir;
        if (c.setup) c.setup(dir);
        ProviderContext context{c.setup ? std::optional(dir.path()) : std::nullopt, kNow, {}};
        const auto list = draw(accountsWidgetView(AccountsProvider::snapshot(context), WidgetFamily::systemLarge),
                               WidgetFamily::systemLarge);
        EXPECT_NE(render::testing::textNamed(list, c.title), nullptr);
        const auto symbols = render::testing::opsOf(list, [&](const render::DrawOp& op) {
            const auto* image = std::get_if<render::ImageDraw>(&op.item);
            return image && image->name == c.symbol;
        });
        EXPECT_EQ(symbols.size(), c.symbol.empty() ? 0u : 1u);
    }
}

TEST(AccountsBoard, RowCapsOverflowNoteAndInsightBudget) {
    struct Case {
        WidgetFamily family;
        std::size_t accounts, rows;
        std::string note;  // empty: none
        std::size_t insightLines;
    };
    const Case cases[] = {
        {WidgetFamily::systemMedium, 5, 5, "", 0},       {WidgetFamily::systemMedium, 6, 4, "+2 more", 0},
        {WidgetFamily::systemLarge, 4, 4, "", 3},        {WidgetFamily::systemLarge, 6, 6, "", 2},
        {WidgetFamily::systemLarge, 7, 7, "", 0},        {WidgetFamily::systemLarge, 8, 6, "+2 more", 2},
        {WidgetFamily::systemExtraLarge, 12, 12, "", 3}, {WidgetFamily::systemExtraLarge, 13, 11, "+2 more", 3},
        {WidgetFamily::systemSmall, 1, 1, "", 3},        {WidgetFamily::systemSmall, 2, 0, "+2 more", 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(rawValue(c.family)) + " with " + std::to_string(c.accounts));
        const AccountsBoard b = board(c.accounts, c.family);
        const auto list = draw(body(b), c.family);
        const auto texts = textsOf(list);
        EXPECT_EQ(rowLinks(list).size(), c.rows);
        EXPECT_EQ(countOf(texts, "Usage"), c.family == WidgetFamily::systemMedium ? 0u : 1u);
        for (std::size_t hidden = 1; hidden <= 3; ++hidden) {
            if (overflowNoteText(hidden) != c.note) {
                EXPECT_EQ(countOf(texts, overflowNoteText(hidden)), 0u);
            }
        }
        if (!c.note.empty()) {
            // Medium has only the trailing group; the other sizes repeat it after the title.
            EXPECT_EQ(countOf(texts, c.note), c.family == WidgetFamily::systemMedium ? 1u : 2u);
            render::Rect note;
            for (const auto& op : list.ops) {
                if (const auto* t = std::get_if<TextDraw>(&op.item); t && t->text() == c.note) note = op.frame;
            }
            EXPECT_NEAR(note.maxX(), contentSize(c.family).width, 1e-6);  // the last one sits at the right edge
        }
        const auto lines = insights(b.accounts, b.now);
        ASSERT_GE(lines.size(), c.insightLines);
        for (std::size_t i = 0; i < lines.size() && i <= c.insightLines; ++i) {
            EXPECT_EQ(shownCount(texts, lines[i].text), i < c.insightLines ? 1u : 0u) << lines[i].text;
        }
    }
}

TEST(AccountsBoard, DataAgeShowsFromFiveMinutes) {
    for (const auto family : {WidgetFamily::systemMedium, WidgetFamily::systemLarge}) {
        const auto young = textsOf(draw(body(board(2, family, 299)), family));
        EXPECT_EQ(countOf(young, "4m ago") + countOf(young, "Live"), 0u);
        const auto old = textsOf(draw(body(board(2, family, 300)), family));
        EXPECT_EQ(countOf(old, "5m ago"), 1u);
    }
    // Hidden rows bring the trailing group, but fresh data still shows no age.
    const auto hidden = textsOf(draw(body(board(6, WidgetFamily::systemMedium, 30)), WidgetFamily::systemMedium));
    EXPECT_EQ(countOf(hidden, "+2 more"), 1u);
    EXPECT_EQ(countOf(hidden, "Live"), 0u);
}

TEST(AccountsBoard, RowsLinkToTheirAccountsInOrder) {
    std::vector<WidgetAccount> list{account(snapshot("codex")), account(snapshot("claude", "work")),
                                    account(snapshot("claude", "my team/é"))};
    for (auto& a : list) a.snapshot.windows = std::vector{window("5h", 20)};
    const AccountsBoard b{list, WidgetFamily::systemLarge, kNow, kNow, false};
    const auto drawn = draw(body(b), WidgetFamily::systemLarge);
    EXPECT_EQ(rowLinks(drawn), (std::vector<std::string>{"meterwick://tool/codex", "meterwick://tool/claude:work",
                                                         "meterwick://tool/claude:my%20team/%C3%A9"}));
    for (const auto& link : drawn.links)
        EXPECT_NEAR(link.rect.width, contentSize(WidgetFamily::systemLarge).width, 1e-6);
}

TEST(AccountRows, PercentText) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case {
        double used;
        const char* usedText;
        const char* leftText;
    };
    for (const Case& c : {Case{62.9, "62%", "37%"}, Case{140, "140%", "0%"}, Case{-5, "0%", "105%"},
                          Case{1500, "999%", "0%"}, Case{nan, "0%", "0%"}}) {
        EXPECT_EQ(percentText(window("5h", c.used), false), c.usedText) << c.used;
        EXPECT_EQ(percentText(window("5h", c.used), true), c.leftText) << c.used;
    }
}

TEST(AccountRows, ShowWhatEachAccountHas) {
    auto both =
        snapshot("claude", "work", std::vector{window("5h", 100, 7800, kFiveHours), window("Week", 40, -60, kWeek)});
    both.displayName = "Claude \u00B7 Work";
    auto plain = snapshot("codex", std::nullopt, std::vector{window("Now", 20)});
    plain.displayName = "Codex";
    auto noWindows = snapshot("cursor");
    noWindows.hasQuotaHeadline = false;
    noWindows.menuBarText = "$18.40";

    const auto row = draw(body(AccountRow{account(both), kNow, false, 86}), WidgetFamily::systemLarge);
    const auto texts = textsOf(row);
    for (const char* text : {"Claude", "Work", "5h", "100%", "Week", "40%", "2h 10m"})
        EXPECT_EQ(countOf(texts, text), 1u) << text;
    EXPECT_EQ(render::testing::textNamed(row, "100%")->color, toRender(dangerRed()));
    EXPECT_EQ(texts.size(), 7u);  // the weekly reset has passed: no countdown

    EXPECT_EQ(textsOf(draw(body(AccountRow{account(plain), kNow, true, 86}), WidgetFamily::systemLarge)),
              (std::vector<std::string>{"Codex", "Now", "80%"}));
    EXPECT_EQ(textsOf(draw(body(AccountRow{account(noWindows), kNow, false, 86}), WidgetFamily::systemLarge)),
              (std::vector<std::string>{"cursor", "$18.40"}));
    EXPECT_EQ(textsOf(draw(body(CompactAccountRow{account(both), kNow, true}), WidgetFamily::systemMedium)),
              (std::vector<std::string>{"Claude", "Work", "5h", "0%", "Week", "60%"}));
}

TEST(AccountsBoard, FullestBoardsFitTheirWidgets) {
    struct Case {
        WidgetFamily family;
        std::size_t accounts;
    };
    for (const Case& c : {Case{WidgetFamily::systemMedium, 5}, Case{WidgetFamily::systemMedium, 9},
                          Case{WidgetFamily::systemLarge, 7}, Case{WidgetFamily::systemLarge, 9},
                          Case{WidgetFamily::systemExtraLarge, 12}, Case{WidgetFamily::systemExtraLarge, 40}}) {
        const auto size = contentSize(c.family);
        const auto fit =
            render::sizeThatFits(body(board(c.accounts, c.family, 900)), size.width, std::nullopt, kMeasurer);
        EXPECT_LE(fit.height, size.height) << rawValue(c.family) << " with " << c.accounts;
    }
}

}  // namespace
}  // namespace mw
