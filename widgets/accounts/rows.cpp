#include "widgets/accounts/rows.hpp"

#include <algorithm>
#include <cstdint>

#include "model/brand.hpp"
#include "model/pace.hpp"
#include "model/rounding.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {

using render::Alignment;
using render::Edge;
using render::Font;
using render::Frame;
using render::HAlign;
using render::HStack;
using render::Image;
using render::Spacer;
using render::Text;
using render::VAlign;
using render::View;
using render::VStack;
using render::Weight;

namespace {

View fixedWidth(View view, double width, Alignment alignment) {
    Frame frame;
    frame.width = width;
    frame.alignment = alignment;
    return view.frame(frame);
}

View fixedHeight(View view, double height, Alignment alignment = Alignment::center()) {
    Frame frame;
    frame.height = height;
    frame.alignment = alignment;
    return view.frame(frame);
}

View fillWidth(View view, Alignment alignment = Alignment::leading()) {
    return view.frame(Frame::maxWidthInfinity(alignment));
}

// Provider and account title; the account title only when it says more.
struct Titles {
    std::string provider;
    std::optional<std::string> account;
};

Titles titlesOf(const WidgetAccount& account) {
    Titles titles{providerTitle(account), std::nullopt};
    if (auto rest = accountTitle(account); rest != titles.provider) titles.account = std::move(rest);
    return titles;
}

// ---------------------------------------------------------------- full row

// The sizes of a full row; a spacious row draws the same elements larger.
struct RowMetrics {
    double markSize;
    double providerSize;
    double accountSize;
    double labelSize;
    double figureSize;
    double barHeight;
    double resetSize;
    double columnSpacing;
};

constexpr RowMetrics kRowMetrics{12, 11, 9, 9, 12, 4, 8.5, 3};
constexpr RowMetrics kSpaciousMetrics{16, 13, 10.5, 10, 20, 7, 9.5, 5};
constexpr double kMarkGap = 4;

View nameColumn(const AccountRow& row, const Color& brand, const RowMetrics& m) {
    const Titles titles = titlesOf(row.account);
    View provider = Text(titles.provider)
                        .font(Font::system(m.providerSize, Weight::semibold))
                        .foreground(Color::primary())
                        .lineLimit(1)
                        .minimumScaleFactor(0.9);
    View account;
    if (titles.account) {
        account = Text(*titles.account)
                      .font(Font::system(m.accountSize))
                      .foreground(Color::secondary())
                      .lineLimit(1)
                      .padding(Edge::leading, m.markSize + kMarkGap);
    }
    View mark = body(ProviderMarkView{row.account.snapshot.toolID, brand, m.markSize});
    View column = VStack({HStack({mark, provider}, {.alignment = VAlign::center, .spacing = kMarkGap}), account},
                         {.alignment = HAlign::leading, .spacing = 1});
    return fixedWidth(column, row.nameWidth, Alignment::leading());
}

View resetLine(const WidgetUsageWindow& window, Date now, double size) {
    const auto text = resetText(window, now);
    if (!text) return {};
    return HStack({Image::system("arrow.clockwise").font(Font::system(size - 1.5, Weight::semibold)),
                   Text(*text).font(Font::system(size, Weight::medium)).monospacedDigit()},
                  {.alignment = VAlign::center, .spacing = 2})
        .foreground(Color::tertiary())
        .lineLimit(1)
        .accessibilityLabel(spokenReset(window.resetAt, now));
}

// The window's pace in its colour, for spacious rows.
View paceLine(const WidgetUsageWindow& window, Date now, double size) {
    const auto text = paceText(window, now);
    if (!text) return {};
    return Text(*text)
        .font(Font::system(size, Weight::semibold))
        .foreground(paceColor(window, now))
        .lineLimit(1);
}

View windowColumn(const WidgetUsageWindow& window, const Color& brand, Date now, bool remaining,
                  const RowMetrics& m, bool spacious) {
    View label = Text(window.label)
                     .font(Font::system(m.labelSize, Weight::medium))
                     .foreground(Color::secondary())
                     .lineLimit(1);
    View figure = Text(percentText(window, remaining))
                      .font(spacious ? Font::system(m.figureSize, Weight::bold, render::Design::rounded)
                                     : Font::system(m.figureSize, Weight::semibold))
                      .monospacedDigit()
                      .foreground(fillColor(window, brand, now))
                      .lineLimit(1)
                      .accessibilityLabel(spokenFigure(percentText(window, remaining), window, now, remaining,
                                                       {.pace = !spacious, .reset = false}))
                      .layoutPriority(1);
    // The figure is sized first: a long label gives way, the number never.
    View head = HStack({label, Spacer(4), figure}, {.alignment = VAlign::bottom, .spacing = 0});
    View bar = fixedHeight(body(PaceBar{window, brand, now, remaining, m.barHeight}), m.barHeight);
    View foot = resetLine(window, now, m.resetSize);
    View pace = spacious ? paceLine(window, now, m.resetSize) : View();
    return fillWidth(VStack({head, bar, foot, pace}, {.alignment = HAlign::leading, .spacing = m.columnSpacing}));
}

// What an account without windows shows in their place: its menu-bar text,
// and the forecast under it when there is one.
View menuBarColumn(const WidgetToolSnapshot& snapshot, const RowMetrics& m) {
    View forecast;
    if (snapshot.forecastLabel && !snapshot.forecastLabel->empty()) {
        forecast = Text(*snapshot.forecastLabel)
                       .font(Font::system(m.resetSize, Weight::medium))
                       .foreground(Color::tertiary())
                       .lineLimit(1);
    }
    View text = Text(snapshot.menuBarText)
                    .font(Font::system(m.figureSize, Weight::semibold))
                    .monospacedDigit()
                    .foreground(Color::primary())
                    .lineLimit(1);
    return fillWidth(VStack({text, forecast}, {.alignment = HAlign::leading, .spacing = 2}));
}

// ---------------------------------------------------------------- compact row

constexpr double kCompactRowHeight = 20;
constexpr double kCompactMarkSize = 11;
// "Week" at 8.5 pt; a longer label is cut.
constexpr double kCompactLabelWidth = 25;
// "100%" at 11 pt semibold with tabular digits.
constexpr double kCompactPercentWidth = 34;
constexpr double kCompactLabelGap = 3;
constexpr double kCompactFigureWidth = kCompactLabelWidth + kCompactLabelGap + kCompactPercentWidth;
constexpr double kCompactBarWidth = 54;

// "5h 62%": the label small and dim in a column of its own, the figure in
// the window's fill colour right-aligned in the next, so that labels and
// figures line up from row to row whatever the numbers.
View compactFigure(const WidgetUsageWindow& window, const Color& brand, Date now, bool remaining) {
    View label =
        Text(window.label).font(Font::system(8.5, Weight::medium)).foreground(Color::tertiary()).lineLimit(1);
    View figure = Text(percentText(window, remaining))
                      .font(Font::system(11, Weight::semibold))
                      .monospacedDigit()
                      .foreground(fillColor(window, brand, now))
                      .lineLimit(1)
                      .accessibilityLabel(spokenFigure(percentText(window, remaining), window, now, remaining));
    return HStack({fixedWidth(label, kCompactLabelWidth, Alignment::leading()),
                   fixedWidth(figure, kCompactPercentWidth, Alignment::trailing())},
                  {.alignment = VAlign::center, .spacing = kCompactLabelGap});
}

View compactName(const WidgetAccount& account) {
    const Titles titles = titlesOf(account);
    View provider = Text(titles.provider)
                        .font(Font::system(11, Weight::semibold))
                        .foreground(Color::primary())
                        .lineLimit(1)
                        .layoutPriority(1);
    View rest;
    if (titles.account) {
        rest = Text(*titles.account).font(Font::system(10)).foreground(Color::secondary()).lineLimit(1);
    }
    // The provider is sized first: when the line is short, the account title
    // is cut before the provider's name is.
    return fillWidth(HStack({provider, rest}, {.alignment = VAlign::center, .spacing = 4}));
}

// ---------------------------------------------------------------- insights

View insightLine(const WidgetInsight& insight) {
    Color tint = Color::secondary();
    if (insight.kind == WidgetInsightKind::runsOut) tint = warnOrange();
    if (insight.kind == WidgetInsightKind::headroom) tint = underGreen();
    return HStack({Image::system(insightSymbol(insight.kind)).font(Font::system(8, Weight::semibold)).foreground(tint),
                   Text(insight.text).font(Font::system(9, Weight::medium)).lineLimit(1)},
                  {.alignment = VAlign::center, .spacing = 4})
        .foreground(Color::secondary());
}

}  // namespace

std::string percentText(const WidgetUsageWindow& window, bool remaining) {
    const double shown = remaining ? roomLeft(window) : window.usedPercent;
    const std::int64_t whole = std::clamp<std::int64_t>(truncateTowardZero(shown), 0, 999);
    return std::to_string(whole) + "%";
}

std::optional<std::string> resetText(const WidgetUsageWindow& window, Date now) {
    if (!window.resetAt) return std::nullopt;
    const double seconds = *window.resetAt - now;
    if (!(seconds > 0)) return std::nullopt;
    return durationText(seconds);
}

std::string insightSymbol(WidgetInsightKind kind) {
    switch (kind) {
        case WidgetInsightKind::runsOut:
            return "flame";
        case WidgetInsightKind::nextReset:
            return "arrow.clockwise";
        case WidgetInsightKind::headroom:
            return "gauge";
    }
    return "info.circle";
}

View body(const AccountRow& row) {
    const Color brand = toolColor(row.account.snapshot);
    const auto windows = shownWindows(row.account);
    const RowMetrics& m = row.spacious ? kSpaciousMetrics : kRowMetrics;
    std::vector<View> children{nameColumn(row, brand, m)};
    if (windows.empty()) {
        children.push_back(menuBarColumn(row.account.snapshot, m));
    } else {
        children.push_back(windowColumn(windows.front(), brand, row.now, row.remaining, m, row.spacious));
        // A lone window keeps the second slot empty so the columns line up across rows.
        const auto second = secondWindow(row.account);
        children.push_back(second ? windowColumn(*second, brand, row.now, row.remaining, m, row.spacious) : Spacer());
    }
    return fillWidth(HStack(std::move(children), {.alignment = VAlign::center, .spacing = 12}));
}

View body(const CompactAccountRow& row) {
    const Color brand = toolColor(row.account.snapshot);
    const auto windows = shownWindows(row.account);
    std::vector<View> children{body(ProviderMarkView{row.account.snapshot.toolID, brand, kCompactMarkSize}),
                               compactName(row.account)};
    if (windows.empty()) {
        children.push_back(Text(row.account.snapshot.menuBarText)
                               .font(Font::system(11, Weight::semibold))
                               .monospacedDigit()
                               .foreground(Color::primary())
                               .lineLimit(1)
                               .layoutPriority(1));
    } else {
        const WidgetUsageWindow& main = windows.front();
        children.push_back(compactFigure(main, brand, row.now, row.remaining));
        children.push_back(fixedWidth(fixedHeight(body(PaceBar{main, brand, row.now, row.remaining, 3}), 3),
                                      kCompactBarWidth, Alignment::center()));
        const auto second = secondWindow(row.account);
        children.push_back(second ? compactFigure(*second, brand, row.now, row.remaining)
                                  : fixedWidth(HStack({}), kCompactFigureWidth, Alignment::trailing()));
    }
    return fixedHeight(fillWidth(HStack(std::move(children), {.alignment = VAlign::center, .spacing = 6})),
                       kCompactRowHeight);
}

View body(const InsightsFooter& footer) {
    const std::size_t count = std::min(footer.count, footer.insights.size());
    if (count == 0) return {};
    std::vector<View> lines;
    lines.reserve(count);
    for (std::size_t i = 0; i < count; ++i) lines.push_back(insightLine(footer.insights[i]));
    return VStack(std::move(lines), {.alignment = HAlign::leading, .spacing = 3});
}

}  // namespace mw
