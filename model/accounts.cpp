#include "model/accounts.hpp"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "model/rounding.hpp"
#include "payload/hash.hpp"

namespace mw {

std::string accountKey(const WidgetToolSnapshot& snapshot) { return toolKey(snapshot); }

std::optional<LeftOut> leftOutReason(const WidgetToolSnapshot& tool, const std::unordered_set<std::string>& enabled) {
    if (!enabled.contains(accountKey(tool)))
        return tool.accountSlug && enabled.contains(tool.toolID) ? LeftOut::bareToolIDOnly : LeftOut::notEnabled;
    if (!tool.isConnected && !tool.windows) return LeftOut::disconnected;
    return std::nullopt;
}

std::vector<WidgetAccount> accountList(const WidgetPayload& payload) {
    const std::unordered_set<std::string> enabled(payload.enabledToolIDs.begin(), payload.enabledToolIDs.end());

    // Grouped by tool in the order each tool first occurs, accounts without
    // a slug before those with one, otherwise as listed: a stable sort on
    // (rank of the tool, slugged), so ten thousand tools cost n log n rather
    // than a search of the list per tool.
    struct Kept {
        const WidgetToolSnapshot* tool;
        std::size_t rank;
    };
    std::vector<Kept> kept;
    std::unordered_map<std::string_view, std::size_t> rankOf;
    for (const auto& tool : payload.tools) {
        if (leftOutReason(tool, enabled)) continue;
        const auto rank = rankOf.try_emplace(tool.toolID, rankOf.size()).first->second;
        kept.push_back({&tool, rank});
    }
    std::stable_sort(kept.begin(), kept.end(), [](const Kept& a, const Kept& b) {
        const bool aSlugged = a.tool->accountSlug.has_value();
        const bool bSlugged = b.tool->accountSlug.has_value();
        return a.rank != b.rank ? a.rank < b.rank : (!aSlugged && bSlugged);
    });

    std::vector<WidgetAccount> accounts;
    accounts.reserve(kept.size());
    for (const auto& k : kept) accounts.push_back(WidgetAccount{*k.tool});
    return accounts;
}

std::vector<WidgetUsageWindow> shownWindows(const WidgetAccount& account) {
    const auto& s = account.snapshot;
    if (s.hasQuotaHeadline == false) return {};
    if (s.windows && !s.windows->empty()) return *s.windows;
    return {WidgetUsageWindow{"headline", "Now", s.usagePercent, s.resetAt, std::nullopt}};
}

std::optional<WidgetUsageWindow> secondWindow(const WidgetAccount& account) {
    auto windows = shownWindows(account);
    if (windows.size() < 2) return std::nullopt;
    return std::move(windows[1]);
}

namespace {

std::vector<std::string_view> splitTitle(std::string_view name) {
    // Like a split that omits empty pieces: "A · · B" has two pieces, and a
    // name made only of separators has none.
    std::vector<std::string_view> pieces;
    while (true) {
        const auto at = name.find(kTitleSeparator);
        const auto piece = name.substr(0, at);
        if (!piece.empty()) pieces.push_back(piece);
        if (at == std::string_view::npos) break;
        name.remove_prefix(at + kTitleSeparator.size());
    }
    return pieces;
}

}  // namespace

std::string providerTitle(const WidgetAccount& account) {
    const auto& name = account.snapshot.displayName;
    const auto pieces = splitTitle(name);
    return pieces.empty() ? name : std::string(pieces.front());
}

std::string accountTitle(const WidgetAccount& account) {
    const auto& name = account.snapshot.displayName;
    const auto pieces = splitTitle(name);
    if (pieces.size() < 2) return name;
    std::string joined(pieces[1]);
    for (std::size_t i = 2; i < pieces.size(); ++i) {
        joined += kTitleSeparator;
        joined += pieces[i];
    }
    return joined;
}

std::optional<WidgetUsageWindow> limitWindow(const WidgetAccount& account, WidgetLimitChoice limit) {
    const std::string_view label = limit == WidgetLimitChoice::fiveHour ? "5h" : "Week";
    const double seconds = limit == WidgetLimitChoice::fiveHour ? 18000 : 604800;
    for (auto& window : shownWindows(account)) {
        if (window.label == label || window.durationSeconds == seconds) return std::move(window);
    }
    return std::nullopt;
}

double roomLeft(const WidgetUsageWindow& window) {
    // max with 0 first: a used percent that is not a number gives 0 room. A
    // negative use (a refund, a provider's rounding) leaves the whole limit,
    // never more.
    return std::min(100.0, std::max(0.0, 100.0 - window.usedPercent));
}

std::string durationText(double seconds) {
    const long long minutes = roundHalfAway(seconds / 60);
    char text[64];
    if (minutes <= 59) {
        std::snprintf(text, sizeof text, "%lldm", minutes);
    } else if (minutes < 1440) {
        const long long hours = minutes / 60;
        const long long rest = minutes % 60;
        if (rest == 0) {
            std::snprintf(text, sizeof text, "%lldh", hours);
        } else {
            std::snprintf(text, sizeof text, "%lldh %lldm", hours, rest);
        }
    } else {
        const long long days = minutes / 1440;
        const long long rest = minutes % 1440;
        if (rest < 60) {
            std::snprintf(text, sizeof text, "%lldd", days);
        } else {
            std::snprintf(text, sizeof text, "%lldd %lldh", days, rest / 60);
        }
    }
    return text;
}

}  // namespace mw

std::size_t std::hash<mw::WidgetAccount>::operator()(const mw::WidgetAccount& account) const noexcept {
    return mw::hashValue(account.snapshot);
}
