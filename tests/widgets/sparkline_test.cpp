#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "config/choices.hpp"
#include "support/display_list.hpp"
#include "support/payloads.hpp"
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
using testing::textNamed;
using mw::testing::kNow;
using mw::testing::tool;
using Points = std::vector<SparklinePoint>;

const render::testing::FakeMeasurer kMeasurer;
constexpr double kHour = 3600;
const render::Size kContent{332, 138};  // systemMedium less its margins
const render::Size kChart{300, 100};
constexpr double kTop = kSparklineVerticalInset, kBottom = 100 - kSparklineVerticalInset;

const ShapeDraw& shapeOf(const render::DrawOp& op) { return std::get<ShapeDraw>(op.item); }

// Points every `step` seconds from `from` seconds before kNow up to kNow.
Points curve(double from, double step, double (*value)(double hoursAgo)) {
    Points points;
    for (double t = -from; t <= 0; t += step) points.push_back({kNow + t, value(-t / kHour)});
    return points;
}

// Written a minute before kNow.
WidgetPayload payloadOf(std::vector<WidgetToolSnapshot> tools) {
    auto p = mw::testing::payloadOf(std::move(tools));
    p.updatedAt = kNow - 60;
    return p;
}

SparklineEntry entryOf(WidgetPayload payload, std::string_view id) {
    const std::string key(id);
    return SparklineEntry{kNow, std::move(payload), ReadStatus::ok,
                          id == kHighestUsageID ? highestUsageChoice() : WidgetToolChoice{key, key, key}};
}

DisplayList draw(const SparklineEntry& entry) {
    return render::layout(sparklineView(entry, WidgetFamily::systemMedium), kContent, kMeasurer);
}

// Every drawn point inside the chart, between the insets.
void expectInside(const std::vector<Point>& points) {
    for (const auto& p : points) {
        EXPECT_GE(p.x, 0);
        EXPECT_LE(p.x, kChart.width);
        EXPECT_GE(p.y, kTop - 1e-9);
        EXPECT_LE(p.y, kBottom + 1e-9);
    }
}

TEST(SparklineContent, WindowKeepsFiveHoursAndCarriesOnePointOntoItsStart) {
    const Date start = kNow - 5 * kHour;
    const Points raw{
        {kNow + 60, 99},  // after the entry's date
        {kNow - 2 * kHour, 4},
        {start - 2 * kHour, 50},  // too old, not the last before
        {start - kHour, 10},      // last before the window
        {start + kHour, 20},
        {kNow - kHour, std::numeric_limits<double>::quiet_NaN()},
    };
    EXPECT_EQ(sparklineWindow(raw, kNow), (Points{{start, 15}, {start + kHour, 20}, {kNow - 2 * kHour, 4}}));

    // A point on the start needs nothing carried; with nothing inside, nothing is drawn.
    EXPECT_EQ(sparklineWindow({{start - 60, 1}, {start, 2}, {kNow, 3}}, kNow), (Points{{start, 2}, {kNow, 3}}));
    EXPECT_TRUE(sparklineWindow({{start - 60, 1}, {start - 30, 2}}, kNow).empty());
}

TEST(SparklineView, LatestValueTextAndColour) {
    const struct {
        double value;
        const char* text;
        Color colour;
    } cases[] = {{12.4, "+12%", warnOrange()},          {0.5, "+1%", warnOrange()},
                 {0.49, "0%", Color::secondary()},      {-0.4, "0%", Color::secondary()},
                 {-4.5, "\u22125%", Color::secondary()}, {-5.4, "\u22125%", Color::secondary()},
                 {-5.5, "\u22126%", underGreen()},       {-40, "\u221240%", underGreen()}};
    for (const auto& c : cases) {
        EXPECT_EQ(signedPercentText(c.value), c.text) << c.value;
        EXPECT_EQ(sparklineValueColor(c.value), c.colour) << c.value;
    }
}

TEST(SparklineChart, ScalesPositiveNegativeAndFlatCurves) {
    const auto up = sparklineGeometry(curve(4 * kHour, 600, [](double h) { return 30 - 5 * h; }), kNow, kChart);
    expectInside(up.line);
    EXPECT_DOUBLE_EQ(up.baselineY, kBottom);                            // zero at the foot
    EXPECT_NEAR(up.latest.y, kTop + 0.08 / 1.08 * (kBottom - kTop), 1e-9);  // headroom above the peak
    EXPECT_DOUBLE_EQ(up.latest.x, kChart.width);
    EXPECT_DOUBLE_EQ(up.line.front().x, kChart.width * 0.2);  // four of five hours
    EXPECT_FALSE(up.above.empty());
    EXPECT_TRUE(up.below.empty());

    const auto falling = curve(5 * kHour, 600, [](double h) { return -2 - h; });
    const auto down = sparklineGeometry(falling, kNow, kChart);
    expectInside(down.line);
    EXPECT_DOUBLE_EQ(down.baselineY, kTop);  // zero at the head
    EXPECT_DOUBLE_EQ(down.line.front().x, 0);
    EXPECT_TRUE(down.above.empty());
    EXPECT_FALSE(down.below.empty());
    // Small values are not blown up to the full height: the span is at least 10 points.
    EXPECT_DOUBLE_EQ(sparklineScale(falling).high, 0);
    EXPECT_LE(sparklineScale(falling).low, -10);

    const auto flat = sparklineGeometry(curve(3 * kHour, 600, [](double) { return 0.0; }), kNow, kChart);
    EXPECT_DOUBLE_EQ(flat.baselineY, kChart.height / 2);
    for (const auto& p : flat.line) EXPECT_DOUBLE_EQ(p.y, flat.baselineY);
    EXPECT_TRUE(flat.above.empty());
    EXPECT_TRUE(flat.below.empty());
}

TEST(SparklineChart, AreasMeetTheZeroLineWhereTheCurveCrossesIt) {
    const auto g = sparklineGeometry({{kNow - 4 * kHour, 10}, {kNow - 2 * kHour, -10}, {kNow, 10}}, kNow, kChart);
    expectInside(g.line);
    ASSERT_FALSE(g.above.empty());
    ASSERT_FALSE(g.below.empty());
    for (const auto& p : g.above) EXPECT_LE(p.y, g.baselineY + 1e-9);
    for (const auto& p : g.below) EXPECT_GE(p.y, g.baselineY - 1e-9);
    // Both areas pass through the crossings, at one and three hours ago.
    for (const double x : {kChart.width * 0.4, kChart.width * 0.8}) {
        const auto at = [&](const std::vector<Point>& area) {
            return std::any_of(area.begin(), area.end(), [&](Point p) {
                return std::abs(p.x - x) < 1e-9 && std::abs(p.y - g.baselineY) < 1e-9;
            });
        };
        EXPECT_TRUE(at(g.above)) << x;
        EXPECT_TRUE(at(g.below)) << x;
    }
}

TEST(SparklineChart, AGapInTheDataBreaksTheCurveAndItsArea) {
    std::vector<SparklinePoint> points;
    for (int m = 0; m <= 60; m += 5) points.push_back({kNow - 4 * kHour + m * 60, 10});  // 5-minute steps
    for (int m = 0; m <= 60; m += 5) points.push_back({kNow - kHour + m * 60, 10});       // after 2 h of nothing
    const auto g = sparklineGeometry(points, kNow, kChart);
    EXPECT_EQ(g.breaks, (std::vector<std::size_t>{13}));
    // No area over the gap: nothing above the zero line between the runs.
    const double gapFrom = kChart.width * 0.4, gapTo = kChart.width * 0.8;
    for (const auto& p : g.above) {
        if (p.x > gapFrom + 1e-9 && p.x < gapTo - 1e-9) {
            EXPECT_NEAR(p.y, g.baselineY, 1e-9) << p.x;
        }
    }
    // Steady data, however sparse, is one run.
    EXPECT_TRUE(sparklineGeometry({{kNow - 4 * kHour, 1}, {kNow - 2 * kHour, 2}, {kNow, 3}}, kNow, kChart).breaks.empty());
}

TEST(SparklineView, DrawsHeaderChartAxisAndLinksTheTool) {
    auto codex = tool("codex", "work");
    codex.displayName = "Codex \u00B7 Work";
    auto payload = payloadOf({codex});
    payload.sparklines["codex"] = curve(6 * kHour, 300, [](double h) { return -3 - h; });
    const auto entry = entryOf(payload, "codex:work");
    const DisplayList list = draw(entry);

    ASSERT_NE(textNamed(list, "\u22123%"), nullptr);
    EXPECT_EQ(textNamed(list, "\u22123%")->color, Color::secondary());
    EXPECT_EQ(sparklineTapURL(entry), "meterwick://tool/codex:work");
    EXPECT_EQ(sparklineTapURL(entryOf(payloadOf({}), kHighestUsageID)), "meterwick://open");
    EXPECT_NE(textNamed(draw(entryOf(payloadOf({}), "codex")), "codex is turned off"), nullptr);

    // The paths (the negative area, the zero line and the curve; their look
    // is in the golden describe files), every point inside the frame it is
    // drawn in, though the curve began before the window.
    const auto paths = testing::opsOf(list, [](const render::DrawOp& op) {
        return std::holds_alternative<ShapeDraw>(op.item) && shapeOf(op).shape.kind == render::ShapeKind::path;
    });
    ASSERT_EQ(paths.size(), 3u);
    for (const auto* op : paths) {
        EXPECT_FALSE(shapeOf(*op).shape.path.unit);
        for (const auto& e : shapeOf(*op).shape.path.elements) {
            if (e.op == render::PathElement::Op::close) continue;
            EXPECT_TRUE(e.point.x >= 0 && e.point.x <= op->frame.width) << e.point.x;
            EXPECT_TRUE(e.point.y >= 0 && e.point.y <= op->frame.height) << e.point.y;
        }
    }
    EXPECT_EQ(shapeOf(*paths[2]).shape.path.elements.front().point.x, 0);  // carried onto the window's start
}

}  // namespace
}  // namespace mw
