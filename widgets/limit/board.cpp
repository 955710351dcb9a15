#include "widgets/limit/board.hpp"

#include <vector>

#include "model/brand.hpp"
#include "model/pace.hpp"
#include "widgets/accounts/board.hpp"
#include "widgets/accounts/rows.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {

using render::Alignment;
using render::Font;
using render::Frame;
using render::HAlign;
using render::HStack;
using render::Image;
using render::Spacer;
using render::Text;
using render::VAlign;
using render::VStack;
using render::View;
using render::Weight;

namespace {

// The medium size lists up to five one-line rows under the header; the
// larger sizes give each row two lines (names and figure over bar and reset).
constexpr double kCompactRowHeight = 20;
constexpr double kCompactRowSpacing = 4;
constexpr double kCompactMarkSize = 11;
constexpr double kCompactBarWidth = 84;
constexpr double kCompactBarHeight = 4;
constexpr double kCompactFigureWidth = 34;

constexpr double kRowSpacing = 16;
constexpr double kSpaciousRowSpacing = 22;
constexpr double kMarkSize = 12;
constexpr double kBarHeight = 5;
constexpr double kSpaciousBarHeight = 8;
constexpr double kColumnSpacing = 22;

// Wide enough for the longest countdown ("23h 59m") after its arrow, so the
// bars of all rows end at the same x.
constexpr double kResetWidth = 46;

// Track tint of an account without the window: the same as a bar's track.
constexpr double kTrackOpacity = 0.09;

bool showsRoomLeft(WidgetPercentChoice percent) { return percent == WidgetPercentChoice::left; }

View fixedWidth(View view, double width, Alignment alignment) {
    Frame frame;
    frame.width = width;
    frame.alignment = alignment;
    return view.frame(frame);
}

View fixedHeight(View view, double height) {
    Frame frame;
    frame.height = height;
    return view.frame(frame);
}

// ---------------------------------------------------------------- header

View overflowNote(std::size_t hidden) {
    return Text(overflowNoteText(hidden))
        .font(Font::system(8.5, Weight::semibold))
        .foreground(Color::tertiary())
        .lineLimit(1);
}

View header(const AccountsLimitBoard& board, std::size_t hidden) {
    View provider;
    if (board.providerName && !board.providerName->empty()) {
        provider = Text(*board.providerName)
                       .font(Font::system(11, Weight::medium))
                       .foreground(Color::secondary())
                       .lineLimit(1);
    }
    View title = HStack({Text(limitBoardTitle(board.limit, board.percent))
                             .font(Font::system(12, Weight::bold))
                             .lineLimit(1)
                             .layoutPriority(1),
                         provider},
                        {.alignment = VAlign::bottom, .spacing = 6});
    View trailing = HStack({hidden > 0 ? overflowNote(hidden) : View(),
                            body(FreshnessMark{board.now, board.updatedAt, false})},
                           {.alignment = VAlign::center, .spacing = 6});
    return HStack({title, Spacer(4), trailing}, {.alignment = VAlign::center, .spacing = 0});
}

// ---------------------------------------------------------------- rows

// Provider title, then the account title when it says more than that. The
// provider is sized first: when the row is short of room the account title
// is cut before the provider's name is.
View names(const WidgetAccount& account, double providerSize, double accountSize) {
    const std::string provider = providerTitle(account);
    const std::string rest = accountTitle(account);
    View accountText;
    if (rest != provider) {
        accountText = Text(rest)
                          .font(Font::system(accountSize))
                          .foreground(Color::secondary())
                          .lineLimit(1);
    }
    return HStack({Text(provider)
                       .font(Font::system(providerSize, Weight::semibold))
                       .foreground(Color::primary())
                       .lineLimit(1)
                       .layoutPriority(1),
                   accountText},
                  {.alignment = VAlign::center, .spacing = 4});
}

View figure(const LimitRow& row, WidgetPercentChoice percent, const Color& brand, Date now, Font font,
            bool paceDrawn = false) {
    View text = Text(limitRowFigure(row, percent)).font(font).monospacedDigit().lineLimit(1);
    if (!row.window) return text.foreground(Color::tertiary()).accessibilityLabel("none");
    const bool left = showsRoomLeft(percent);
    return text.foreground(fillColor(*row.window, brand, now))
        .accessibilityLabel(spokenFigure(limitRowFigure(row, percent), *row.window, now, left,
                                         {.pace = !paceDrawn, .reset = false}));
}

// The window's bar, or an empty track for an account without it.
View bar(const LimitRow& row, WidgetPercentChoice percent, const Color& brand, Date now, double height) {
    if (!row.window) {
        return fixedHeight(render::Capsule().fill(Color::primary().withOpacity(kTrackOpacity)), height);
    }
    return fixedHeight(body(PaceBar{*row.window, brand, now, showsRoomLeft(percent), height}), height);
}

// Left-aligned in its column, so the arrows of all rows line up.
View resetColumn(const LimitRow& row, Date now, double size = 8.5) {
    View content;
    if (const auto text = limitRowReset(row, now)) {
        content = HStack({Image::system("arrow.clockwise").font(Font::system(size - 1.5, Weight::semibold)),
                          Text(*text).font(Font::system(size, Weight::medium)).monospacedDigit()},
                         {.alignment = VAlign::center, .spacing = 2})
                      .foreground(Color::tertiary())
                      .lineLimit(1)
                      .minimumScaleFactor(0.8)
                      .accessibilityLabel(spokenReset(row.window->resetAt, now));
    }
    return fixedWidth(content, size / 8.5 * kResetWidth, Alignment::leading());
}

// Medium: mark, names, bar, figure and reset on one line.
View compactRow(const LimitRow& row, const AccountsLimitBoard& board) {
    const Color brand = toolColor(row.account.snapshot);
    return fixedHeight(
        HStack({body(ProviderMarkView{row.account.snapshot.toolID, brand, kCompactMarkSize}),
                names(row.account, 11, 10).frame(Frame::maxWidthInfinity(Alignment::leading())),
                fixedWidth(bar(row, board.percent, brand, board.now, kCompactBarHeight), kCompactBarWidth,
                           Alignment::center()),
                fixedWidth(figure(row, board.percent, brand, board.now, Font::system(11, Weight::semibold)),
                           kCompactFigureWidth, Alignment::trailing()),
                resetColumn(row, board.now)},
               {.alignment = VAlign::center, .spacing = 6}),
        kCompactRowHeight);
}

// Large and extra large: mark, names and figure over the bar and the reset.
// A board with few rows draws them larger (see `spaciousLimitRows`).
View fullRow(const LimitRow& row, const AccountsLimitBoard& board, bool spacious) {
    const Color brand = toolColor(row.account.snapshot);
    View top = HStack({body(ProviderMarkView{row.account.snapshot.toolID, brand, spacious ? 16.0 : kMarkSize}),
                       names(row.account, spacious ? 13 : 11, spacious ? 11 : 10), Spacer(6),
                       figure(row, board.percent, brand, board.now,
                              Font::system(spacious ? 22 : 13, Weight::bold, render::Design::rounded), spacious)
                           .layoutPriority(2)},
                      {.alignment = VAlign::center, .spacing = 5});
    View bottom = HStack({bar(row, board.percent, brand, board.now, spacious ? kSpaciousBarHeight : kBarHeight)
                              .frame(Frame::maxWidthInfinity(Alignment::leading())),
                          resetColumn(row, board.now, spacious ? 9.5 : 8.5)},
                         {.alignment = VAlign::center, .spacing = 8});
    // A spacious row also says how the window is pacing.
    View pace;
    if (spacious && row.window) {
        if (const auto text = paceText(*row.window, board.now)) {
            pace = Text(*text)
                       .font(Font::system(9.5, Weight::semibold))
                       .foreground(paceColor(*row.window, board.now))
                       .lineLimit(1);
        }
    }
    return VStack({top, bottom, pace}, {.alignment = HAlign::leading, .spacing = spacious ? 6.0 : 4.0});
}

View linkedRow(const LimitRow& row, const AccountsLimitBoard& board, bool spacious) {
    View view = board.family == WidgetFamily::systemMedium ? compactRow(row, board) : fullRow(row, board, spacious);
    return view.frame(Frame::maxWidthInfinity(Alignment::leading())).link(accountLinkURL(row.account));
}

View column(std::vector<View> rows, double spacing) {
    return VStack(std::move(rows), {.alignment = HAlign::leading, .spacing = spacing})
        .frame(Frame::maxWidthInfinity(Alignment::topLeading()));
}

// The shown rows: one column, or in extra large two, the first half down
// the left one (so the ranking reads down, then across).
View rowsView(const AccountsLimitBoard& board, std::size_t shown) {
    const bool medium = board.family == WidgetFamily::systemMedium;
    const bool spacious = spaciousRows(board.family, shown);
    const double spacing = medium ? kCompactRowSpacing : spacious ? kSpaciousRowSpacing : kRowSpacing;
    std::vector<View> rows;
    rows.reserve(shown);
    for (std::size_t i = 0; i < shown; ++i) rows.push_back(linkedRow(board.board.rows[i], board, spacious));
    if (board.family != WidgetFamily::systemExtraLarge) return column(std::move(rows), spacing);
    const auto split = static_cast<std::ptrdiff_t>((rows.size() + 1) / 2);
    std::vector<View> left(rows.begin(), rows.begin() + split);
    std::vector<View> right(rows.begin() + split, rows.end());
    return HStack({column(std::move(left), spacing), column(std::move(right), spacing)},
                  {.alignment = VAlign::top, .spacing = kColumnSpacing});
}

}  // namespace

std::string limitBoardTitle(WidgetLimitChoice limit, WidgetPercentChoice percent) {
    const std::string name = limit == WidgetLimitChoice::weekly ? "Weekly" : "5-hour";
    return name + (showsRoomLeft(percent) ? " room" : " used");
}

std::string limitRowFigure(const LimitRow& row, WidgetPercentChoice percent) {
    if (!row.window) return "\u2014";
    return percentText(*row.window, showsRoomLeft(percent));
}

std::optional<std::string> limitRowReset(const LimitRow& row, Date now) {
    if (!row.window) return std::nullopt;
    return resetText(*row.window, now);
}

View body(const AccountsLimitBoard& board) {
    const bool medium = board.family == WidgetFamily::systemMedium;
    const std::size_t shown = visibleRowCount(board.family, board.board.rows.size());
    const std::size_t hidden = board.board.rows.size() - shown;
    return VStack({header(board, hidden), rowsView(board, shown)},
                  {.alignment = HAlign::leading, .spacing = medium ? 6.0 : 9.0})
        .frame(Frame::maxInfinity(Alignment::topLeading()));
}

}  // namespace mw
