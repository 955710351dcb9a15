#include "model/insights.hpp"

#include "platform/text.hpp"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <optional>
#include <string>
#include <unordered_set>

#include "model/pace.hpp"
#include "model/rounding.hpp"

namespace mw {

namespace {

struct RunsOut {
    double seconds;  // from now until the window reaches 100 %
    std::string text;
};

// Seconds from `now` until the window's use, continued at its average rate
// since the window opened, reaches 100 %; absent when that is not before the
// reset, or there is no rate to speak of.
std::optional<double> secondsUntilRunOut(const WidgetUsageWindow& window, Date now) {
    if (!elapsedFraction(window, now)) return std::nullopt;  // needs a duration and a future reset
    const double used = window.usedPercent;
    if (!(used > 0 && used < 100)) return std::nullopt;
    const double untilReset = *window.resetAt - now;
    const double elapsed = *window.durationSeconds - untilReset;
    if (!(elapsed > 0)) return std::nullopt;
    const double rate = used / elapsed;  // percent per second
    const double untilFull = (100 - used) / rate;
    if (!(untilFull < untilReset)) return std::nullopt;
    return untilFull;
}

// Who a line is about: the provider, and also the account when the provider
// has several accounts on the board, so that their lines can be told apart
// ("Claude Work 5h runs out in 26m").
std::string subjectOf(const WidgetAccount& account, const std::vector<WidgetAccount>& accounts) {
    const std::string provider = providerTitle(account);
    const auto siblings = std::count_if(accounts.begin(), accounts.end(), [&](const WidgetAccount& other) {
        return other.snapshot.toolID == account.snapshot.toolID;
    });
    if (siblings < 2) return provider;
    const std::string rest = accountTitle(account);
    if (rest == provider || rest.empty()) return provider;
    return provider + " " + rest;
}

}  // namespace

std::vector<WidgetInsight> insights(const std::vector<WidgetAccount>& accounts, Date now) {
    std::vector<RunsOut> runsOut;
    std::optional<WidgetInsight> nextReset;
    double nextResetSeconds = 0;
    std::optional<WidgetInsight> headroom;
    double mostRoom = -1;

    for (const auto& account : accounts) {
        const auto windows = shownWindows(account);
        if (windows.empty()) continue;
        const auto provider = subjectOf(account, accounts);

        for (const auto& window : windows) {
            if (const auto seconds = secondsUntilRunOut(window, now)) {
                runsOut.push_back({*seconds, isolated(provider) + " " + isolated(window.label) + " runs out in " + durationText(*seconds)});
            }
            if (window.resetAt && *window.resetAt > now) {
                const double seconds = *window.resetAt - now;
                if (!nextReset || seconds < nextResetSeconds) {
                    nextResetSeconds = seconds;
                    nextReset = WidgetInsight{WidgetInsightKind::nextReset,
                                              isolated(provider) + " " + isolated(window.label) + " resets in " + durationText(seconds)};
                }
            }
        }

        if (const auto weekly = limitWindow(account, WidgetLimitChoice::weekly)) {
            const double room = roomLeft(*weekly);
            if (room > mostRoom) {
                mostRoom = room;
                char percent[32];
                // A producer's nonsense (±1e308) reads as a percentage a person could believe.
                std::snprintf(percent, sizeof percent, "%" PRId64,
                              std::clamp<std::int64_t>(truncateTowardZero(room), 0, 100));
                headroom = WidgetInsight{WidgetInsightKind::headroom,
                                         isolated(provider) + " has " + percent + "% left this week"};
            }
        }
    }

    std::stable_sort(runsOut.begin(), runsOut.end(),
                     [](const RunsOut& a, const RunsOut& b) { return a.seconds < b.seconds; });

    std::vector<WidgetInsight> result;
    std::unordered_set<std::string> seen;  // one lookup per line, not a scan of those before it
    const auto add = [&result, &seen](WidgetInsight insight) {
        if (seen.insert(insight.text).second) result.push_back(std::move(insight));
    };
    for (auto& line : runsOut) add(WidgetInsight{WidgetInsightKind::runsOut, std::move(line.text)});
    if (nextReset) add(std::move(*nextReset));
    if (headroom) add(std::move(*headroom));
    return result;
}

}  // namespace mw
