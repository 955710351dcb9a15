// The pace drawings: concentric rings with a tick where usage should be by
// now, the tick itself, and the bar form.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "model/pace.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {

namespace {

using render::LineCap;
using render::LineJoin;
using render::StrokeStyle;

// Gap between the outer ring's stroke and the inner one's.
constexpr double kRingGap = 3;
// The inner ring's fill is drawn at this share of its colour's opacity, so
// the second window reads as the lesser of the two where the rings meet.
constexpr double kInnerFillOpacity = 0.9;
// The tick: a thin pill in the primary colour.
constexpr double kTickWidth = 1.6;
constexpr double kTickCornerRadius = kTickWidth / 2;
constexpr double kTickOpacity = 0.6;
// Track tint of rings and bars.
constexpr double kTrackOpacity = 0.09;

double clampedUnit(double value) {
    if (!(value > 0)) return 0;  // negative, or not a number
    return std::min(value, 1.0);
}

StrokeStyle ringStroke(double width, LineCap cap) {
    return StrokeStyle{.lineWidth = width, .cap = cap, .join = LineJoin::miter, .miterLimit = 10};
}

// One ring: track, fill from the top clockwise to the shown value, and the
// pace tick, padded so the strokes stay inside the frame.
render::View ring(const WidgetUsageWindow& window, const PaceRings& rings, double inset, double width,
                  double fillOpacity) {
    using namespace render;
    Color fill = fillColor(window, rings.brand, rings.now);
    if (fillOpacity != 1) fill = fill.withOpacity(fillOpacity);
    const PaceTick tick{paceTickFraction(window, rings.now, rings.remaining),
                        paceTickLength(window, rings.now, width)};
    return ZStack({
                      Circle().stroke(Color::primary().withOpacity(kTrackOpacity), ringStroke(width, LineCap::butt)),
                      Circle()
                          .trim(0, shownValue(window, rings.remaining))
                          .stroke(fill, ringStroke(width, LineCap::round))
                          .rotation(-std::numbers::pi / 2),
                      body(tick),
                  })
        .padding(inset + width * 0.5);
}

}  // namespace

render::View body(const PaceTick& tick) {
    using namespace render;
    const double degrees = clampedUnit(tick.fraction) * 360;
    const double length = std::max(0.0, tick.length);
    return GeometryReader([degrees, length](Size offered) {
        const double side = std::min(offered.width, offered.height);
        return RoundedRectangle(kTickCornerRadius, CornerStyle::continuous)
            .fill(Color::primary().withOpacity(kTickOpacity))
            .frame(kTickWidth, length)
            .offset(0, -side * 0.5)
            .rotationDegrees(degrees)
            .frame(offered.width, offered.height);
    });
}

render::View body(const PaceRings& rings) {
    using namespace render;
    std::vector<View> layers{ring(rings.outer, rings, 0, rings.outerWidth, 1)};
    if (rings.inner) {
        layers.push_back(ring(*rings.inner, rings, rings.outerWidth + kRingGap, rings.innerWidth, kInnerFillOpacity));
    }
    return ZStack(std::move(layers));
}

render::View body(const PaceBar& bar) {
    using namespace render;
    const double height = std::max(0.0, bar.height);
    const double value = shownValue(bar.window, bar.remaining);
    const Color fill = fillColor(bar.window, bar.brand, bar.now);
    // The tick marks where the fill should have reached by now (the share that
    // should be left, when the bar shows what is left); none without a pace.
    const bool hasPace = elapsedFraction(bar.window, bar.now).has_value();
    const double tickAt = paceTickFraction(bar.window, bar.now, bar.remaining);
    return GeometryReader([=](Size offered) {
               const double width = offered.width;
               View track = Capsule().fill(Color::primary().withOpacity(kTrackOpacity));
               if (value > 0) {
                   track = track.overlay(Capsule().fill(fill).frame(width * value, height), Alignment::leading());
               }
               if (hasPace) {
                   // As long as the ring's tick is beyond its stroke: 1.5 pt each side.
                   const double x = std::clamp(width * clampedUnit(tickAt) - kTickWidth / 2, 0.0,
                                               std::max(0.0, width - kTickWidth));
                   track = track.overlay(RoundedRectangle(kTickCornerRadius, CornerStyle::continuous)
                                             .fill(Color::primary().withOpacity(kTickOpacity))
                                             .frame(kTickWidth, height + 3)
                                             .offset(x, 0),
                                         Alignment::leading());
               }
               return track.frame(width, height);
           })
        .frame(Frame{.height = height});
}

}  // namespace mw
