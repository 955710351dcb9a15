#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "config/choices.hpp"
#include "model/fixtures.hpp"
#include "model/pace.hpp"
#include "render/fake_measurer.hpp"
#include "render/layout.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/sparkline/chart.hpp"
#include "widgets/sparkline/content.hpp"
#include "widgets/sparkline/view.hpp"

namespace mw {
namespace {

using render::DisplayList;
using render::Point;
using render::ShapeDraw;
using render::TextDraw;
using mw::testing::kNow;
using mw::testing::snapshot;

const render::testing::FakeMeasurer kMeasurer;
constexpr double kHour = 3600;
const render::Size kContent{332, 138};  // systemMedium less its margins

// Points every `step` seconds from `from` seconds before kNow up to kNow.
std::vector<SparklinePoint> curve(double from, double step, double (*value)(double hoursAgo)) {
    std::vector<SparklinePoint> points;
    for (double t = -from; t <= 0; t += step) points.push_back({kNow + t, value(-t / kHour)});
    return points;
}

WidgetPayload payloadOf(std::vector<WidgetToolSnapshot> tools) {
    auto p = mw::testing::payloadOf(std::move(tools));
    p.updatedAt = kNow - 60;
    return p;
}

SparklineEntry entryOf(WidgetPayload payload, WidgetToolChoice chosen) {
    return SparklineEntry{kNow, std::move(payload), ReadStatus::ok, std::move(chosen)};
}

WidgetToolChoice choice(const std::string& id) { return {id, id, id}; }

std::vector<SparklinePoint> line(double v0, double v1) { return {{kNow - kHour, v0}, {kNow, v1}}; }

TEST(SparklineContent, CurveLookupTriesKeyThenToolIDThenPrimaryForHighestOnly) {
    auto work = snapshot("claude", "work");
    work.usagePercent = 90;
    auto payload = payloadOf({snapshot("claude"), work, snapshot("codex")});
    payload.primarySparklineToolID = "codex";
    payload.sparklines["codex"] = line(3, 3);

    // Nothing under the key or the toolID: only "highest" falls back to the primary curve.
    EXPECT_EQ(sparklineCurve(entryOf(payload, highestUsageChoice())), line(3, 3));
    EXPECT_EQ(sparklineCurve(entryOf(payload, choice("claude:work"))), std::nullopt);

    payload.sparklines["claude"] = line(2, 2);
    EXPECT_EQ(sparklineCurve(entryOf(payload, choice("claude:work"))), line(2, 2));
    EXPECT_EQ(sparklineCurve(entryOf(payload, highestUsageChoice())), line(2, 2));

    payload.sparklines["claude:work"] = line(1, 1);
    EXPECT_EQ(sparklineCurve(entryOf(payload, choice("claude:work"))), line(1, 1));
    EXPECT_EQ(sparklineCurve(entryOf(payload, highestUsageChoice())), line(1, 1));

    // A tool that does not resolve has no curve, whatever the maps hold.
    EXPECT_EQ(sparklineCurve(entryOf(payload, choice("gemini"))), std::nullopt);
}

TEST(SparklineContent, WindowKeepsFiveHoursAndCarriesOnePointOntoItsStart) {
    const Date start = kNow - 5 * kHour;
    const std::vector<SparklinePoint> raw{
        {kNow + 60, 99},                                       // after the entry's date
        {kNow - 2 * kHour, 4},
        {start - 2 * kHour, 50},                               // too old, not the last before
        {start - kHour, 10},                                   // last before the window
        {start + kHour, 20},
        {kNow - kHour, std::numeric_limits<double>::quiet_NaN()},
    };
    const auto shown = sparklineWindow(raw, kNow);
    const std::vector<SparklinePoint> expected{{start, 15}, {start + kHour, 20}, {kNow - 2 * kHour, 4}};
    EXPECT_EQ(shown, expected);

    // A point on the start needs nothing carried; with nothing inside, nothing is drawn.
    EXPECT_EQ(sparklineWindow({{start - 60, 1}, {start, 2}, {kNow, 3}}, kNow),
              (std::vector<SparklinePoint>{{start, 2}, {kNow, 3}}));
    EXPECT_TRUE(sparklineWindow({{start - 60, 1}, {start - 30, 2}}, kNow).empty());
}

TEST(SparklineContent, CurveWithoutTwoPointsInTheWindowGetsThePanel) {
    auto payload = payloadOf({snapshot("codex")});
    const std::vector<std::vector<SparklinePoint>> curves{
        {},
        {{kNow, 1}},
        {{kNow - 6 * kHour, 1}, {kNow - 5.5 * kHour, 2}},  // all of it older than five hours
        {{kNow - 60, 1}, {kNow + 60, 2}},                  // one of them after the entry's date
    };
    for (const auto& points : curves) {
        payload.sparklines["codex"] = points;
        const auto panel = sparklinePanel(entryOf(payload, choice("codex")));
        ASSERT_TRUE(panel) << points.size();
        EXPECT_EQ(panel->title, "No curve yet");
    }
    // An old point carried onto the window's start makes the second one.
    payload.sparklines["codex"] = {{kNow - 6 * kHour, 1}, {kNow - kHour, 2}};
    EXPECT_EQ(sparklinePanel(entryOf(payload, choice("codex"))), std::nullopt);
    EXPECT_NE(render::testing::textNamed(
        render::layout(sparklineView(entryOf(payloadOf({}), choice("codex")), WidgetFamily::systemMedium), kContent,
                       kMeasurer),
        "codex is turned off"), nullptr);
}

TEST(SparklineView, LatestValueTextAndColour) {
    const struct {
        double value;
        const char* text;
        Color colour;
    } cases[] = {
        {12.4, "+12%", warnOrange()},     {0.5, "+1%", warnOrange()},      {0.49, "0%", Color::secondary()},
        {-0.4, "0%", Color::secondary()}, {-4.5, "\u22125%", Color::secondary()},
        {-5.4, "\u22125%", Color::secondary()}, {-5.5, "\u22126%", underGreen()}, {-40, "\u221240%", underGreen()},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(signedPercentText(c.value), c.text) << c.value;
        EXPECT_EQ(sparklineValueColor(c.value), c.colour) << c.value;
    }
}

// Chart geometry: every drawn point inside the chart; the zero line where
// the scale puts 0.
void expectInside(const std::vector<Point>& points, render::Size size) {
    for (const auto& p : points) {
        EXPECT_GE(p.x, 0);
        EXPECT_LE(p.x, size.width);
        EXPECT_GE(p.y, kSparklineVerticalInset - 1e-9);
        EXPECT_LE(p.y, size.height - kSparklineVerticalInset + 1e-9);
    }
}

TEST(SparklineChart, ScalesPositiveNegativeAndFlatCurves) {
    const render::Size size{300, 100};
    const double top = kSparklineVerticalInset, bottom = size.height - kSparklineVerticalInset;

    const auto rising = curve(4 * kHour, 600, [](double h) { return 30 - 5 * h; });
    const auto up = sparklineGeometry(rising, kNow, size);
    expectInside(up.line, size);
    EXPECT_DOUBLE_EQ(up.baselineY, bottom);             // zero at the foot
    EXPECT_NEAR(up.latest.y, top + 0.08 / 1.08 * (bottom - top), 1e-9);  // headroom above the peak
    EXPECT_DOUBLE_EQ(up.latest.x, size.width);
    EXPECT_DOUBLE_EQ(up.line.front().x, size.width * 0.2);  // four of five hours
    EXPECT_FALSE(up.above.empty());
    EXPECT_TRUE(up.below.empty());

    const auto falling = curve(5 * kHour, 600, [](double h) { return -2 - h; });
    const auto down = sparklineGeometry(falling, kNow, size);
    expectInside(down.line, size);
    EXPECT_DOUBLE_EQ(down.baselineY, top);  // zero at the head
    EXPECT_DOUBLE_EQ(down.line.front().x, 0);
    EXPECT_TRUE(down.above.empty());
    EXPECT_FALSE(down.below.empty());
    // Small values are not blown up to the full height: the span is at least 10 points.
    const auto scale = sparklineScale(falling);
    EXPECT_DOUBLE_EQ(scale.high, 0);
    EXPECT_LE(scale.low, -SparklineScale::kMinSpan);

    const auto zero = curve(3 * kHour, 600, [](double) { return 0.0; });
    const auto flat = sparklineGeometry(zero, kNow, size);
    EXPECT_DOUBLE_EQ(flat.baselineY, size.height / 2);
    for (const auto& p : flat.line) EXPECT_DOUBLE_EQ(p.y, flat.baselineY);
    EXPECT_TRUE(flat.above.empty());
    EXPECT_TRUE(flat.below.empty());
}

TEST(SparklineChart, AreasMeetTheZeroLineWhereTheCurveCrossesIt) {
    const render::Size size{300, 100};
    const std::vector<SparklinePoint> points{{kNow - 4 * kHour, 10}, {kNow - 2 * kHour, -10}, {kNow, 10}};
    const auto g = sparklineGeometry(points, kNow, size);
    expectInside(g.line, size);
    ASSERT_FALSE(g.above.empty());
    ASSERT_FALSE(g.below.empty());
    for (const auto& p : g.above) EXPECT_LE(p.y, g.baselineY + 1e-9);
    for (const auto& p : g.below) EXPECT_GE(p.y, g.baselineY - 1e-9);
    // Both areas pass through the crossings, at one and three hours ago.
    for (const double x : {size.width * 0.4, size.width * 0.8}) {
        const auto at = [&](const std::vector<Point>& area) {
            return std::any_of(area.begin(), area.end(), [&](Point p) {
                return std::abs(p.x - x) < 1e-9 && std::abs(p.y - g.baselineY) < 1e-9;
            });
        };
        EXPECT_TRUE(at(g.above)) << x;
        EXPECT_TRUE(at(g.below)) << x;
    }
}

TEST(SparklineView, DrawsHeaderChartAxisAndLinksTheTool) {
    auto tool = snapshot("codex", "work");
    tool.displayName = "Codex \u00B7 Work";
    auto payload = payloadOf({tool});
    payload.sparklines["codex"] = curve(6 * kHour, 300, [](double h) { return -3 - h; });
    const auto entry = entryOf(payload, choice("codex:work"));
    const DisplayList list = render::layout(sparklineView(entry, WidgetFamily::systemMedium), kContent, kMeasurer);

    for (const char* text : {"Codex \u00B7 Work", "\u22123%", "\u22125h", "\u22122.5h", "now"})
        EXPECT_NE(render::testing::textNamed(list, text), nullptr) << text;
    EXPECT_EQ(render::testing::textNamed(list, "\u22123%")->color, toRender(Color::secondary()));
    EXPECT_EQ(sparklineTapURL(entry), "meterwick://tool/codex:work");
    EXPECT_EQ(sparklineTapURL(entryOf(payloadOf({}), highestUsageChoice())), "meterwick://open");

    // The paths: the negative area, the dashed zero line and the curve, all
    // inside the frame they are drawn in.
    int paths = 0;
    bool dashed = false, curveDrawn = false;
    for (const auto& op : list.ops) {
        const auto* shape = std::get_if<ShapeDraw>(&op.item);
        if (!shape || shape->shape.kind != render::ShapeKind::path) continue;
        ++paths;
        EXPECT_FALSE(shape->shape.path.unit);
        for (const auto& e : shape->shape.path.elements) {
            if (e.op == render::PathElement::Op::close) continue;
            EXPECT_GE(e.point.x, 0);
            EXPECT_LE(e.point.x, op.frame.width);
            EXPECT_GE(e.point.y, 0);
            EXPECT_LE(e.point.y, op.frame.height);
        }
        if (shape->paint == ShapeDraw::Paint::stroke && !shape->stroke.dash.empty()) dashed = true;
        if (shape->paint == ShapeDraw::Paint::stroke && shape->stroke.join == render::LineJoin::round) {
            curveDrawn = true;
            EXPECT_EQ(shape->shape.path.elements.front().point.x, 0);  // carried onto the window's start
        }
        if (shape->paint == ShapeDraw::Paint::fill) {
            EXPECT_EQ(shape->color, toRender(underGreen()).withOpacity(0.18));
        }
    }
    EXPECT_EQ(paths, 3);
    EXPECT_TRUE(dashed);
    EXPECT_TRUE(curveDrawn);
}

}  // namespace
}  // namespace mw
