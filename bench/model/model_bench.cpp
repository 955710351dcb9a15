// The model runs once per widget render for every entry; these measure it on
// a payload larger than any real one (48 accounts, three windows each).

#include <benchmark/benchmark.h>

#include <string>

#include "model/accounts.hpp"
#include "model/brand.hpp"
#include "model/insights.hpp"
#include "model/limit_board.hpp"
#include "model/live.hpp"
#include "model/pace.hpp"

namespace mw {
namespace {

constexpr Date kNow{760000000};

WidgetPayload bigPayload() {
    static const char* const tools[] = {"claude", "codex", "cursor", "copilot", "gemini", "opencode"};
    WidgetPayload payload;
    for (int i = 0; i < 48; ++i) {
        WidgetToolSnapshot s;
        s.toolID = tools[i % 6];
        if (i >= 6) s.accountSlug = "acct" + std::to_string(i);
        s.displayName = s.toolID + " \u00B7 account " + std::to_string(i);
        s.compactLabel = s.toolID;
        s.isConnected = true;
        s.brandHex = i % 3 == 0 ? "" : "#D97757";
        s.windows = std::vector<WidgetUsageWindow>{
            {"5h", "5h", double(i % 100), kNow + 600.0 * (i + 1), 18000.0},
            {"week", "Week", double((i * 7) % 100), kNow + 3600.0 * (i + 1), 604800.0},
            {"opus", "Opus", double((i * 13) % 100), kNow + 7200.0 * (i + 1), 604800.0},
        };
        payload.enabledToolIDs.push_back(toolKey(s));
        payload.tools.push_back(std::move(s));
    }
    return payload;
}

void BM_AccountList(benchmark::State& state) {
    const auto payload = bigPayload();
    for (auto _ : state) benchmark::DoNotOptimize(accountList(payload));
}
BENCHMARK(BM_AccountList);

void BM_Insights(benchmark::State& state) {
    const auto accounts = accountList(bigPayload());
    for (auto _ : state) benchmark::DoNotOptimize(insights(accounts, kNow));
}
BENCHMARK(BM_Insights);

void BM_LimitBoard(benchmark::State& state) {
    const auto payload = bigPayload();
    for (auto _ : state)
        benchmark::DoNotOptimize(limitBoard(payload, "all", WidgetLimitChoice::weekly, WidgetPercentChoice::left,
                                            WidgetOrderChoice::mostRoom));
}
BENCHMARK(BM_LimitBoard);

void BM_PaceOfEveryWindow(benchmark::State& state) {
    const auto accounts = accountList(bigPayload());
    for (auto _ : state) {
        for (const auto& account : accounts) {
            const auto brand = toolColor(account.snapshot);
            for (const auto& window : shownWindows(account)) {
                benchmark::DoNotOptimize(paceText(window, kNow));
                benchmark::DoNotOptimize(fillColor(window, brand, kNow));
                benchmark::DoNotOptimize(paceColor(window, kNow));
            }
        }
    }
}
BENCHMARK(BM_PaceOfEveryWindow);

void BM_LiveRoundTrip(benchmark::State& state) {
    const LiveProviderSnapshot provider("claude", "claude", "Claude", 42, kNow + 3600, 1, "D97757", "5h", 18000,
                                        LiveWindowSnapshot("Week", 12, kNow + 86400, 604800));
    const LiveActivityContentPayload content(provider, std::vector<LiveProviderSnapshot>(8, provider));
    for (auto _ : state) benchmark::DoNotOptimize(decodeLive<LiveActivityContentPayload>(encodeLive(content)));
}
BENCHMARK(BM_LiveRoundTrip);

}  // namespace
}  // namespace mw

BENCHMARK_MAIN();
