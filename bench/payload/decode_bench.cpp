// WidgetStore::load() and decodePayload() against a bare
// nlohmann::json::parse of the same bytes, for payloads of 1, 10 and 100
// tools with 300-point curves.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "payload/codec.hpp"
#include "payload/sample.hpp"
#include "payload/store.hpp"

namespace mw {
namespace {

WidgetPayload payloadOf(int tools) {
    const Date now = *parseISO8601("2026-11-22T10:00:00Z");
    const auto sample = samplePayload(now);
    WidgetPayload p = sample;
    p.tools.clear();
    p.enabledToolIDs.clear();
    p.sparklines.clear();
    p.dashboards.clear();
    for (int i = 0; i < tools; ++i) {
        auto tool = sample.tools[static_cast<std::size_t>(i) % sample.tools.size()];
        tool.accountSlug = "account" + std::to_string(i);
        const auto key = toolKey(tool);
        p.tools.push_back(tool);
        p.enabledToolIDs.push_back(key);
        auto& curve = p.sparklines[key];
        for (int k = 0; k < 300; ++k) curve.push_back({now - (300 - k) * 60.0, (k % 37) * 0.73 - 11});
        if (i < 10) p.dashboards[key] = sample.dashboards.at("claude");
    }
    return p;
}

class PayloadFile {
public:
    explicit PayloadFile(int tools) {
        dir_ = std::filesystem::temp_directory_path() / ("mw-bench-" + std::to_string(tools));
        std::filesystem::create_directories(dir_);
        bytes_ = encodePayload(payloadOf(tools));
        std::ofstream(dir_ / kPayloadFileName, std::ios::binary) << bytes_;
    }
    ~PayloadFile() { std::filesystem::remove_all(dir_); }
    const std::filesystem::path& dir() const { return dir_; }
    const std::string& bytes() const { return bytes_; }

private:
    std::filesystem::path dir_;
    std::string bytes_;
};

void BM_BareParse(benchmark::State& state) {
    const PayloadFile file(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(nlohmann::json::parse(file.bytes()));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.bytes().size()));
    state.counters["payload_bytes"] = static_cast<double>(file.bytes().size());
}

// The codec alone on bytes already in memory: what the records cost on top
// of the bare parse.
void BM_Decode(benchmark::State& state) {
    const PayloadFile file(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(decodePayload(file.bytes()));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.bytes().size()));
    state.counters["payload_bytes"] = static_cast<double>(file.bytes().size());
}

void BM_StoreLoad(benchmark::State& state) {
    const PayloadFile file(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(WidgetStore::load(file.dir()));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.bytes().size()));
    state.counters["payload_bytes"] = static_cast<double>(file.bytes().size());
}

BENCHMARK(BM_BareParse)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Decode)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StoreLoad)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace mw

BENCHMARK_MAIN();
