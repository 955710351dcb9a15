#pragma once
// One connected tool account as the widgets see it, and the ordered list of
// accounts a payload yields. Everything but the snapshot is computed on
// demand from it.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "model/options.hpp"
#include "payload/records.hpp"

namespace mw {

struct WidgetAccount {
    WidgetToolSnapshot snapshot;
    bool operator==(const WidgetAccount&) const = default;
};

// The separator between provider and account in a display name: space,
// U+00B7 MIDDLE DOT, space.
inline constexpr std::string_view kTitleSeparator = " \u00B7 ";

// "toolID", or "toolID:accountSlug" when the snapshot has a slug.
std::string accountKey(const WidgetToolSnapshot& snapshot);
inline std::string accountKey(const WidgetAccount& account) { return accountKey(account.snapshot); }

// Why the account list leaves a snapshot out.
enum class LeftOut {
    notEnabled,       // its key is not in enabledToolIDs
    bareToolIDOnly,   // enabledToolIDs lists its toolID, but its key carries the slug
    disconnected,     // enabled, but disconnected and without windows
};

// Why `tool` is not in the account list of a payload whose enabledToolIDs are
// `enabled`, or nothing when it is.
std::optional<LeftOut> leftOutReason(const WidgetToolSnapshot& tool, const std::unordered_set<std::string>& enabled);

// The enabled, connected (or windowed) snapshots, grouped by tool in order of
// first appearance, each tool's main account before its slugged ones.
std::vector<WidgetAccount> accountList(const WidgetPayload& payload);

// The windows an account shows: none when the tool says it has no quota
// headline; its own windows when it has any; otherwise one window made up
// from the headline figures ("headline", "Now").
std::vector<WidgetUsageWindow> shownWindows(const WidgetAccount& account);

// The second shown window, drawn inside or beside the main one.
std::optional<WidgetUsageWindow> secondWindow(const WidgetAccount& account);

// The display name split on the separator: the first piece, and the rest.
std::string providerTitle(const WidgetAccount& account);
std::string accountTitle(const WidgetAccount& account);

// The first shown window that answers a limit choice, by exact label ("5h",
// "Week") or by exact length (18000 s, 604800 s).
std::optional<WidgetUsageWindow> limitWindow(const WidgetAccount& account, WidgetLimitChoice limit);

// Room left under a window: 100 − used, held to 0..100.
double roomLeft(const WidgetUsageWindow& window);

// A span as "45m", "2h 5m", "3d 4h" (minutes rounded, halves away from zero).
std::string durationText(double seconds);

}  // namespace mw

// Equal accounts hash equal: the snapshot's fields, all of them, in order.
template <>
struct std::hash<mw::WidgetAccount> {
    std::size_t operator()(const mw::WidgetAccount& account) const noexcept;
};
