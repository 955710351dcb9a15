#pragma once
// The Accounts board: a "Usage" header, one row per account (as many as the
// size holds, with a "+N more" note for the rest) and insight lines below.

#include <cstddef>
#include <string>
#include <vector>

#include "config/family.hpp"
#include "model/accounts.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"

namespace mw {

struct AccountsBoard {
    std::vector<WidgetAccount> accounts;  // in display order
    WidgetFamily family = WidgetFamily::systemMedium;
    Date now;                // the entry's date
    Date updatedAt;          // the payload's
    bool remaining = false;  // figures as room left rather than used
    bool operator==(const AccountsBoard&) const = default;
};
render::View body(const AccountsBoard& board);

// How many of `accountCount` rows a family shows: all when they fit,
// otherwise one row fewer than fit so the overflow note has room.
std::size_t visibleRowCount(WidgetFamily family, std::size_t accountCount);

// How many insight lines go under `rowsShown` rows: none in medium, three in
// extra large, else what is left of a budget of fourteen where a row costs
// two (at most three).
std::size_t insightLineCount(WidgetFamily family, std::size_t rowsShown);

// Whether `rowsShown` rows are few enough for the family to draw them
// spacious (large: three or fewer; extra large: three or fewer a column).
bool spaciousRows(WidgetFamily family, std::size_t rowsShown);

// "+3 more".
std::string overflowNoteText(std::size_t hiddenCount);

// Whether the data is old enough for the header to show its age.
bool showsDataAge(Date now, Date updatedAt);

// The link of an account's row: "meterwick://tool/<accountKey>", or the
// open-app link when no URL can be made of it.
std::string accountLinkURL(const WidgetAccount& account);

}  // namespace mw
