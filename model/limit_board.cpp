#include "model/limit_board.hpp"

#include <algorithm>

namespace mw {

LimitBoard limitBoard(const WidgetPayload& payload, std::string_view providerID, WidgetLimitChoice limit,
                      WidgetPercentChoice percent, WidgetOrderChoice order) {
    LimitBoard board;
    for (auto& account : accountList(payload)) {
        if (providerID != kAllProvidersID && account.snapshot.toolID != providerID) continue;
        auto window = limitWindow(account, limit);
        std::optional<double> shown;
        if (window) shown = percent == WidgetPercentChoice::left ? roomLeft(*window) : window->usedPercent;
        board.rows.push_back(LimitRow{std::move(account), std::move(window), shown});
    }

    if (order == WidgetOrderChoice::mostRoom) {
        // Ranked by room left whatever the rows show; roomLeft is never NaN,
        // so the ordering is strict and weak.
        std::stable_sort(board.rows.begin(), board.rows.end(), [](const LimitRow& a, const LimitRow& b) {
            if (!a.window || !b.window) return a.window.has_value() && !b.window.has_value();
            return roomLeft(*a.window) > roomLeft(*b.window);
        });
    }
    return board;
}

}  // namespace mw
