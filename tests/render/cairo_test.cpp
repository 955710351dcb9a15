#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <sstream>

#include "render/cairo/painter.hpp"
#include "render/cairo/text.hpp"
#include "render/layout.hpp"

namespace mw::render {
namespace {

const TextMeasurer& fonts() { return systemTextMeasurer(); }

TextMetrics measureOne(const std::string& text, Font font, double tracking = 0) {
    return fonts().measure({TextRun{text, TextStyle{font, tracking}}}, std::nullopt);
}

// ---------------------------------------------------------------- text

TEST(PangoText, WidthScalesWithSizeSoOneShrinkStepFits) {
    const double w20 = measureOne("Claude Code · 42% left", Font::system(20, Weight::bold)).size.width;
    const double w12 = measureOne("Claude Code · 42% left", Font::system(12, Weight::bold)).size.width;
    EXPECT_NEAR(w12 / w20, 0.6, 0.002);
}

TEST(PangoText, TabularDigitsTrackingAndWeightChangeTheSetting) {
    const Font mono = Font::system(13, Weight::bold).monospaced();
    EXPECT_NEAR(measureOne("1111", mono).size.width, measureOne("8888", mono).size.width, 0.01);
    EXPECT_GT(measureOne("ABCD", Font::system(9), 0.6).size.width, measureOne("ABCD", Font::system(9)).size.width + 1.5);
    EXPECT_GT(measureOne("Usage", Font::system(12, Weight::bold)).size.width,
              measureOne("Usage", Font::system(12)).size.width);
    // The rounded design keeps tabular digits whichever face it ends up with.
    const Font rounded = Font::system(28, Weight::bold, Design::rounded).monospaced();
    EXPECT_NEAR(measureOne("1", rounded).size.width, measureOne("0", rounded).size.width, 0.01);
}

TEST(PangoText, MarkupLikeTextIsSetLiterally) {
    // As markup this would be one bold "&"; as plain text it is eight characters.
    const double literal = measureOne("<b>&amp;", Font::system(13)).size.width;
    const double amp = measureOne("&", Font::system(13)).size.width;
    EXPECT_GT(literal, amp * 4);
    EXPECT_NEAR(literal, measureOne("<b>", Font::system(13)).size.width + measureOne("&amp;", Font::system(13)).size.width,
                0.5);
    // Unbalanced markup neither fails nor vanishes.
    EXPECT_GT(measureOne("<span foo='", Font::system(13)).size.width, 10);
}

TEST(PangoText, WrapsAtWordsWithinTheWidth) {
    const auto m = fonts().measure({TextRun{"Open the app once and this fills in automatically.", {Font::system(11), 0}}},
                                   120.0);
    EXPECT_GE(m.lines, 2);
    EXPECT_LE(m.size.width, 120.0);
    EXPECT_NEAR(m.size.height, m.lines * m.lineHeight, 1e-9);
}

// ---------------------------------------------------------------- painting

struct Pixels {
    SurfacePtr surface;
    int width() const { return cairo_image_surface_get_width(surface.get()); }
    int height() const { return cairo_image_surface_get_height(surface.get()); }
    std::uint32_t at(int x, int y) const {
        const auto* row = cairo_image_surface_get_data(surface.get()) + y * cairo_image_surface_get_stride(surface.get());
        return reinterpret_cast<const std::uint32_t*>(row)[x];
    }
    // Pixels in the rectangle (device pixels) with any coverage.
    int inked(int x0, int y0, int x1, int y1) const {
        int n = 0;
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) n += (at(x, y) >> 24) != 0;
        }
        return n;
    }
};

Pixels draw(const View& v, Size size, PaintOptions options = {}) {
    return {paintToImage(layout(v, size, fonts()), options)};
}

// The image is the size times the scale, in the appearance's colours; the
// snapshots below cover the rest of painting.
TEST(Painter, ImagesAreSizeTimesScaleInTheAppearance) {
    const Pixels p = draw(Rectangle().fill(Color::accent()), {10, 10}, {.appearance = Appearance::dark, .scale = 2});
    EXPECT_EQ(p.width(), 20);
    EXPECT_EQ(p.height(), 20);
    EXPECT_EQ(p.at(10, 10), 0xFF0A84FFu);
}

TEST(Painter, UnmappedSymbolsAndMissingAssetsDrawAPlaceholder) {
    for (const View& v : {Image::system("no.such.symbol").resizable(), Image::asset("no-such-asset")}) {
        const Pixels p = draw(v.frame(40, 40), {40, 40}, {.scale = 1});
        EXPECT_GT(p.inked(0, 0, 40, 40), 20);
    }
    const Pixels symbol = draw(Image::system("bolt").resizable().frame(40, 40), {40, 40}, {.scale = 1});
    EXPECT_GT(symbol.inked(0, 0, 40, 40), 60);
}

TEST(Painter, SvgAndPdfDocuments) {
    const DisplayList list = layout(VStack({Text("Usage"), Circle().trim(0, 0.5).stroke(Color::accent(), 4).frame(30, 30),
                                            Image::system("link")}),
                                    {170, 170}, fonts());
    const std::string svg = renderSVG(list);
    EXPECT_TRUE(svg.starts_with("<?xml") || svg.starts_with("<svg")) << svg.substr(0, 40);
    EXPECT_NE(svg.find("</svg>"), std::string::npos);
    const std::string pdf = renderPDF(list, Appearance::dark);
    EXPECT_TRUE(pdf.starts_with("%PDF"));
    EXPECT_NE(pdf.find("%%EOF"), std::string::npos);
    const std::string png = renderPNG(list);
    EXPECT_TRUE(png.starts_with("\x89PNG\r\n\x1a\n"));

    EXPECT_NE(writeFile(list, "/tmp/x.gif", {}).error().find("unknown"), std::string::npos);
}

// A drawing that reuses the measurer's layouts is the drawing that sets every
// text afresh, at either scale: one-line, shrunk, wrapped and cut texts.
TEST(Painter, KeptLayoutsDrawWhatFreshLayoutsDraw) {
    const View v = VStack({Text("Kept · 17%").font(Font::system(28, Weight::bold, Design::rounded)).lineLimit(1).minimumScaleFactor(0.5),
                           Text("Kept texts wrap across the width of the frame, twice over.").font(Font::system(11)),
                           Text("Kept, and cut at the end of its only line").font(Font::system(11)).lineLimit(1),
                           Text("KEPT").font(Font::system(9, Weight::semibold)).tracking(0.6)},
                          {.spacing = 4})
                       .multilineTextAlignment(TextAlignment::center)
                       .frame(120, 150);
    keepMeasuredLayouts(64);
    const DisplayList list = layout(v, {120, 150}, fonts());
    const Pixels keptAt1 = {paintToImage(list, {.scale = 1})}, keptAt2 = {paintToImage(list, {.scale = 2})};
    keepMeasuredLayouts(0);
    const Pixels freshAt1 = {paintToImage(list, {.scale = 1})}, freshAt2 = {paintToImage(list, {.scale = 2})};
    for (const auto& [kept, fresh] : {std::pair{&keptAt1, &freshAt1}, std::pair{&keptAt2, &freshAt2}}) {
        ASSERT_GT(kept->inked(0, 0, kept->width(), kept->height()), 100);
        for (int y = 0; y < kept->height(); ++y)
            for (int x = 0; x < kept->width(); ++x) ASSERT_EQ(kept->at(x, y), fresh->at(x, y)) << x << "," << y;
    }
}

// ---------------------------------------------------------------- snapshots
//
// Reference images live in tests/render/snapshots; MW_UPDATE_SNAPSHOTS=1
// rewrites them. A pixel differs when a channel is off by more than 24; a
// few differing pixels (antialiasing across library versions) are allowed.

View panel() {
    return VStack({Image::system("exclamationmark.triangle").font(Font::system(22, Weight::semibold)).foreground(Color::secondary()),
                   Text("Can't read widget data").font(Font::system(13, Weight::semibold)),
                   Text("Open Meterwick, then Settings, Widgets, and use Repair.").font(Font::system(11)).foreground(Color::secondary())},
                  {.spacing = 6})
        .multilineTextAlignment(TextAlignment::center)
        .padding(Edge::horizontal, 10)
        .frame(Frame::maxInfinity())
        .background(RoundedRectangle(20).fill(Color::windowBackground()));
}

View gauge() {
    auto ring = [](double f, Color c, double w) {
        return ZStack({Circle().stroke(Color::primary().withOpacity(0.1), StrokeStyle{.lineWidth = w}),
                       Circle().trim(0, f).stroke(c, StrokeStyle{.lineWidth = w, .cap = LineCap::round}).rotation(-std::numbers::pi / 2)})
            .padding(w / 2);
    };
    return ZStack({RoundedRectangle(20).fill(Color::windowBackground()),
                   ZStack({ring(0.42, Color::rgb8(217, 119, 87), 9).padding(6),
                           VStack({Text("CLAUDE").font(Font::system(9, Weight::semibold)).tracking(0.6).foreground(Color::secondary()),
                                   Text("42%").font(Font::system(28, Weight::bold, Design::rounded)).lineLimit(1).minimumScaleFactor(0.6),
                                   Text("resets 3:05").font(Font::system(9, Weight::medium)).foreground(Color::tertiary())},
                                  {.spacing = 2})
                               .padding(Edge::horizontal, 24)})
                       .padding(16)});
}

View chart() {
    return HStack({Path(PathData::bars({0.2, 0.5, 0.9, 0.4, 0.7, 0.3})).fill(Color::rgb8(0, 178, 255)),
                   RoundedRectangle(10).stroke(Color::primary(), StrokeStyle{.lineWidth = 2, .dash = {4, 3}}),
                   Capsule().fill(Color::secondary()).frame(Frame{.height = 12})},
                  {.spacing = 8})
        .padding(12)
        .background(Rectangle().fill(Color::windowBackground()));
}

void expectMatchesSnapshot(const std::string& name, const View& v, Size size, Appearance appearance) {
    const std::string path = std::string(MW_RENDER_SNAPSHOT_DIR) + "/" + name + ".png";
    const DisplayList list = layout(v, size, fonts());
    SurfacePtr actual = paintToImage(list, {.appearance = appearance, .scale = 2});
    if (const char* update = std::getenv("MW_UPDATE_SNAPSHOTS"); update && std::string(update) == "1") {
        std::filesystem::create_directories(MW_RENDER_SNAPSHOT_DIR);
        std::ofstream(path, std::ios::binary) << encodePNG(actual.get());
        GTEST_SKIP() << "rewrote " << path;
    }
    SurfacePtr expected(cairo_image_surface_create_from_png(path.c_str()));
    ASSERT_EQ(cairo_surface_status(expected.get()), CAIRO_STATUS_SUCCESS) << "missing " << path;
    const Pixels a{std::move(actual)}, e{std::move(expected)};
    ASSERT_EQ(a.width(), e.width());
    ASSERT_EQ(a.height(), e.height());
    int differing = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const std::uint32_t p = a.at(x, y), q = e.at(x, y);
            for (int shift = 0; shift < 32; shift += 8) {
                const int d = static_cast<int>((p >> shift) & 0xFF) - static_cast<int>((q >> shift) & 0xFF);
                if (d > 24 || d < -24) {
                    ++differing;
                    break;
                }
            }
        }
    }
    EXPECT_LE(differing, a.width() * a.height() / 200) << name << ": " << differing << " pixels differ";
}

TEST(Snapshots, EmptyPanelLight) { expectMatchesSnapshot("panel-light", panel(), {170, 170}, Appearance::light); }
TEST(Snapshots, GaugeDark) { expectMatchesSnapshot("gauge-dark", gauge(), {170, 170}, Appearance::dark); }
TEST(Snapshots, ChartLight) { expectMatchesSnapshot("chart-light", chart(), {364, 80}, Appearance::light); }

}  // namespace
}  // namespace mw::render
