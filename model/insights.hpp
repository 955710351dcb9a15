#pragma once
// Short lines under the account rows: which window runs out before its reset,
// which resets next, and who has the most room left this week.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "model/accounts.hpp"
#include "model/options.hpp"

namespace mw {

enum class WidgetInsightKind { runsOut, nextReset, headroom };

template <>
struct OptionTable<WidgetInsightKind> {
    static constexpr std::string_view typeDisplayName = "Insight";
    static constexpr std::array<OptionCase<WidgetInsightKind>, 3> cases{{
        {WidgetInsightKind::runsOut, "runsOut", "Runs out"},
        {WidgetInsightKind::nextReset, "nextReset", "Next reset"},
        {WidgetInsightKind::headroom, "headroom", "Headroom"},
    }};
};

struct WidgetInsight {
    WidgetInsightKind kind = WidgetInsightKind::nextReset;
    std::string text;
    bool operator==(const WidgetInsight&) const = default;
};

// Every window that, at its average rate so far, reaches 100 % before its
// reset (soonest first); then the soonest reset; then the most room left in a
// weekly window. Ties go to the earlier account; no text appears twice.
std::vector<WidgetInsight> insights(const std::vector<WidgetAccount>& accounts, Date now);

}  // namespace mw
