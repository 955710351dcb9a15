#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "model/brand.hpp"
#include "model/fixtures.hpp"
#include "model/pace.hpp"
#include "payload/sample.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/focus/card.hpp"
#include "widgets/focus/texts.hpp"
#include "widgets/focus/view.hpp"

namespace mw {
namespace {

using render::DisplayList;
using render::DrawOp;
using render::ShapeDraw;
using render::TextDraw;
using RColor = render::Color;
using mw::testing::kNow;
using mw::testing::snapshot;
using mw::testing::window;

const render::testing::FakeMeasurer kMeasurer;
constexpr render::Size kSmall{138, 138};
constexpr render::Size kMedium{332, 138};

DisplayList lay(const render::View& view, render::Size size = kSmall) { return render::layout(view, size, kMeasurer); }

std::vector<std::string> texts(const DisplayList& list) {
    std::vector<std::string> out;
    for (const auto& op : list.ops)
        if (const auto* t = std::get_if<TextDraw>(&op.item)) out.push_back(t->text());
    return out;
}

bool hasText(const DisplayList& list, const std::string& text) {
    for (const auto& t : texts(list))
        if (t == text) return true;
    return false;
}

const TextDraw& textOf(const DisplayList& list, const std::string& text, render::Rect* frame = nullptr) {
    for (const auto& op : list.ops) {
        if (const auto* t = std::get_if<TextDraw>(&op.item); t && t->text() == text) {
            if (frame) *frame = op.frame;
            return *t;
        }
    }
    ADD_FAILURE() << "no text " << text;
    static const TextDraw none;
    return none;
}

// The drawn part of every progress arc (round-capped strokes), in paint order.
std::vector<const ShapeDraw*> arcs(const DisplayList& list) {
    std::vector<const ShapeDraw*> out;
    for (const auto& op : list.ops)
        if (const auto* s = std::get_if<ShapeDraw>(&op.item);
            s && s->paint == ShapeDraw::Paint::stroke && s->stroke.cap == render::LineCap::round)
            out.push_back(s);
    return out;
}

int circles(const DisplayList& list) {
    int n = 0;
    for (const auto& op : list.ops)
        if (const auto* s = std::get_if<ShapeDraw>(&op.item); s && s->shape.kind == render::ShapeKind::circle) ++n;
    return n;
}

FocusEntry entryOf(WidgetPayload payload, std::string_view chosenID, WidgetDetailStyle style = WidgetDetailStyle::classic,
                   Date date = kNow) {
    FocusEntry e;
    e.date = date;
    e.payload = std::move(payload);
    e.chosen = chosenID == kHighestUsageID ? highestUsageChoice() : WidgetToolChoice{std::string(chosenID), std::string(chosenID), std::string(chosenID) + "!"};
    e.style = style;
    return e;
}

// A one-tool payload written a minute and a half before kNow.
WidgetPayload onePayload(WidgetToolSnapshot s, bool remaining = false) {
    auto p = mw::testing::payloadOf({std::move(s)});
    p.updatedAt = kNow - 90;
    p.showRemaining = remaining;
    return p;
}

// ---------------------------------------------------------------- texts

TEST(FocusText, PercentClampsAndTruncates) {
    const struct {
        double value;
        const char* text;
    } cases[] = {{42.9, "42%"}, {1500, "999%"}, {-3, "0%"},   {0, "0%"},   {99.999, "99%"},
                 {999.9, "999%"}, {-0.5, "0%"}, {std::nan(""), "0%"}, {std::numeric_limits<double>::infinity(), "999%"}};
    for (const auto& c : cases) EXPECT_EQ(percentText(c.value), c.text) << c.value;
}

TEST(FocusText, CountdownRoundsSecondsThenTruncatesMinutes) {
    const struct {
        double seconds;
        const char* text;
    } cases[] = {
        {30, "now"},       {59.4, "now"},     {59.5, "0:01"},   {119.49, "0:01"},  {119.5, "0:02"},
        {2700, "0:45"},    {3 * 3600 + 300, "3:05"},  {2 * 3600 + 59 * 60 + 40, "2:59"}, {10800, "3:00"},
        {-0.5, "now"},     {-3600, "now"},    {5 * 86400, "120:00"}, {std::nan(""), "now"},
    };
    for (const auto& c : cases) EXPECT_EQ(countdownText(c.seconds), c.text) << c.seconds;
}

TEST(FocusText, UpperCasingKeepsMultibyteCharactersWhole) {
    EXPECT_EQ(upperCased("Claude \u00B7 Work"), "CLAUDE \u00B7 WORK");
    EXPECT_EQ(upperCased("co-pilot 2"), "CO-PILOT 2");
    EXPECT_EQ(upperCased("\u00F1and\u00FA \u00DF \u00F7"), "\u00D1AND\u00DA \u00DF \u00F7");
    EXPECT_EQ(upperCased("\u043A\u043E\u0434 \u03B1\u03C9 \u0142\u00FF"), "\u041A\u041E\u0414 \u0391\u03A9 \u0141\u0178");
    EXPECT_EQ(upperCased("\U0001F680go"), "\U0001F680GO");
    // Bytes that are not UTF-8 pass through untouched.
    EXPECT_EQ(upperCased("a\xFF" "b\xC3"), "A\xFF" "B\xC3");
    EXPECT_EQ(upperCased("\xC0\xAFx"), "\xC0\xAFX");
}

// ---------------------------------------------------------------- classic

TEST(FocusClassic, RingShowsUsedOrLeftWithResetAndAge) {
    auto s = snapshot("claude", "work");
    s.displayName = "Claude \u00B7 Work";
    s.usagePercent = 62.7;
    s.resetAt = kNow + 2 * 3600 + 10 * 60;

    auto used = lay(focusView(entryOf(onePayload(s), "claude:work"), WidgetFamily::systemSmall));
    EXPECT_EQ(texts(used), (std::vector<std::string>{"CLAUDE \u00B7 WORK", "62%", "resets 2:10", "1m ago"}));
    const auto& name = textOf(used, "CLAUDE \u00B7 WORK");
    EXPECT_EQ(name.runs[0].style.tracking, 0.6);
    EXPECT_EQ(name.color, RColor::secondary());
    const auto& big = textOf(used, "62%");
    EXPECT_EQ(big.runs[0].style.font.design, render::Design::rounded);
    EXPECT_EQ(big.lineLimit, 1);
    ASSERT_EQ(arcs(used).size(), 1u);
    EXPECT_NEAR(arcs(used)[0]->trim.to, 0.627, 1e-9);
    EXPECT_EQ(arcs(used)[0]->color, RColor::rgb(0x11 / 255.0, 0x22 / 255.0, 0x33 / 255.0));
    EXPECT_EQ(arcs(used)[0]->stroke.lineWidth, 9);

    const auto cases = std::vector<std::pair<double, std::string>>{{130, "0% left"}, {42.5, "57% left"}, {-20, "120% left"}};
    for (const auto& [percent, text] : cases) {
        s.usagePercent = percent;
        const auto left = lay(focusView(entryOf(onePayload(s, true), "claude:work"), WidgetFamily::systemSmall));
        EXPECT_TRUE(hasText(left, text)) << percent;
        const double drawn = arcs(left).empty() ? 0 : arcs(left)[0]->trim.to;
        EXPECT_NEAR(drawn, std::min(1.0, std::max(0.0, (100 - percent) / 100)), 1e-9) << percent;
    }
}

TEST(FocusClassic, ResetLineOnlyWhileTheResetIsAhead) {
    auto s = snapshot("codex");
    s.usagePercent = 10;
    for (const auto& [offset, text] : std::vector<std::pair<double, std::string>>{
             {30, "resets now"}, {2 * 3600 + 59 * 60 + 40, "resets 2:59"}, {0, ""}, {-60, ""}}) {
        s.resetAt = kNow + offset;
        const auto list = lay(focusClassicView(s, onePayload(s), kNow));
        const auto all = texts(list);
        const bool anyReset = std::any_of(all.begin(), all.end(), [](const auto& t) { return t.rfind("resets", 0) == 0; });
        EXPECT_EQ(anyReset, !text.empty()) << offset;
        if (!text.empty()) {
            EXPECT_TRUE(hasText(list, text)) << offset;
        }
    }
}

TEST(FocusClassic, RingColourFollowsBrandThenDanger) {
    auto s = snapshot("claude");
    s.usagePercent = 50;
    s.brandHex = "not a colour";
    EXPECT_EQ(arcs(lay(focusClassicView(s, onePayload(s), kNow)))[0]->color, RColor::accent());
    s.brandHex = "#D97757";
    s.dangerLevel = 3;
    EXPECT_EQ(arcs(lay(focusClassicView(s, onePayload(s), kNow)))[0]->color, RColor::rgb(0.93, 0.30, 0.30));
}

TEST(FocusClassic, ToolWithoutQuotaHeadlineShowsItsFigureWithoutRing) {
    auto s = snapshot("cursor");
    s.displayName = "Cursor";
    s.menuBarText = "$18.40";
    s.hasQuotaHeadline = false;
    const auto text = lay(focusClassicView(s, onePayload(s), kNow));
    EXPECT_EQ(texts(text), (std::vector<std::string>{"CURSOR", "$18.40", "1m ago"}));
    EXPECT_EQ(circles(text), 0);
    EXPECT_TRUE(textOf(text, "$18.40").runs[0].style.font.monospacedDigit);
    EXPECT_EQ(textOf(text, "CURSOR").runs[0].style.font.size, 10);

    s.hasQuotaHeadline = true;
    EXPECT_EQ(circles(lay(focusClassicView(s, onePayload(s), kNow))), 2);
    s.hasQuotaHeadline.reset();
    EXPECT_EQ(circles(lay(focusClassicView(s, onePayload(s), kNow))), 2);
}

// ---------------------------------------------------------------- content decision

TEST(FocusView, StalePanelFromExactlyHalfAnHourWhateverTheSetup) {
    auto p = onePayload(snapshot("codex"));
    for (auto style : {WidgetDetailStyle::classic, WidgetDetailStyle::enhanced}) {
        auto e = entryOf(p, "codex", style, p.updatedAt + 1800);
        EXPECT_TRUE(hasText(lay(focusView(e, WidgetFamily::systemSmall)), "Open Meterwick"));
        e.readStatus = ReadStatus::decodeFailed;
        EXPECT_TRUE(hasText(lay(focusView(e, WidgetFamily::systemSmall)), "Open Meterwick"));
        e = entryOf(p, "codex", style, p.updatedAt + 1799);
        EXPECT_FALSE(hasText(lay(focusView(e, WidgetFamily::systemSmall)), "Open Meterwick"));
    }
    p.updatedAt = kDistantPast;
    EXPECT_FALSE(hasText(lay(focusView(entryOf(p, "codex"), WidgetFamily::systemSmall)), "Open Meterwick"));
}

TEST(FocusView, PanelsNameTheChosenTool) {
    auto work = snapshot("codex-cli", "work");
    work.displayName = "Codex CLI";
    const auto p = onePayload(work);
    EXPECT_TRUE(hasText(lay(focusView(entryOf(p, "codex-cli:work"), WidgetFamily::systemSmall)), "CODEX CLI"));
    EXPECT_TRUE(hasText(lay(focusView(entryOf(p, "codex-cli"), WidgetFamily::systemSmall)), "codex-cli! is turned off"));

    WidgetPayload empty;
    empty.updatedAt = kNow - 60;
    EXPECT_TRUE(hasText(lay(focusView(entryOf(empty, "gemini"), WidgetFamily::systemSmall)), "gemini! is turned off"));
    EXPECT_TRUE(hasText(lay(focusView(entryOf(empty, kHighestUsageID), WidgetFamily::systemSmall)),
                        "No providers connected"));
}

// ---------------------------------------------------------------- enhanced

const WidgetToolSnapshot& sampleTool(const WidgetPayload& p, const std::string& key) {
    for (const auto& t : p.tools)
        if (toolKey(t) == key) return t;
    throw std::runtime_error("no sample tool " + key);
}

TEST(FocusCard, TwoWindowsWithRingCentreRowsAndPace) {
    const auto p = samplePayload(kNow);
    const auto list = lay(focusView(entryOf(p, "claude:work", WidgetDetailStyle::enhanced), WidgetFamily::systemSmall));
    // Header, ring centre, the two rows, the pace line (the data is 90 s old: no freshness mark).
    EXPECT_EQ(texts(list), (std::vector<std::string>{"Claude \u00B7 Work", "91%", "5h", "5h", "91%", "0:40", "Week",
                                                     "77%", "120:00", "On pace", "vs 86%"}));
    // An inner ring narrows the hole: the smaller centre.
    const auto& centre = textOf(list, "91%");
    ASSERT_EQ(centre.runs.size(), 2u);
    EXPECT_DOUBLE_EQ(centre.runs[0].style.font.size, 15 * centre.scale);
    EXPECT_NEAR(centre.runs[1].style.font.size / centre.runs[0].style.font.size, 0.55, 1e-9);
    EXPECT_TRUE(centre.runs[0].style.font.monospacedDigit);

    // Row percents in the fill colour: the 5-hour window at 91 % is red.
    const auto& claude = sampleTool(p, "claude:work");
    std::vector<const TextDraw*> rowPercents;
    for (const auto& op : list.ops)
        if (const auto* t = std::get_if<TextDraw>(&op.item); t && t->runs[0].style.font.size == 13) rowPercents.push_back(t);
    ASSERT_EQ(rowPercents.size(), 2u);
    EXPECT_EQ(rowPercents[0]->color, toRender(dangerRed()));
    EXPECT_EQ(rowPercents[1]->color, toRender(fillColor((*claude.windows)[1], toolColor(claude), kNow)));
    EXPECT_EQ(textOf(list, "0:40").color, RColor::tertiary());
    EXPECT_EQ(textOf(list, "On pace").color, toRender(paceColor((*claude.windows)[0], kNow)));
    EXPECT_EQ(arcs(list).size(), 2u);
}

TEST(FocusCard, OneWindowGetsTheLargerCentreAndRemainingSaysLeft) {
    auto s = snapshot("codex", std::nullopt, std::vector{window("5h", 30, 3600.0, 18000.0)});
    const FocusCard card{WidgetAccount{s}, kNow, kNow - 30, true};
    const auto list = lay(body(card));
    const auto& centre = textOf(list, "70%");
    EXPECT_EQ(centre.runs[0].style.font.size, 19);
    EXPECT_TRUE(hasText(list, "left"));
    // 80 % of the time gone leaves 20 % expected to be left.
    EXPECT_TRUE(hasText(list, "Under pace \u221250%"));
    EXPECT_TRUE(hasText(list, "vs 20%"));

    EXPECT_EQ(ringCentreSize(false), (RingCentreSize{19, 50}));
    EXPECT_EQ(ringCentreSize(true), (RingCentreSize{15, 35}));
}

TEST(FocusCard, LimitReachedTurnsResetRedAndNotesTheReset) {
    auto s = snapshot("claude", std::nullopt,
                      std::vector{window("5h", 104, 1500.0, 18000.0), window("Week", 40, 86400.0, 604800.0),
                                  window("Opus", 5, 86400.0, 604800.0)});
    const auto list = lay(body(FocusCard{WidgetAccount{s}, kNow, kNow - 700, false}));
    EXPECT_EQ(textOf(list, "0:25").color, toRender(dangerRed()));
    EXPECT_EQ(textOf(list, "24:00").color, RColor::tertiary());
    EXPECT_EQ(textOf(list, "Limit reached").color, toRender(dangerRed()));
    EXPECT_TRUE(hasText(list, "resets 0:25"));
    EXPECT_TRUE(hasText(list, "11m ago"));   // freshness mark once the data ages
    EXPECT_FALSE(hasText(list, "Opus"));     // only the windows the rings draw get a row

    EXPECT_EQ(paceNote(window("5h", 100, -10.0, 18000.0), kNow, false), std::nullopt);
    EXPECT_EQ(resetLineColor(window("5h", 99.9)), Color::tertiary());
}

TEST(FocusCard, WithoutPaceTheLineIsLeftOut) {
    auto s = snapshot("copilot");
    s.usagePercent = 34;
    s.resetAt = kNow + 600;  // the made-up headline window has no duration, so no pace
    const auto list = lay(body(FocusCard{WidgetAccount{s}, kNow, kNow, false}), kMedium);
    EXPECT_EQ(texts(list), (std::vector<std::string>{"copilot", "34%", "Now", "Now", "34%", "0:10"}));
    EXPECT_EQ(circles(list), 2);  // the ring's track and fill, no pace dot
}

TEST(FocusCard, ToolWithoutQuotaWindowShowsItsFigure) {
    const auto p = samplePayload(kNow);
    const auto list = lay(focusView(entryOf(p, "cursor", WidgetDetailStyle::enhanced), WidgetFamily::systemSmall));
    EXPECT_EQ(texts(list), (std::vector<std::string>{"Cursor", "$18.40", "No quota window"}));
    EXPECT_EQ(textOf(list, "$18.40").runs[0].style.font.size, 26);
    EXPECT_EQ(circles(list), 0);
}

// ---------------------------------------------------------------- tap link

TEST(FocusLink, ToolKeyOrOpenApp) {
    const auto p = samplePayload(kNow);
    EXPECT_EQ(focusTapURL(entryOf(p, "claude:work")), "meterwick://tool/claude:work");
    EXPECT_EQ(focusTapURL(entryOf(p, "team tool#1")), "meterwick://tool/team%20tool%231");  // even unresolved
    EXPECT_EQ(focusTapURL(entryOf(p, kHighestUsageID)), "meterwick://tool/claude:work");    // ranked 91 %
    EXPECT_EQ(focusTapURL(entryOf(WidgetPayload{}, kHighestUsageID)), "meterwick://open");
    EXPECT_EQ(focusTapURL(entryOf(p, "")), "meterwick://open");
}

}  // namespace
}  // namespace mw
