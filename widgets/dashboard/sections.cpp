#include "widgets/dashboard/sections.hpp"

#include <algorithm>
#include <cctype>
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
using M = DashboardMetrics;

namespace {

// The ring and its figure, at the usual size and in a roomy card.
struct RingMetrics {
    double side;
    double lineWidth;
    double figureSize;
    double captionSize;
};
constexpr RingMetrics kRing{34, 5, 10, 6.5};
constexpr RingMetrics kRoomyRing{60, 7, 16, 8};
constexpr double kCardCorner = 10;
// An idle card's ring is dimmed; its texts keep their colours so that they
// stay readable.
constexpr double kIdleRingOpacity = 0.45;
// A lower bound of a 9 pt semibold character's width, so that a capsule's
// minimum width never exceeds the text it holds.
constexpr double kCapsuleCharWidth = 4.4;
constexpr double kCapsuleMinWidth = 70;

Frame fillWidth(double height, Alignment a = Alignment::leading()) {
    Frame f = Frame::maxWidthInfinity(a);
    f.height = height;
    return f;
}

View capsule(const std::string& text, Color textColor, Color fill) {
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
    return capsule(text, Color::secondary(), Color::primary().withOpacity(0.08)).frame(f);
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
        title.push_back(capsule("Rate limited", dangerRed(), dangerRed().withOpacity(0.15))
                            .fixedSize());
    View hidden;
    if (h.hiddenCards > 0)
        hidden = Text("+" + std::to_string(h.hiddenCards) + " more")
                     .font(Font::system(8.5, Weight::semibold))
                     .foreground(Color::tertiary())
                     .lineLimit(1)
                     .fixedSize();
    return render::HStack(
               {
                   render::HStack(std::move(title), {.alignment = VAlign::center, .spacing = 6})
                       .frame(Frame::maxWidthInfinity(Alignment::leading())),
                   hidden,
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

// A card read in the order it is meant: "Session 91% used, critical,
// resets in 2h 10m, +6% vs pace".
std::string spokenCard(const DashboardCard& c) {
    std::string out =
        c.card.title + " " + spokenRingFigure(percentText(cardRingPercent(c.card, c.remaining)), c.remaining,
                                              c.card.dangerLevel);
    if (!c.card.resetText.empty()) {
        std::string reset = c.card.resetText;
        reset[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(reset[0])));
        out += ", " + reset;
    }
    if (const auto detail = cardDetailText(c.card)) out += ", " + *detail;
    return out;
}

View cardRing(const DashboardCard& c) {
    const RingMetrics& m = c.roomy ? kRoomyRing : kRing;
    const double percent = cardRingPercent(c.card, c.remaining);
    char number[32];
    std::snprintf(number, sizeof number, "%lld", percentValue(percent));
    const View figure = (Text(number).font(Font::system(m.figureSize, Weight::bold, render::Design::rounded)) +
                         Text("%").font(Font::system(m.figureSize * 0.55, Weight::bold, render::Design::rounded)))
                            .monospacedDigit()
                            .lineLimit(1)
                            .minimumScaleFactor(0.6);
    View caption;
    if (c.remaining)
        caption = Text("left")
                      .font(Font::system(m.captionSize, Weight::semibold))
                      .foreground(Color::secondary())
                      .lineLimit(1);
    const double hole = m.side - 2 * m.lineWidth;
    return body(UsageRing{percent, c.tool, c.card.dangerLevel, m.lineWidth})
        .opacity(c.card.isIdle ? kIdleRingOpacity : 1)
        .frame(m.side, m.side)
        .overlay(render::VStack({figure, caption}, {.alignment = HAlign::center, .spacing = 0}).frame(hole, hole));
}

std::vector<View> cardTexts(const WidgetUsageCard& card, bool roomy) {
    const double size = roomy ? 12 : 10;
    // An idle card's title is secondary rather than primary: quieter, still legible.
    const View title = render::HStack({render::Image::system(card.icon)
                                           .font(Font::system(size - 1, Weight::semibold))
                                           .foreground(Color::secondary()),
                                       Text(card.title)
                                           .font(Font::system(size, Weight::semibold))
                                           .foreground(card.isIdle ? Color::secondary() : Color::primary())},
                                      {.alignment = VAlign::center, .spacing = 3})
                           .lineLimit(1);
    View reset;
    if (!card.resetText.empty())
        reset = Text(card.resetText).font(Font::system(roomy ? 9.5 : 8.5)).foreground(Color::tertiary());
    View detail;
    if (const auto text = cardDetailText(card))
        detail = Text(*text)
                     .font(Font::system(roomy ? 9.5 : 8.5, Weight::medium))
                     .foreground(cardDetailColor(card));
    return {title, reset, detail};
}

}  // namespace

View body(const DashboardCard& c) {
    View content;
    const double height = dashboardCardHeight(c.wide, c.roomy);
    if (c.wide && !c.roomy) {
        content = render::HStack({cardRing(c), render::VStack(cardTexts(c.card, false), {.alignment = HAlign::leading, .spacing = 1})
                                                   .frame(Frame::maxWidthInfinity(Alignment::leading()))},
                                 {.alignment = VAlign::center, .spacing = 8})
                      .padding(render::EdgeInsets{8, 9, 8, 9});
    } else {
        content = render::VStack({cardRing(c), render::VStack(cardTexts(c.card, c.roomy), {.alignment = HAlign::center, .spacing = c.roomy ? 2.0 : 1.0})},
                                 {.alignment = HAlign::center, .spacing = c.roomy ? 8.0 : 4.0})
                      .multilineTextAlignment(render::TextAlignment::center)
                      .padding(c.roomy ? 10 : 7);
    }
    // Texts that do not fit are cut rather than shrunk, so every card's
    // lines keep one size.
    return content.lineLimit(1)
        .accessibilityLabel(spokenCard(c))
        .frame(fillWidth(height, c.wide && !c.roomy ? Alignment::leading() : Alignment::top()))
        .background(render::RoundedRectangle(kCardCorner).fill(Color::primary().withOpacity(0.05)));
}

View body(const DashboardCardGrid& grid) {
    if (grid.cards.empty() || grid.columns == 0) return {};
    const double height = dashboardCardHeight(grid.wide, grid.roomy);
    std::vector<View> rows;
    for (std::size_t start = 0; start < grid.cards.size(); start += grid.columns) {
        std::vector<View> row;
        for (std::size_t i = start; i < start + grid.columns; ++i) {
            if (i < grid.cards.size())
                row.push_back(body(DashboardCard{grid.cards[i], grid.tool, grid.wide, grid.remaining, grid.roomy}));
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
// Room for one date text at 8 pt ("Nov 30"); a first label closer than two
// of these to the right edge would run into the last one.
constexpr double kDateLabelRoom = 36;
// At the right of the bars: the dashed line's value.
constexpr double kChartGutter = 24;

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

View bars(const DailyChart& chart, render::Size offered) {
    const render::Size size{std::max(0.0, offered.width - kChartGutter), offered.height};
    const Slots s = slotsFor(chart, size.width);
    const Color faint = Color::primary().withOpacity(0.12);
    constexpr double kLabelHeight = 10;
    std::vector<View> layers{
        render::Path(render::PathData::polyline({{0, size.height / 2}, {size.width, size.height / 2}}, false))
            .stroke(faint, render::StrokeStyle{.lineWidth = 0.5, .dash = {2, 2}})
            .frame(size.width, size.height),
        render::Rectangle().fill(faint).frame(size.width, 0.5).offset(0, size.height - 0.5),
        Text("50%")
            .font(Font::system(7.5, Weight::medium))
            .monospacedDigit()
            .foreground(Color::tertiary())
            .lineLimit(1)
            .frame(kChartGutter, kLabelHeight, Alignment::trailing())
            .offset(size.width, size.height / 2 - kLabelHeight / 2)
            .accessibilityLabel(""),
    };
    for (std::size_t i = 0; i < chart.days.size(); ++i) {
        const double peak = chart.days[i].peakPercent;
        const double fraction = std::isnan(peak) ? 0 : std::clamp(peak / 100, 0.0, 1.0);
        const double h = std::max(kMinBarHeight, fraction * size.height);
        const double x = s.firstX + static_cast<double>(i) * s.slot;
        layers.push_back(render::RoundedRectangle(std::min(2.0, s.bar / 2))
                             .fill(dailyBarColor(peak, chart.tool))
                             .frame(s.bar, h)
                             .offset(x, size.height - h));
    }
    // The bars' heights, in words: the highest day.
    const auto top = std::max_element(chart.days.begin(), chart.days.end(), [](const auto& a, const auto& b) {
        return !(a.peakPercent >= b.peakPercent);  // a day without a number never wins
    });
    std::string words;
    if (top != chart.days.end() && !std::isnan(top->peakPercent))
        words = "highest " + percentText(top->peakPercent) + " on " + shortDayText(top->date);
    return render::ZStack(std::move(layers), {.alignment = Alignment::topLeading()}).accessibilityLabel(words);
}

View dateLabels(const DailyChart& chart, render::Size offered) {
    if (chart.days.empty()) return {};
    const render::Size size{std::max(0.0, offered.width - kChartGutter), offered.height};
    const Slots s = slotsFor(chart, size.width);
    const auto label = [](const std::string& text) {
        return Text(shortDayText(text)).font(Font::system(8)).foreground(Color::tertiary()).lineLimit(1);
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
        render::HStack({Text("Daily peak").font(Font::system(9, Weight::semibold)).foreground(Color::secondary()),
                        render::Spacer(4),
                        Text(chartSpanText(chart.days.size())).font(Font::system(8.5)).foreground(Color::tertiary())},
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
                .foreground(Color::secondary())
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
        model = Text(*t.model).font(Font::system(9)).foreground(Color::secondary());
    const View caption =
        render::HStack({Text("Tokens").font(Font::system(9, Weight::semibold)).foreground(Color::secondary()),
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
                                            .foreground(Color::tertiary())},
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
        .foreground(Color::tertiary())
        .lineLimit(1)
        .frame(fillWidth(M::footerHeight));
}

}  // namespace mw
