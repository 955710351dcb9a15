// The five widgets drawn as the host and `render` draw them: the first entry
// of each timeline laid out at every family the widget comes in, then painted
// into an ARGB image at scale 2; and PNG encoding of one such image.
//
// Layout alone is the floor of layout + paint. Both run with the process's
// text measurer, so after the first iteration text sizes come from its
// cache: these are the figures of a warm process (the host redrawing), not
// of a first draw. The encoder is set beside a plain copy of the pixels and
// beside Cairo's own PNG writer.

#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "bench/support/sample_container.hpp"
#include "bundle/widget_view.hpp"
#include "payload/self_report.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"

namespace mw {
namespace {

struct Drawn {
    AnyEntry entry;
    WidgetFamily family;
};

void layoutOnly(benchmark::State& state, const Drawn* drawn) {
    std::size_t ops = 0;
    for (auto _ : state) {
        const auto list = layoutWidget(drawn->entry, drawn->family, render::systemTextMeasurer());
        ops = list.ops.size();
        benchmark::DoNotOptimize(list);
    }
    state.counters["ops"] = static_cast<double>(ops);
}

void layoutAndPaint(benchmark::State& state, const Drawn* drawn) {
    for (auto _ : state) {
        const auto image = render::paintToImage(layoutWidget(drawn->entry, drawn->family, render::systemTextMeasurer()),
                                                {.appearance = render::Appearance::light, .scale = 2});
        benchmark::DoNotOptimize(image.get());
    }
}

void encodePNG(benchmark::State& state, const Drawn* drawn) {
    const auto image = render::paintToImage(layoutWidget(drawn->entry, drawn->family, render::systemTextMeasurer()),
                                            {.appearance = render::Appearance::light, .scale = 2});
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string png = render::encodePNG(image.get());
        bytes = png.size();
        benchmark::DoNotOptimize(png.data());
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}

// Copying the image's pixels once: the least any encoder does with them.
void copyPixels(benchmark::State& state, const Drawn* drawn) {
    const auto image = render::paintToImage(layoutWidget(drawn->entry, drawn->family, render::systemTextMeasurer()),
                                            {.appearance = render::Appearance::light, .scale = 2});
    cairo_surface_flush(image.get());
    const auto* data = cairo_image_surface_get_data(image.get());
    const auto size = static_cast<std::size_t>(cairo_image_surface_get_stride(image.get())) *
                      static_cast<std::size_t>(cairo_image_surface_get_height(image.get()));
    std::string copy;
    for (auto _ : state) {
        copy.assign(reinterpret_cast<const char*>(data), size);
        benchmark::DoNotOptimize(copy.data());
    }
    state.counters["bytes"] = static_cast<double>(size);
}

cairo_status_t countBytes(void* closure, const unsigned char*, unsigned int length) {
    *static_cast<std::size_t*>(closure) += length;
    return CAIRO_STATUS_SUCCESS;
}

// Cairo's own PNG writer (zlib defaults) on the same image: the reference for
// the encoder above.
void encodePNGWithCairo(benchmark::State& state, const Drawn* drawn) {
    const auto image = render::paintToImage(layoutWidget(drawn->entry, drawn->family, render::systemTextMeasurer()),
                                            {.appearance = render::Appearance::light, .scale = 2});
    std::size_t bytes = 0;
    for (auto _ : state) {
        bytes = 0;
        cairo_surface_write_to_png_stream(image.get(), countBytes, &bytes);
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}

}  // namespace
}  // namespace mw

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

    // Entries are built once, up front; the container can go afterwards.
    std::map<std::string, mw::Drawn> drawn;
    {
        const mw::bench::SampleContainer container;
        const mw::ProviderContext context{container.dir(), mw::bench::sampleNow(), mw::SelfReportAnchor::bundle()};
        for (const auto& widget : mw::widgetDeclarations()) {
            const auto timeline = widget.timeline(context, {});
            for (const auto family : widget.families)
                drawn.emplace(std::string(widget.kindWord) + "/" + std::string(mw::rawValue(family)),
                              mw::Drawn{timeline.entries.front(), family});
        }
    }
    for (const auto& [name, item] : drawn) {
        benchmark::RegisterBenchmark(("BM_Layout/" + name).c_str(), mw::layoutOnly, &item)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("BM_LayoutPaint/" + name).c_str(), mw::layoutAndPaint, &item)
            ->Unit(benchmark::kMicrosecond);
    }
    // One image of the most common size (systemLarge, 728 × 764 pixels).
    benchmark::RegisterBenchmark("BM_EncodePNG/accounts/systemLarge", mw::encodePNG, &drawn.at("accounts/systemLarge"))
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("BM_CopyPixels/accounts/systemLarge", mw::copyPixels,
                                 &drawn.at("accounts/systemLarge"))
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("BM_EncodePNGCairo/accounts/systemLarge", mw::encodePNGWithCairo,
                                 &drawn.at("accounts/systemLarge"))
        ->Unit(benchmark::kMicrosecond);

    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
