#pragma once
// The enhanced look of the Focus widget: one account as a card with its pace
// rings, a row per window and a pace line.

#include <optional>
#include <string>
#include <vector>

#include "model/accounts.hpp"
#include "platform/color.hpp"
#include "payload/records.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"

namespace mw {

struct FocusCard {
    WidgetAccount account;
    Date now;        // the entry's date
    Date updatedAt;  // the payload's
    bool remaining = false;
    bool operator==(const FocusCard&) const = default;
};

// Header (mark, name, freshness); then, with a headline window, the rings
// beside the window rows and the pace line under them; without one, the
// tool's own headline figure over "No quota window".
render::View body(const FocusCard& card);

// ---- the card's rules, each a pure function of its inputs

// The number in the rings' centre and the square it is set in. It has to sit
// inside the innermost ring's hole: one 7 pt ring in the 76 pt frame leaves a
// 62 pt hole (19 pt number, 50 pt square); a second ring inside it leaves
// 46 pt (15 pt number, 35 pt square).
struct RingCentreSize {
    double pointSize = 19;
    double side = 50;
    bool operator==(const RingCentreSize&) const = default;
};
RingCentreSize ringCentreSize(bool hasInnerRing);

// The windows that get a row: the ones the rings draw (main, then second).
std::vector<WidgetUsageWindow> cardWindows(const WidgetAccount& account);

// The percent a ring or row shows: used, or with `remaining` what is left.
double shownPercent(const WidgetUsageWindow& window, bool remaining);

// The quiet note after the pace text. At the limit: "resets " + countdown
// while the reset is ahead (when work can resume); otherwise, with a pace,
// "vs " + the percent expected by now (the share left expected with
// `remaining`), so the ring's number has something to be read against.
// Nothing else.
std::optional<std::string> paceNote(const WidgetUsageWindow& window, Date now, bool remaining);

// The reset line's colour: dangerRed once the window is used up (the
// countdown is then the one number that matters), tertiary before.
Color resetLineColor(const WidgetUsageWindow& window);

}  // namespace mw
