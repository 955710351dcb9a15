#include "widgets/limit/content.hpp"

#include <algorithm>

#include "widgets/chrome/panels.hpp"

namespace mw {
namespace {

bool providerIsEnabled(const WidgetPayload& payload, const std::string& providerID) {
    const auto tools = enabledTools(payload);
    return std::any_of(tools.begin(), tools.end(), [&](const auto& tool) { return tool.toolID == providerID; });
}

std::string noAccountsTitle(const WidgetProviderChoice& provider) {
    return isAllProviders(provider) ? "No accounts yet" : "No " + provider.label + " accounts yet";
}

}  // namespace

LimitBoard limitBoard(const AccountsLimitEntry& entry) {
    return limitBoard(entry.payload, entry.provider.id, entry.limit, entry.percent, entry.order);
}

std::optional<WidgetEmptyState> accountsLimitPanel(const AccountsLimitEntry& entry) {
    if (auto stale = stalePanelAt(entry.payload, entry.date)) return stale;
    const auto board = limitBoard(entry);
    if (std::any_of(board.rows.begin(), board.rows.end(), [](const LimitRow& row) { return row.window.has_value(); }))
        return std::nullopt;
    if (auto failure = readFailurePanel(entry.readStatus)) return failure;

    const auto& provider = entry.provider;
    const bool all = isAllProviders(provider);
    if (!all && !providerIsEnabled(entry.payload, provider.id))
        return WidgetEmptyState{provider.label + " is turned off",
                                "Re-enable it in Settings, or pick another in Edit Widget.", "eye.slash"};
    if (entry.payload.tools.empty()) return noProvidersConnectedPanel();
    if (entry.payload.enabledToolIDs.empty()) return allProvidersHiddenPanel();
    if (board.rows.empty()) {
        if (all) return noAccountsPanel();
        return WidgetEmptyState{noAccountsTitle(provider), "Connect " + provider.label + " in Meterwick and this fills in.",
                                "clock.arrow.circlepath"};
    }
    return WidgetEmptyState{noAccountsTitle(provider), "Connect a provider with a usage limit and this fills in.",
                            "clock.arrow.circlepath"};
}

}  // namespace mw
