#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "model/brand.hpp"
#include "support/display_list.hpp"
#include "support/payloads.hpp"
#include "model/pace.hpp"
#include "payload/sample.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/focus/card.hpp"
#include "widgets/focus/kind.hpp"
#include "widgets/focus/texts.hpp"
#include "widgets/focus/view.hpp"

namespace mw {
namespace {

using render::DisplayList;
using render::ShapeDraw;
using render::TextDraw;
using Texts = std::vector<std::string>;
using mw::testing::hasText;
using mw::testing::textOf;
using mw::testing::texts;
using mw::testing::kNow;
using mw::testing::tool;
using mw::testing::window;

const render::testing::FakeMeasurer kMeasurer;

DisplayList lay(const render::View& view, render::Size size = {138, 138}) {
    return render::layout(view, size, kMeasurer);
}


// Progress arcs (round-capped strokes) and every circle, in paint order.
std::vector<const ShapeDraw*> shapes(const DisplayList& list, bool arcsOnly) {
    std::vector<const ShapeDraw*> out;
    for (const auto& op : list.ops)
        if (const auto* s = std::get_if<ShapeDraw>(&op.item);
            s && s->shape.kind == render::ShapeKind::circle && (!arcsOnly || s->stroke.cap == render::LineCap::round))
            out.push_back(s);
    return out;
}

FocusEntry entryOf(WidgetPayload payload, std::string_view id, WidgetDetailStyle style = WidgetDetailStyle::classic,
                   Date date = kNow) {
    const std::string key(id);
    auto chosen = id == kHighestUsageID ? highestUsageChoice() : WidgetToolChoice{key, key, key + "!"};
    return FocusEntry{date, std::move(payload), std::move(chosen), ReadStatus::ok, style};
}

// One tool, written a minute and a half before kNow.
WidgetPayload onePayload(WidgetToolSnapshot s, bool remaining = false) {
    auto p = mw::testing::payloadOf({std::move(s)});
    p.updatedAt = kNow - 90;
    p.showRemaining = remaining;
    return p;
}

DisplayList show(const FocusEntry& e) {
    return lay(focusView(e, WidgetFamily::systemSmall));
}

TEST(FocusText, PercentAndCountdown) {
    const std::pair<double, const char*> percents[] = {{42.9, "42%"},   {1500, "999%"},       {-3, "0%"},
                                                       {99.999, "99%"}, {std::nan(""), "0%"}, {INFINITY, "999%"}};
    for (const auto& [value, text] : percents) EXPECT_EQ(percentText(value), text) << value;
    const std::pair<double, const char*> countdowns[] = {
        {30, "now"},     {59.4, "now"},   {59.5, "0:01"}, {119.5, "0:02"},       {2700, "0:45"},       {11100, "3:05"},
        {10780, "2:59"}, {10800, "3:00"}, {-0.5, "now"},  {5 * 86400, "120:00"}, {std::nan(""), "now"}};
    for (const auto& [seconds, text] : countdowns) EXPECT_EQ(countdownText(seconds), text) << seconds;
}

// The ring as used is in the golden describe files; what is left clamps to the ring.
TEST(FocusClassic, RingShowsWhatIsLeftClampedAndFallsBackToTheAccent) {
    auto s = tool("claude", "work");
    s.resetAt = kNow + 2 * 3600 + 10 * 60;
    for (const auto& [percent, text, trimTo] :
         {std::tuple{130.0, "0% left", 0.0}, {42.5, "57% left", 0.575}, {-20.0, "120% left", 1.0}}) {
        s.usagePercent = percent;
        const auto list = show(entryOf(onePayload(s, true), "claude:work"));
        EXPECT_TRUE(hasText(list, text)) << percent;
        const auto arcs = shapes(list, true);
        EXPECT_NEAR(arcs.empty() ? 0 : arcs[0]->trim.to, trimTo, 1e-9) << percent;
    }

    s.brandHex = "not a colour";  // the accent then
    EXPECT_EQ(shapes(lay(focusClassicView(s, onePayload(s), kNow)), true)[0]->color, Color::accent());
}

TEST(FocusClassic, ResetLineOnlyWhileTheResetIsAhead) {
    auto s = tool("codex");
    for (const auto& [offset, line] : std::vector<std::pair<double, std::string>>{
             {30, "resets now"}, {10780, "resets 2:59"}, {0, "1m ago"}, {-60, "1m ago"}}) {
        s.resetAt = kNow + offset;
        EXPECT_EQ(texts(lay(focusClassicView(s, onePayload(s), kNow)))[2], line) << offset;
    }
}

TEST(FocusClassic, ToolWithoutQuotaHeadlineShowsItsFigureWithoutRing) {
    auto s = tool("cursor");
    s.menuBarText = "$18.40";
    s.hasQuotaHeadline = false;
    const auto list = lay(focusClassicView(s, onePayload(s), kNow));
    EXPECT_EQ(texts(list), (Texts{"CURSOR", "$18.40", "1m ago"}));
    EXPECT_TRUE(shapes(list, false).empty());
    EXPECT_TRUE(textOf(list, "$18.40").runs[0].style.font.monospacedDigit);
    s.hasQuotaHeadline.reset();
    EXPECT_EQ(shapes(lay(focusClassicView(s, onePayload(s), kNow)), false).size(), 2u);
}

// Even over a read failure.
TEST(FocusView, BothStylesGiveWayToTheStalePanel) {
    const auto p = onePayload(tool("codex-cli", "work"));
    for (auto style : {WidgetDetailStyle::classic, WidgetDetailStyle::enhanced}) {
        auto e = entryOf(p, "codex-cli:work", style, p.updatedAt + 1800);
        e.readStatus = ReadStatus::decodeFailed;
        EXPECT_EQ(texts(show(e)), (Texts{"Open Meterwick", "Usage updates while the app is running."}));
    }
}

TEST(FocusCard, OneWindowRemainingAndLimitReached) {
    auto one = tool("gemini", std::nullopt, std::vector{window("5h", 30, 3600.0, 18000.0)});
    auto list = lay(body(FocusCard{WidgetAccount{one}, kNow, kNow - 30, true}));
    // 80 % of the time gone: 20 % expected to be left.
    EXPECT_EQ(texts(list), (Texts{"Gemini", "70%", "left", "5h", "70%", "1:00", "Under pace \u221250%", "vs 20%"}));

    auto full = tool("claude", std::nullopt,
                         std::vector{window("5h", 104, 1500.0, 18000.0), window("Week", 40, 86400.0, 604800.0),
                                     window("Opus", 5, 86400.0, 604800.0)});
    list = lay(body(FocusCard{WidgetAccount{full}, kNow, kNow - 700, false}));
    EXPECT_EQ(texts(list), (Texts{"Claude", "11m ago", "104%", "5h", "5h", "104%", "0:25", "Week", "40%", "24:00",
                                  "Limit reached", "resets 0:25"}));  // only the windows the rings draw get a row
    EXPECT_EQ(paceNote(window("5h", 100, -10.0, 18000.0), kNow, false), std::nullopt);
}

TEST(FocusCard, NoPaceLeavesTheLineOutAndNoWindowShowsTheFigure) {
    auto s = tool("copilot");
    s.usagePercent = 34;
    s.resetAt = kNow + 600;  // the made-up headline window has no duration, hence no pace
    const auto list = lay(body(FocusCard{WidgetAccount{s}, kNow, kNow, false}), {332, 138});
    EXPECT_EQ(texts(list), (Texts{"Copilot", "34%", "Now", "Now", "34%", "0:10"}));
    EXPECT_EQ(shapes(list, false).size(), 2u);  // track and fill, no pace dot

    const auto cursor = show(entryOf(samplePayload(kNow), "cursor", WidgetDetailStyle::enhanced));
    EXPECT_EQ(texts(cursor), (Texts{"Cursor", "$18.40", "No quota window"}));
}

TEST(FocusLink, ToolKeyOrOpenApp) {
    const auto p = samplePayload(kNow);
    EXPECT_EQ(WidgetKind<FocusEntry>::tapURL(entryOf(p, "claude:work")), "meterwick://tool/claude:work");
    EXPECT_EQ(WidgetKind<FocusEntry>::tapURL(entryOf(p, "team tool#1")), "meterwick://tool/team%20tool%231");  // even unresolved
    EXPECT_EQ(WidgetKind<FocusEntry>::tapURL(entryOf(p, kHighestUsageID)), "meterwick://tool/claude:work");    // ranked 91 %
    EXPECT_EQ(WidgetKind<FocusEntry>::tapURL(entryOf(WidgetPayload{}, kHighestUsageID)), "meterwick://open");
    EXPECT_EQ(WidgetKind<FocusEntry>::tapURL(entryOf(p, "")), "meterwick://open");
}

}  // namespace
}  // namespace mw
