#include "widgets/accounts/board.hpp"

#include <algorithm>

#include "model/insights.hpp"
#include "widgets/accounts/rows.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {

using render::Alignment;
using render::Edge;
using render::Font;
using render::Frame;
using render::HAlign;
using render::HStack;
using render::Spacer;
using render::Text;
using render::VAlign;
using render::View;
using render::VStack;
using render::Weight;

namespace {

// Data this old (seconds) shows its age in the header.
constexpr double kAgeShownAfter = 300;

constexpr double kRowSpacing = 8;
constexpr double kSpaciousRowSpacing = 16;
constexpr double kCompactRowSpacing = 5;
constexpr double kColumnSpacing = 22;
// A column of this many rows or fewer leaves most of a large board empty at
// the ordinary size: its rows are drawn spacious instead.
constexpr std::size_t kSpaciousRowsPerColumn = 3;

View overflowNote(std::size_t hidden) {
    return Text(overflowNoteText(hidden))
        .font(Font::system(8.5, Weight::semibold))
        .foreground(Color::tertiary())
        .lineLimit(1);
}

// Both groups are sized before the spacer between them, so in a narrow widget
// the spacer gives way rather than the texts.
View header(const AccountsBoard& board, std::size_t hidden) {
    const bool trailing = hidden > 0 || showsDataAge(board.now, board.updatedAt);
    View trailingGroup;
    if (trailing) {
        trailingGroup =
            HStack({hidden > 0 ? overflowNote(hidden) : View(), body(FreshnessMark{board.now, board.updatedAt, false})},
                   {.alignment = VAlign::center, .spacing = 6})
                .layoutPriority(1);
    }
    if (board.family == WidgetFamily::systemMedium) {
        if (!trailing) return {};
        return HStack({Spacer(), trailingGroup}, {.alignment = VAlign::center, .spacing = 7});
    }
    View title = HStack({Text("Usage").font(Font::system(12, Weight::bold)).lineLimit(1),
                         hidden > 0 ? overflowNote(hidden) : View()},
                        {.alignment = VAlign::center, .spacing = 7})
                     .layoutPriority(1);
    return HStack({title, trailing ? Spacer() : View(), trailingGroup}, {.alignment = VAlign::center, .spacing = 7});
}

View linked(View row, const WidgetAccount& account) {
    return row.frame(Frame::maxWidthInfinity(Alignment::leading())).link(accountLinkURL(account));
}

View rowView(const AccountsBoard& board, const WidgetAccount& account, bool spacious) {
    if (board.family == WidgetFamily::systemMedium) {
        return linked(body(CompactAccountRow{account, board.now, board.remaining}), account);
    }
    return linked(body(AccountRow{account, board.now, board.remaining, 86, spacious}), account);
}

View column(std::vector<View> rows, double spacing) {
    return VStack(std::move(rows), {.alignment = HAlign::leading, .spacing = spacing})
        .frame(Frame::maxWidthInfinity(Alignment::topLeading()));
}

}  // namespace

bool spaciousRows(WidgetFamily family, std::size_t rowsShown) {
    switch (family) {
        case WidgetFamily::systemLarge: return rowsShown <= kSpaciousRowsPerColumn;
        case WidgetFamily::systemExtraLarge: return rowsShown <= 2 * kSpaciousRowsPerColumn;
        case WidgetFamily::systemSmall:
        case WidgetFamily::systemMedium: return false;
    }
    return false;
}

namespace {

// The shown rows, in order. Extra large is wide enough for two columns: the
// first half goes down the left one, the rest down the right.
std::vector<View> rowBlocks(const AccountsBoard& board, std::size_t shown) {
    const bool spacious = spaciousRows(board.family, shown);
    std::vector<View> rows;
    rows.reserve(shown);
    for (std::size_t i = 0; i < shown; ++i) rows.push_back(rowView(board, board.accounts[i], spacious));
    if (board.family != WidgetFamily::systemExtraLarge || rows.empty()) return rows;
    const double spacing = spacious ? kSpaciousRowSpacing : kRowSpacing;
    const auto split = static_cast<std::ptrdiff_t>((rows.size() + 1) / 2);
    std::vector<View> left(rows.begin(), rows.begin() + split);
    std::vector<View> right(rows.begin() + split, rows.end());
    return {HStack({column(std::move(left), spacing), column(std::move(right), spacing)},
                   {.alignment = VAlign::top, .spacing = kColumnSpacing})};
}

}  // namespace

std::size_t visibleRowCount(WidgetFamily family, std::size_t accountCount) {
    std::size_t fits = 1, cap = 0;
    switch (family) {
        case WidgetFamily::systemMedium:
            fits = 5, cap = 4;
            break;
        case WidgetFamily::systemLarge:
            fits = 7, cap = 6;
            break;
        case WidgetFamily::systemExtraLarge:
            fits = 12, cap = 11;
            break;
        case WidgetFamily::systemSmall:
            fits = 1, cap = 0;
            break;
    }
    return accountCount <= fits ? accountCount : cap;
}

std::size_t insightLineCount(WidgetFamily family, std::size_t rowsShown) {
    if (family == WidgetFamily::systemMedium) return 0;
    if (family == WidgetFamily::systemExtraLarge) return 3;
    const std::size_t used = 2 * rowsShown;
    return used >= 14 ? 0 : std::min<std::size_t>(14 - used, 3);
}

std::string overflowNoteText(std::size_t hiddenCount) {
    return "+" + std::to_string(hiddenCount) + " more";
}

bool showsDataAge(Date now, Date updatedAt) {
    return now - updatedAt >= kAgeShownAfter;
}

std::string accountLinkURL(const WidgetAccount& account) {
    return toolLinkURL(accountKey(account));
}

View body(const AccountsBoard& board) {
    const bool medium = board.family == WidgetFamily::systemMedium;
    const std::size_t shown = visibleRowCount(board.family, board.accounts.size());
    const std::size_t hidden = board.accounts.size() - shown;

    std::vector<View> rows = rowBlocks(board, shown);
    if (const std::size_t count = insightLineCount(board.family, shown); count > 0) {
        rows.push_back(body(InsightsFooter{insights(board.accounts, board.now), count}).padding(Edge::top, 2));
    }
    const double spacing = medium ? kCompactRowSpacing : spaciousRows(board.family, shown) ? kSpaciousRowSpacing : kRowSpacing;
    View rowStack =
        VStack(std::move(rows), {.alignment = HAlign::leading, .spacing = spacing})
            .frame(Frame::maxInfinity(Alignment::topLeading()));

    return VStack({header(board, hidden), rowStack}, {.alignment = HAlign::leading, .spacing = medium ? 0.0 : 9.0})
        .frame(Frame::maxInfinity(Alignment::topLeading()));
}

}  // namespace mw
