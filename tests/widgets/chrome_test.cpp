#include "widgets/chrome/chrome.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/display_list.hpp"
#include "support/payloads.hpp"
#include "model/pace.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"

namespace mw {
namespace {

using render::DisplayList;
using render::DrawOp;
using render::ImageDraw;
using render::Rect;
using render::ShapeDraw;
using render::TextDraw;
using mw::testing::kNow;
using mw::testing::pacedWindow;

const render::testing::FakeMeasurer kMeasurer;
const Color kBrand = Color::rgb(0.2, 0.4, 0.6);
const Color kTrack = Color::primary().withOpacity(0.1);

DisplayList lay(const render::View& view, render::Size size = {100, 100}) {
    return render::layout(view, size, kMeasurer);
}

// The shape ops, copied so that a list laid out in the same expression may go.
std::vector<DrawOp> shapes(const DisplayList& list) {
    std::vector<DrawOp> out;
    for (const auto& op : list.ops)
        if (std::holds_alternative<ShapeDraw>(op.item)) out.push_back(op);
    return out;
}
const ShapeDraw& shapeOf(const DrawOp& op) { return std::get<ShapeDraw>(op.item); }

TEST(ChromeText, AgeTextTruncatesToMinutesThenHoursWithoutDays) {
    const std::pair<double, const char*> cases[] = {
        {-30, "now"},      {0, "now"},       {59.99, "now"},  {60, "1m ago"},   {119.9, "1m ago"},
        {3599, "59m ago"}, {3600, "1h ago"}, {7199, "1h ago"}, {172800, "48h ago"}, {std::nan(""), "now"}};
    for (const auto& [age, text] : cases) EXPECT_EQ(ageText(kNow, kNow - age), text) << age;
}

TEST(FreshnessMark, HiddenWhileFreshThenLiveOrAgeTurningAmberAtTenMinutes) {
    const Color amber = Color::legible(0.98, 0.62, 0.16), grey = Color::secondary();
    const struct {
        double age;
        bool always;
        const char* text;  // nullptr: no mark at all
        Color color;
    } cases[] = {{299, false, nullptr, {}},     {300, false, "5m ago", grey}, {59, true, "Live", grey},
                 {60, true, "1m ago", grey},    {599, false, "9m ago", grey}, {600, false, "10m ago", amber},
                 {7200, true, "2h ago", amber}};
    for (const auto& c : cases) {
        const render::View view = body(FreshnessMark{kNow, kNow - c.age, c.always});
        if (!c.text) {
            EXPECT_TRUE(view.isEmpty()) << c.age;
            continue;
        }
        const auto list = lay(view);
        ASSERT_EQ(list.ops.size(), 1u) << c.age;
        const auto& text = std::get<TextDraw>(list.ops[0].item);
        EXPECT_EQ(text.text(), c.text);
        EXPECT_EQ(text.color, c.color) << c.age;
    }
}

TEST(UsageRing, FractionIsCappedAndOnlyLevelsTwoAndThreeRecolour) {
    const Color brand = kBrand;
    const struct {
        double percent;
        std::int64_t level;
        double trimTo;
        Color color;
    } cases[] = {{42, 0, 0.42, brand}, {100, 1, 1, brand}, {150, 4, 1, brand}, {0, -1, 0, brand},
                 {-5, 2, 0, Color::legible(0.98, 0.66, 0.18)}, {std::nan(""), 3, 0, Color::legible(0.93, 0.30, 0.30)}};
    for (const auto& c : cases) {
        const auto ops = shapes(lay(body(UsageRing{c.percent, kBrand, c.level, 9})));
        ASSERT_EQ(ops.size(), 2u);
        const ShapeDraw &track = shapeOf(ops[0]), &progress = shapeOf(ops[1]);
        EXPECT_TRUE(track.trim.isFull());
        EXPECT_EQ(track.color, kTrack);
        EXPECT_EQ(progress.trim, (render::Trim{0, c.trimTo})) << c.percent;
        EXPECT_EQ(progress.color, c.color) << c.level;
        EXPECT_DOUBLE_EQ(ops[1].rotationDegrees, -90);
    }
}

// Two rings as used, their frames, tints and ticks, are in the golden
// describe files (the enhanced Focus card). What is left turns the fill and
// the tick: a five-hour window a quarter gone, 30 % used.
TEST(PaceRings, RoomLeftTurnsTheFillAndTheTick) {
    PaceRings rings{pacedWindow("5h", 30, 18000, 0.25), std::nullopt, kBrand, kNow};
    rings.remaining = true;
    const auto left = shapes(lay(body(rings)));
    ASSERT_EQ(left.size(), 3u);  // track, fill, tick
    EXPECT_EQ(shapeOf(left[1]).trim, (render::Trim{0, 0.7}));
    EXPECT_DOUBLE_EQ(left[2].rotationDegrees, 270);
}

// Without a pace the tick has no length: the model's Pace test.
TEST(PaceTick, FractionsAreClamped) {
    for (const auto& [fraction, degrees] : {std::pair{-0.5, 0.0}, {1.5, 360.0}, {std::nan(""), 0.0}}) {
        const auto tick = shapes(lay(body(PaceTick{fraction, 4}), {40, 60}));
        ASSERT_EQ(tick.size(), 1u);
        EXPECT_DOUBLE_EQ(tick[0].rotationDegrees, degrees);
        EXPECT_DOUBLE_EQ(tick[0].frame.midY(), 10);  // the top of a 40-wide square centred in 60
        EXPECT_EQ(shapeOf(tick[0]).color, Color::primary().withOpacity(0.6));
    }
}

// Track, fill and tick at the elapsed share are in the golden describe files
// (every account row); an empty window without a pace draws only the track.
TEST(PaceBar, NothingUsedAndNoPaceIsTheTrackAlone) {
    const PaceBar bar{testing::window("none", 0), kBrand, kNow};
    EXPECT_EQ(shapes(lay(body(bar), {200, 40})).size(), 1u);
}

// Logos are in the golden describe files, and initials, dark on pale
// brands; white on a dark one is not.
TEST(ProviderMark, WithoutALogoTheInitialOnASolidSquare) {
    // The initial contrasts with the square: white on a dark brand, dark on a pale one.
    const Color pale = Color::rgb(1.0, 0.9, 0.5);
    for (const auto& [tool, brand, initial, letter] :
         {std::tuple{"codex", kBrand, "C", Color::white()}, {"antigravity", pale, "A", Color::black(0.85)},
          {"zeta-2", kBrand, "Z", Color::white()}}) {
        const auto list = lay(body(ProviderMarkView{tool, brand, 20}));
        const auto square = shapes(list);
        ASSERT_EQ(list.ops.size(), 2u) << tool;  // the square and the initial, no image
        ASSERT_EQ(square.size(), 1u);
        EXPECT_EQ(square[0].frame, (Rect{44, 44, 12, 12}));  // inset 20 × 0.2
        EXPECT_EQ(shapeOf(square[0]).shape.kind, render::ShapeKind::roundedRectangle);
        EXPECT_EQ(shapeOf(square[0]).color, brand);  // solid
        const auto& text = std::get<TextDraw>(list.ops[1].item);
        EXPECT_EQ(text.text(), initial);
        EXPECT_EQ(text.color, letter) << tool;
        EXPECT_GE(text.runs[0].style.font.size, 10) << "at least half the mark";
        EXPECT_EQ(text.runs[0].style.font.weight, render::Weight::bold);
    }
}

TEST(EmptyState, SymbolAndTextsAreShownVerbatimAndCentred) {
    const WidgetEmptyState state{"No **accounts** %@", "Connect a provider in Meterwick and this fills in.", "link"};
    const auto list = lay(body(state), {170, 170});
    ASSERT_EQ(list.ops.size(), 3u);
    const auto& symbol = std::get<ImageDraw>(list.ops[0].item);
    const auto& title = std::get<TextDraw>(list.ops[1].item);
    const auto& subtitle = std::get<TextDraw>(list.ops[2].item);
    EXPECT_EQ(symbol.name, "link");
    EXPECT_EQ(symbol.tint, Color::secondary());
    EXPECT_EQ(title.text(), state.title);
    EXPECT_EQ(subtitle.text(), state.subtitle);
    EXPECT_EQ(subtitle.alignment, render::TextAlignment::center);
    EXPECT_GE(list.ops[2].frame.x, 10);  // horizontal padding; the subtitle wraps within it
    EXPECT_LE(list.ops[2].frame.maxX(), 160);
}

}  // namespace
}  // namespace mw
