#include "widgets/sparkline/view.hpp"

#include <algorithm>
#include <cstdlib>

#include "model/brand.hpp"
#include "model/pace.hpp"
#include "model/rounding.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/sparkline/chart.hpp"
#include "widgets/sparkline/content.hpp"

namespace mw {

using render::Alignment;
using render::Font;
using render::Frame;
using render::HAlign;
using render::HStack;
using render::Spacer;
using render::Text;
using render::VAlign;
using render::VStack;
using render::View;
using render::Weight;

namespace {

constexpr double kMarkSize = 14;

// "7% over pace", "8% under pace", "on pace".
std::string spokenDelta(double value) {
    const long long whole = roundHalfAway(value);
    if (whole == 0) return "on pace";
    return std::to_string(std::llabs(whole)) + (whole > 0 ? "% over pace" : "% under pace");
}

std::string spokenPace(double latest) { return "5h " + spokenDelta(latest); }

// What the curve's height and gutter labels show: its highest and lowest.
std::string spokenRange(const std::vector<SparklinePoint>& points) {
    const auto [low, high] =
        std::minmax_element(points.begin(), points.end(), [](const auto& a, const auto& b) { return a.v < b.v; });
    if (low == points.end()) return {};
    return "last 5h: highest " + spokenDelta(high->v) + ", lowest " + spokenDelta(low->v);
}

View header(const WidgetToolSnapshot& tool, Color colour, double latest, Date now, Date updatedAt) {
    View caption = Text("5h pace")
                       .font(Font::system(8.5, Weight::semibold))
                       .foreground(Color::tertiary())
                       .lineLimit(1);
    View value = Text(signedPercentText(latest))
                     .font(Font::system(15, Weight::bold, render::Design::rounded))
                     .monospacedDigit()
                     .foreground(sparklineValueColor(latest))
                     .lineLimit(1);
    return HStack({body(ProviderMarkView{tool.toolID, colour, kMarkSize}),
                   Text(tool.displayName).font(Font::system(12, Weight::semibold)).lineLimit(1),
                   body(FreshnessMark{now, updatedAt, false}), Spacer(6),
                   HStack({caption, value}, {.alignment = VAlign::center, .spacing = 4})
                       .accessibilityLabel(spokenPace(latest))
                       .layoutPriority(1)},
                  {.alignment = VAlign::center, .spacing = 5});
}

}  // namespace

std::string signedPercentText(double value) {
    const long long whole = roundHalfAway(value);
    if (whole > 0) return "+" + std::to_string(whole) + "%";
    if (whole < 0) return "\u2212" + std::to_string(std::llabs(whole)) + "%";
    return "0%";
}

Color sparklineValueColor(double value) {
    const long long whole = roundHalfAway(value);
    if (whole > 0) return warnOrange();
    if (whole < -5) return underGreen();
    return Color::secondary();
}

View sparklineView(const SparklineEntry& entry, WidgetFamily /*family: medium only; one layout*/) {
    if (auto panel = sparklinePanel(entry)) return body(*panel);
    const auto tool = resolvedSnapshot(entry);
    const auto curve = sparklineCurve(entry);
    // The panel rules guarantee both, and two points in the window.
    if (!tool || !curve) return {};
    const auto points = sparklineWindow(*curve, entry.date);
    const Color colour = toolColor(*tool);
    return VStack({header(*tool, colour, points.back().v, entry.date, entry.payload.updatedAt),
                   body(SparklineChart{points, entry.date, colour})
                       .frame(Frame::maxInfinity())
                       .accessibilityLabel(spokenRange(points)),
                   body(SparklineTimeAxis{}).padding(render::Edge::trailing, kSparklineScaleGutter).accessibilityLabel("")},
                  {.alignment = HAlign::leading, .spacing = 6})
        .frame(Frame::maxInfinity(Alignment::topLeading()));
}

std::string sparklineTapURL(const SparklineEntry& entry) {
    const auto key = resolvedToolKey(entry);
    if (key && !key->empty()) return toolLinkURL(*key);
    return openAppURL();
}

}  // namespace mw
