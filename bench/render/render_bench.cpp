// Layout and painting of a large widget-sized tree (about 60 nodes) at scale
// 2, and PNG encoding of the painted surface, in one run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <numbers>
#include <string>

#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"
#include "render/layout.hpp"

using namespace mw::render;
using mw::Color;

namespace {

View ring(double f, Color c, double w) {
    return ZStack({Circle().stroke(Color::primary().withOpacity(0.09), StrokeStyle{.lineWidth = w}),
                   Circle().trim(0, f).stroke(c, StrokeStyle{.lineWidth = w, .cap = LineCap::round}).rotation(-std::numbers::pi / 2)})
        .padding(w / 2);
}

View row(int i) {
    char name[32], pct[16], reset[16];
    std::snprintf(name, sizeof name, "Account %d", i + 1);
    std::snprintf(pct, sizeof pct, "%d%%", 17 * (i + 1) % 100);
    std::snprintf(reset, sizeof reset, "%d:%02d", i + 1, 7 * i % 60);
    const double f = (17 * (i + 1) % 100) / 100.0;
    return HStack({ring(f, Color::rgb8(217, 119, 87), 4).frame(22, 22),
                   VStack({Text(name).font(Font::system(11, Weight::semibold)).lineLimit(1),
                           ZStack({Capsule().fill(Color::primary().withOpacity(0.09)),
                                   Capsule().fill(Color::rgb8(16, 163, 127)).frame(Frame{.width = 120 * f})},
                                  {.alignment = Alignment::leading()})
                               .frame(Frame{.height = 4, .maxWidth = infinity})},
                          {.alignment = HAlign::leading, .spacing = 3}),
                   VStack({Text(pct).font(Font::system(13, Weight::bold, Design::rounded).monospaced()),
                           HStack({Image::system("arrow.clockwise"), Text(reset).monospacedDigit()}, {.spacing = 2})
                               .font(Font::system(9, Weight::medium))
                               .foreground(Color::tertiary())},
                          {.alignment = HAlign::trailing, .spacing = 1})},
                  {.spacing = 8})
        .link("meterwick://tool/account-" + std::to_string(i));
}

View largeWidget() {
    std::vector<View> rows;
    for (int i = 0; i < 6; ++i) rows.push_back(row(i));
    return ZStack({Rectangle().fill(Color::windowBackground().withOpacity(0.98)),
                   VStack({HStack({Text("Usage").font(Font::system(12, Weight::bold)), Spacer(),
                                   Text("5m ago").font(Font::system(8.5, Weight::medium)).foreground(Color::secondary())}),
                           VStack(rows, {.alignment = HAlign::leading, .spacing = 9}),
                           Text("Claude runs out in about 2 hours at this pace.").font(Font::system(9)).foreground(Color::secondary()),
                           Spacer()},
                          {.alignment = HAlign::leading, .spacing = 9})
                       .padding(16)})
        .clipShape(Shape::roundedRectangle(20))
        .widgetURL("meterwick://open");
}

const Size kLarge{364, 382};

void BM_Layout(benchmark::State& state) {
    const View tree = largeWidget();
    for (auto _ : state) benchmark::DoNotOptimize(layout(tree, kLarge, systemTextMeasurer()));
    state.counters["ops"] = static_cast<double>(layout(tree, kLarge, systemTextMeasurer()).ops.size());
}

void BM_LayoutAndPaint(benchmark::State& state) {
    const View tree = largeWidget();
    for (auto _ : state) {
        SurfacePtr s = paintToImage(layout(tree, kLarge, systemTextMeasurer()), {.scale = 2});
        benchmark::DoNotOptimize(s.get());
    }
}

void BM_EncodePNG(benchmark::State& state) {
    SurfacePtr s = paintToImage(layout(largeWidget(), kLarge, systemTextMeasurer()), {.scale = 2});
    std::size_t bytes = 0;
    for (auto _ : state) {
        std::string png = encodePNG(s.get());
        bytes = png.size();
        benchmark::DoNotOptimize(png.data());
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}

void BM_BuildTree(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(largeWidget());
}

}  // namespace

BENCHMARK(BM_BuildTree)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Layout)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LayoutAndPaint)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_EncodePNG)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();

namespace {
cairo_status_t sinkBytes(void* closure, const unsigned char*, unsigned int length) {
    *static_cast<std::size_t*>(closure) += length;
    return CAIRO_STATUS_SUCCESS;
}
// Cairo's own PNG writer (default zlib settings), for comparison.
void BM_EncodePNGCairoDefault(benchmark::State& state) {
    SurfacePtr s = paintToImage(layout(largeWidget(), kLarge, systemTextMeasurer()), {.scale = 2});
    std::size_t bytes = 0;
    for (auto _ : state) {
        bytes = 0;
        cairo_surface_write_to_png_stream(s.get(), sinkBytes, &bytes);
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}
}  // namespace
BENCHMARK(BM_EncodePNGCairoDefault)->Unit(benchmark::kMicrosecond);
