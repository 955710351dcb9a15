// Payloads with thousands of accounts: each widget's whole draw (a fresh
// load, its timeline, layout of the first entry at its largest family and
// painting at scale 1) beside the load alone. Every step after the decode
// must be linear or n log n in the number of tools, so the ratio stays near
// one whatever the count.
//
//   mw_tools_bench [--tools N,N,...] [Google Benchmark flags]   (default 1000,10000)

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/support/sample_container.hpp"
#include "bundle/widget_view.hpp"
#include "payload/self_report.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"

namespace mw {
namespace {

// The sample's accounts repeated under distinct account names, all enabled,
// with a short curve each: about 1.3 KB per tool.
WidgetPayload payloadOf(std::size_t tools) {
    const WidgetPayload sample = samplePayload(bench::sampleNow());
    WidgetPayload p = sample;
    p.tools.clear();
    p.enabledToolIDs.clear();
    p.sparklines.clear();
    for (std::size_t i = 0; i < tools; ++i) {
        auto tool = sample.tools[i % sample.tools.size()];
        tool.accountSlug = "account" + std::to_string(i);
        tool.displayName += " " + std::to_string(i);
        const auto key = toolKey(tool);
        auto& curve = p.sparklines[key];
        for (int k = 0; k < 12; ++k)
            curve.push_back({bench::sampleNow() - (12 - k) * 600.0, static_cast<double>((i + k) % 37)});
        p.enabledToolIDs.push_back(key);
        p.tools.push_back(std::move(tool));
    }
    return p;
}

class ToolsContainer {
  public:
    explicit ToolsContainer(std::size_t tools) {
        std::string pattern = (std::filesystem::temp_directory_path() / "mw-bench-tools-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot create " + pattern);
        dir_ = pattern;
        const std::string bytes = encodePayload(payloadOf(tools));
        if (bytes.size() > kPayloadMaxBytes)
            throw std::runtime_error(std::to_string(tools) + " tools exceed the payload size cap");
        std::ofstream(dir_ / kPayloadFileName, std::ios::binary) << bytes;
        bytes_ = bytes.size();
    }
    ~ToolsContainer() {
        std::error_code ignored;
        std::filesystem::remove_all(dir_, ignored);
    }
    ToolsContainer(const ToolsContainer&) = delete;
    ToolsContainer& operator=(const ToolsContainer&) = delete;

    const std::filesystem::path& dir() const { return dir_; }
    std::size_t bytes() const { return bytes_; }

  private:
    std::filesystem::path dir_;
    std::size_t bytes_ = 0;
};

void loadOnly(benchmark::State& state, const ToolsContainer* container) {
    for (auto _ : state) {
        const auto loaded = WidgetStore::load(container->dir());
        if (loaded.status != ReadStatus::ok) state.SkipWithError("the payload did not load");
        benchmark::DoNotOptimize(loaded);
    }
    state.counters["payload_bytes"] = static_cast<double>(container->bytes());
}

void drawWidget(benchmark::State& state, const WidgetDeclaration* widget, const ToolsContainer* container) {
    const ProviderContext context{container->dir(), bench::sampleNow(), SelfReportAnchor::bundle()};
    const WidgetFamily family = widget->families.back();
    for (auto _ : state) {
        const auto timeline = widget->timeline(context, {});
        const auto image = render::paintToImage(
            layoutWidget(timeline.entries.front(), family, render::systemTextMeasurer()), {.scale = 1});
        benchmark::DoNotOptimize(image.get());
    }
}

std::vector<std::size_t> toolCounts(int& argc, char** argv) {
    std::vector<std::size_t> counts{1000, 10000};
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg != "--tools" || i + 1 >= argc) continue;
        counts.clear();
        std::stringstream list(argv[i + 1]);
        for (std::string n; std::getline(list, n, ',');) counts.push_back(std::stoul(n));
        for (int j = i; j + 2 <= argc; ++j) argv[j] = argv[j + 2];
        argc -= 2;
        break;
    }
    return counts;
}

}  // namespace
}  // namespace mw

int main(int argc, char** argv) {
    const auto counts = mw::toolCounts(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    std::vector<std::unique_ptr<mw::ToolsContainer>> containers;
    for (const auto n : counts) {
        const auto* container = containers.emplace_back(std::make_unique<mw::ToolsContainer>(n)).get();
        const std::string suffix = "/" + std::to_string(n);
        benchmark::RegisterBenchmark(("BM_ToolsLoad" + suffix).c_str(), mw::loadOnly, container)
            ->Unit(benchmark::kMillisecond);
        for (const auto& widget : mw::widgetDeclarations())
            benchmark::RegisterBenchmark(("BM_ToolsDraw/" + std::string(widget.kindWord) + suffix).c_str(),
                                         mw::drawWidget, &widget, container)
                ->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
