// Each widget's timeline build, as the host asks for it: a fresh load of the
// sample payload, the entries, and the self-report written beside the
// payload. The floor is the load alone (read and decode), which every build
// starts with.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/support/sample_container.hpp"
#include "bundle/bundle.hpp"
#include "payload/self_report.hpp"

namespace mw {
namespace {

void loadOnly(benchmark::State& state, const bench::SampleContainer* container) {
    for (auto _ : state) benchmark::DoNotOptimize(WidgetStore::load(container->dir()));
}

void timelineOf(benchmark::State& state, const WidgetDeclaration* widget, const bench::SampleContainer* container) {
    const ProviderContext context{container->dir(), bench::sampleNow(), SelfReportAnchor::bundle()};
    std::size_t entries = 0;
    for (auto _ : state) {
        const auto timeline = widget->timeline(context, {});
        entries = timeline.entries.size();
        benchmark::DoNotOptimize(timeline);
    }
    state.counters["entries"] = static_cast<double>(entries);
}

}  // namespace
}  // namespace mw

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    const mw::bench::SampleContainer container;
    benchmark::RegisterBenchmark("BM_Load", mw::loadOnly, &container)->Unit(benchmark::kMicrosecond);
    for (const auto& widget : mw::widgetDeclarations())
        benchmark::RegisterBenchmark(("BM_Timeline/" + std::string(widget.kindWord)).c_str(), mw::timelineOf, &widget,
                                     &container)
            ->Unit(benchmark::kMicrosecond);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
