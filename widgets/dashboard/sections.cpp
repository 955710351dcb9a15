#include "widgets/dashboard/sections.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "model/accounts.hpp"
#include "model/pace.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/dashboard/plan.hpp"
#include "widgets/focus/texts.hpp"

namespace mw {

using render::Alignment;
using render::Edge;
using render::Font;
using render::Frame;
using render::HAlign;
using render::Text;
using render::VAlign;
using render::View;
using render::Weight;
using RColor = render::Color;
using M = DashboardMetrics;

namespace {

constexpr double kRingSide = 34;
constexpr double kRingLineWidth = 5;
constexpr double kCardCorner = 10;
constexpr double kIdleOpacity = 0.45;
// A lower bound of a 9 pt semibold character's width, so that a capsule's
// minimum width never exceeds the text it holds.
constexpr double kCapsuleCharWidth = 4.4;
constexpr double kCapsuleMinWidth = 70;

Frame fillWidth(double height, Alignment a = Alignment::leading()) {
    Frame f = Frame::maxWidthInfinity(a);
    f.height = height;
    return f;
}

View capsule(const std::string& text, RColor textColor, RColor fill) {
    return Text(text)
        .font(Font::system(9, Weight::semibold))
        .foreground(textColor)
        .lineLimit(1)
        .padding(render::EdgeInsets{2, 6, 2, 6})
        .background(render::Capsule().fill(fill));
}

// The plan's capsule keeps a short text whole beside a long name, and gives
// way (down to a few characters) only when the name alone fills the line.
View planCapsule(const std::string& text) {
    if (text.empty()) return {};
    Frame f;
    f.minWidth = std::min(kCapsuleMinWidth, static_cast<double>(text.size()) * kCapsuleCharWidth + 12);
    f.alignment = Alignment::leading();
    return capsule(text, RColor::secondary(), RColor::primary().withOpacity(0.08)).frame(f);
}

}  // namespace

// ---------------------------------------------------------------- header

View body(const DashboardHeader& h) {
    std::vector<View> title{
        body(ProviderMarkView{h.toolID, h.tool, 16}),
        Text(h.displayName).font(Font::system(13, Weight::semibold)).lineLimit(1).layoutPriority(1),
        planCapsule(h.subscriptionType),
    };
    if (h.isRateLimited)
        title.push_back(capsule("Rate limited", toRender(dangerRed()), toRender(dangerRed()).withOpacity(0.15))
                            .fixedSize());
    return render::HStack(
               {
                   render::HStack(std::move(title), {.alignment = VAlign::center, .spacing = 6})
                       .frame(Frame::maxWidthInfinity(Alignment::leading())),
                   body(FreshnessMark{h.now, h.updatedAt, false}),
               },
               {.alignment = VAlign::center, .spacing = 6})
        .frame(fillWidth(M::headerHeight));
}

// ---------------------------------------------------------------- cards

std::optional<std::string> cardDetailText(const WidgetUsageCard& card) {
    if (card.rateDeltaText && !card.rateDeltaText->empty()) return card.rateDeltaText;
    if (card.burnRateETA && !card.burnRateETA->empty()) return card.burnRateETA;
    return std::nullopt;
}

Color cardDetailColor(const WidgetUsageCard& card) { return card.overRate ? warnOrange() : Color::secondary(); }

double cardRingPercent(const WidgetUsageCard& card, bool remaining) {
    return remaining ? std::max(0.0, 100 - card.usedPercent) : card.usedPercent;
}

namespace {

View cardRing(const DashboardCard& c) {
    const double percent = cardRingPercent(c.card, c.remaining);
    char number[32];
    std::snprintf(number, sizeof number, "%lld", percentValue(percent));
    const View figure = (Text(number).font(Font::system(10, Weight::bold, render::Design::rounded)) +
                         Text("%").font(Font::system(5.5, Weight::bold, render::Design::rounded)))
                            .monospacedDigit()
                            .lineLimit(1)
                            .minimumScaleFactor(0.6);
    View caption;
    if (c.remaining)
        caption = Text("left").font(Font::system(6.5, Weight::semibold)).foreground(RColor::secondary()).lineLimit(1);
    const double hole = kRingSide - 2 * kRingLineWidth;
    return body(UsageRing{percent, c.tool, c.card.dangerLevel, kRingLineWidth})
        .frame(kRingSide, kRingSide)
        .overlay(render::VStack({figure, caption}, {.alignment = HAlign::center, .spacing = 0}).frame(hole, hole));
}

std::vector<View> cardTexts(const WidgetUsageCard& card) {
    const View title = render::HStack({render::Image::system(card.icon).font(Font::system(9, Weight::semibold))
                                           .foreground(RColor::secondary()),
                                       Text(card.title).font(Font::system(10, Weight::semibold))},
                                      {.alignment = VAlign::center, .spacing = 3})
                           .lineLimit(1);
    View reset;
    if (!card.resetText.empty())
        reset = Text(card.resetText).font(Font::system(8.5)).foreground(RColor::tertiary());
    View detail;
    if (const auto text = cardDetailText(card))
        detail = Text(*text).font(Font::system(8.5, Weight::medium)).foreground(toRender(cardDetailColor(card)));
    return {title, reset, detail};
}

}  // namespace

View body(const DashboardCard& c) {
    View content;
    double height = M::tallCardHeight;
    if (c.wide) {
        height = M::wideCardHeight;
        content = render::HStack({cardRing(c), render::VStack(cardTexts(c.card), {.alignment = HAlign::leading, .spacing = 1})
                                                   .frame(Frame::maxWidthInfinity(Alignment::leading()))},
                                 {.alignment = VAlign::center, .spacing = 8})
                      .padding(render::EdgeInsets{8, 9, 8, 9});
    } else {
        content = render::VStack({cardRing(c), render::VStack(cardTexts(c.card), {.alignment = HAlign::center, .spacing = 1})},
                                 {.alignment = HAlign::center, .spacing = 4})
                      .multilineTextAlignment(render::TextAlignment::center)
                      .padding(7);
    }
    // Texts that do not fit are cut rather than shrunk, so every card's
    // lines keep one size.
    return content.lineLimit(1)
        .frame(fillWidth(height, c.wide ? Alignment::leading() : Alignment::top()))
        .background(render::RoundedRectangle(kCardCorner).fill(RColor::primary().withOpacity(0.05)))
        .opacity(c.card.isIdle ? kIdleOpacity : 1);
}

View body(const DashboardCardGrid& grid) {
    if (grid.cards.empty() || grid.columns == 0) return {};
    const double height = grid.wide ? M::wideCardHeight : M::tallCardHeight;
    std::vector<View> rows;
    for (std::size_t start = 0; start < grid.cards.size(); start += grid.columns) {
        std::vector<View> row;
        for (std::size_t i = start; i < start + grid.columns; ++i) {
            if (i < grid.cards.size())
                row.push_back(body(DashboardCard{grid.cards[i], grid.tool, grid.wide, grid.remaining}));
            else
                row.push_back(View().frame(fillWidth(height)));  // keeps the last row's cards as wide as the rest
        }
        rows.push_back(render::HStack(std::move(row), {.alignment = VAlign::top, .spacing = M::cardSpacing}));
    }
    return render::VStack(std::move(rows), {.alignment = HAlign::leading, .spacing = M::cardSpacing});
}

// ---------------------------------------------------------------- chart

std::vector<WidgetDailyEntry> lastDays(const std::vector<WidgetDailyEntry>& daily, std::size_t count) {
    const std::size_t n = std::min(count, daily.size());
    return {daily.end() - static_cast<std::ptrdiff_t>(n), daily.end()};
}

Color dailyBarColor(double peakPercent, const Color& tool) { return peakPercent >= 90 ? dangerRed() : tool; }

std::string chartSpanText(std::size_t days) { return std::to_string(days) + (days == 1 ? " day" : " days"); }

namespace {

constexpr double kBarShare = 0.62;  // of a day's slot; the rest is the gap
constexpr double kMinBarHeight = 1;
// Room for one date text at 8 pt; a first label closer than two of these to
// the right edge would run into the last one.
constexpr double kDateLabelRoom = 52;

struct Slots {
    double slot;
    double bar;
    double firstX;  // left edge of the oldest bar
};

Slots slotsFor(const DailyChart& chart, double width) {
    const auto slots = static_cast<double>(std::max<std::size_t>({chart.slots, chart.days.size(), 1}));
    const double slot = width / slots;
    const double bar = std::max(1.0, slot * kBarShare);
    const double firstX = (slots - static_cast<double>(chart.days.size())) * slot + (slot - bar) / 2;
    return {slot, bar, firstX};
}

View bars(const DailyChart& chart, render::Size size) {
    const Slots s = slotsFor(chart, size.width);
    const RColor faint = RColor::primary().withOpacity(0.12);
    std::vector<View> layers{
        render::Path(render::PathData::polyline({{0, 0.5}, {1, 0.5}}))
            .stroke(faint, render::StrokeStyle{.lineWidth = 0.5, .dash = {2, 2}}),
        render::Rectangle().fill(faint).frame(size.width, 0.5).offset(0, size.height - 0.5),
    };
    for (std::size_t i = 0; i < chart.days.size(); ++i) {
        const double peak = chart.days[i].peakPercent;
        const double fraction = std::isnan(peak) ? 0 : std::clamp(peak / 100, 0.0, 1.0);
        const double h = std::max(kMinBarHeight, fraction * size.height);
        const double x = s.firstX + static_cast<double>(i) * s.slot;
        layers.push_back(render::RoundedRectangle(std::min(2.0, s.bar / 2))
                             .fill(toRender(dailyBarColor(peak, chart.tool)))
                             .frame(s.bar, h)
                             .offset(x, size.height - h));
    }
    return render::ZStack(std::move(layers), {.alignment = Alignment::topLeading()});
}

View dateLabels(const DailyChart& chart, render::Size size) {
    if (chart.days.empty()) return {};
    const Slots s = slotsFor(chart, size.width);
    const auto label = [](const std::string& text) {
        return Text(text).font(Font::system(8)).foreground(RColor::tertiary()).lineLimit(1);
    };
    View first;
    if (chart.days.size() >= 2 && size.width - s.firstX >= 2 * kDateLabelRoom)
        first = label(chart.days.front().date).padding(Edge::leading, std::max(0.0, s.firstX));
    return render::HStack({first, render::Spacer(4), label(chart.days.back().date)},
                          {.alignment = VAlign::center, .spacing = 0})
        .frame(size.width, size.height, Alignment::leading());
}

}  // namespace

View body(const DailyChart& chart) {
    if (chart.days.empty()) return {};
    const View caption =
        render::HStack({Text("Daily peak").font(Font::system(9, Weight::semibold)).foreground(RColor::secondary()),
                        render::Spacer(4),
                        Text(chartSpanText(chart.days.size())).font(Font::system(8.5)).foreground(RColor::tertiary())},
                       {.alignment = VAlign::center, .spacing = 0})
            .lineLimit(1)
            .frame(fillWidth(M::captionHeight));
    Frame barsFrame = Frame::maxInfinity();
    barsFrame.minHeight = M::chartMinBarsHeight;
    return render::VStack(
        {
            caption,
            render::VStack({render::GeometryReader([chart](render::Size s) { return bars(chart, s); }).frame(barsFrame),
                            render::GeometryReader([chart](render::Size s) { return dateLabels(chart, s); })
                                .frame(fillWidth(M::chartLabelsHeight))},
                           {.alignment = HAlign::leading, .spacing = 3}),
        },
        {.alignment = HAlign::leading, .spacing = M::captionSpacing});
}

// ---------------------------------------------------------------- tokens

namespace {

View cell(const std::string& text, double height) {
    return Text(text).frame(fillWidth(height, Alignment::trailing()));
}

View tableRow(const char* label, std::int64_t input, std::int64_t output, std::int64_t cache, double cost,
              NumberStyle style) {
    return render::HStack(
        {
            Text(label)
                .font(Font::system(9, Weight::semibold))
                .foreground(RColor::secondary())
                .frame(M::tableLabelWidth, M::tableRowHeight, Alignment::leading()),
            render::HStack({cell(countText(input, style), M::tableRowHeight),
                            cell(countText(output, style), M::tableRowHeight),
                            cell(countText(cache, style), M::tableRowHeight),
                            cell(costText(cost, style), M::tableRowHeight)},
                           {.alignment = VAlign::center, .spacing = 0})
                .font(Font::system(9.5, Weight::medium))
                .monospacedDigit(),
        },
        {.alignment = VAlign::center, .spacing = 0});
}

}  // namespace

View body(const TokenTable& table) {
    if (table.rows <= 0) return {};
    const auto& t = table.tokens;
    View model;
    if (t.model && !t.model->empty())
        model = Text(*t.model).font(Font::system(9)).foreground(RColor::secondary());
    const View caption =
        render::HStack({Text("Tokens").font(Font::system(9, Weight::semibold)).foreground(RColor::secondary()),
                        render::Spacer(8), model},
                       {.alignment = VAlign::center, .spacing = 0})
            .lineLimit(1)
            .frame(fillWidth(M::captionHeight));
    const View header = render::HStack({View().frame(Frame{.width = M::tableLabelWidth}),
                                        render::HStack({cell("Input", M::tableHeaderHeight),
                                                        cell("Output", M::tableHeaderHeight),
                                                        cell("Cache", M::tableHeaderHeight),
                                                        cell("Cost", M::tableHeaderHeight)},
                                                       {.alignment = VAlign::center, .spacing = 0})
                                            .font(Font::system(8, Weight::semibold))
                                            .foreground(RColor::tertiary())},
                                       {.alignment = VAlign::center, .spacing = 0});
    std::vector<View> rows{header, tableRow("Today", t.todayInput, t.todayOutput, t.todayCache, t.todayCost, table.style)};
    if (table.rows >= 2)
        rows.push_back(tableRow("Month", t.monthInput, t.monthOutput, t.monthCache, t.monthCost, table.style));
    return render::VStack(
               {caption, render::VStack(std::move(rows), {.alignment = HAlign::leading, .spacing = 0})},
               {.alignment = HAlign::leading, .spacing = M::captionSpacing})
        .lineLimit(1);
}

// ---------------------------------------------------------------- footer

std::string dashboardFooterText(const DashboardFooter& f) {
    std::string text = "Updated " + ageText(f.now, f.updated);
    if (f.nextRefreshAt && *f.nextRefreshAt > f.now) {
        const double seconds = *f.nextRefreshAt - f.now;
        text += seconds < 60 ? " \xC2\xB7 next in <1m" : " \xC2\xB7 next in " + durationText(seconds);
    }
    if (f.relayedFrom && !f.relayedFrom->empty()) text += " \xC2\xB7 via " + *f.relayedFrom;
    return text;
}

View body(const DashboardFooter& f) {
    return Text(dashboardFooterText(f))
        .font(Font::system(8.5))
        .foreground(RColor::tertiary())
        .lineLimit(1)
        .frame(fillWidth(M::footerHeight));
}

}  // namespace mw
