// The icon reader: path data in its compact forms, the document tree, and
// what it paints.

#include <cairo.h>

#include <cmath>
#include <cstdint>
#include <filesystem>

#include <gtest/gtest.h>

#include "render/assets.hpp"
#include "render/cairo/painter.hpp"
#include "render/cairo/svg.hpp"
#include "support/temp_dir.hpp"

namespace mw::render {
namespace {

using svg::Segment;

struct Pixels {
    SurfacePtr surface;
    std::uint32_t at(int x, int y) const {
        const auto* row = cairo_image_surface_get_data(surface.get()) + y * cairo_image_surface_get_stride(surface.get());
        return reinterpret_cast<const std::uint32_t*>(row)[x];
    }
    int inked(int x0, int y0, int x1, int y1) const {
        int n = 0;
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) n += (at(x, y) >> 24) != 0;
        return n;
    }
};

std::vector<Segment> pathOf(const std::string& d) {
    const auto document = svg::parse("<svg viewBox=\"0 0 24 24\"><path d=\"" + d + "\"/></svg>");
    if (!document || document->root.children.empty()) return {};
    return document->root.children.front().path;
}

// Where a segment ends (a close ends nowhere new).
std::pair<double, double> endOf(const Segment& s) {
    return s.op == Segment::Op::cubic ? std::pair{s.p[4], s.p[5]} : std::pair{s.p[0], s.p[1]};
}

TEST(SvgPath, CompactAndRelativeFormsReachTheSamePoints) {
    struct Case {
        const char* d;
        std::vector<std::pair<double, double>> ends;  // of every segment but closes
    };
    const Case cases[] = {
        {"M1 2h3v4H0z", {{1, 2}, {4, 2}, {4, 6}, {0, 6}}},
        {"m1 2 3 0 0 4", {{1, 2}, {4, 2}, {4, 6}}},             // pairs after a move are lines
        {"M1.5.5l-.5.5", {{1.5, 0.5}, {1, 1}}},                 // "1.5.5" is two numbers
        {"M0,0L1e1,2E0", {{0, 0}, {10, 2}}},
        {"M0 0c1 1 2 1 3 0s2-1 3 0", {{0, 0}, {3, 0}, {6, 0}}},
        {"M0 0q1 1 2 0t2 0", {{0, 0}, {2, 0}, {4, 0}}},
        {"M2 12a10 10 0 0 1 20 0", {{2, 12}, {12, 2}, {22, 12}}},  // a half turn over the top, in two pieces
        {"M2 12a1 1 0 0120 0", {{2, 12}, {12, 2}, {22, 12}}},     // flags run together; radius grown to fit
        {"M0 0L5 5 x 9 9", {{0, 0}, {5, 5}}},                   // an error keeps what came before
        {"M1 1zl2 0", {{1, 1}, {3, 1}}},                        // after z, the start is the current point
    };
    for (const auto& c : cases) {
        std::vector<std::pair<double, double>> ends;
        for (const auto& s : pathOf(c.d))
            if (s.op != Segment::Op::close) ends.push_back(endOf(s));
        ASSERT_EQ(ends.size(), c.ends.size()) << c.d;
        for (std::size_t i = 0; i < ends.size(); ++i) {
            EXPECT_NEAR(ends[i].first, c.ends[i].first, 1e-9) << c.d << " segment " << i;
            EXPECT_NEAR(ends[i].second, c.ends[i].second, 1e-9) << c.d << " segment " << i;
        }
    }
}

TEST(SvgPath, ArcsStayOnTheirCircle) {
    const auto path = pathOf("M2 12A10 10 0 1 1 12 22");  // three quarters round (12, 12)
    ASSERT_EQ(path.size(), 4u);
    for (const auto& s : path) {
        const auto [x, y] = endOf(s);
        EXPECT_NEAR(std::hypot(x - 12, y - 12), 10, 1e-9);
    }
}

TEST(SvgDocument, RefusesWhatIsNotAnSvgDocument) {
    for (const char* text : {"", "<svg", "<svg></g>", "<html/>", "<svg/><svg/>", "<svg><path d='M0 0'></svg>",
                             "<svg width=\"1></svg>", "not xml at all"})
        EXPECT_FALSE(svg::parse(text)) << text;
    const auto commented = svg::parse("<?xml version=\"1.0\"?><!-- <svg> --><svg width='10' height='5'><title>x</title></svg>");
    ASSERT_TRUE(commented);
    EXPECT_EQ(commented->width, 10);
    EXPECT_EQ(commented->height, 5);
}

// Paints a document into a WIDTH × HEIGHT image, one pixel per unit.
Pixels drawn(std::string_view text, int width, int height, const svg::DrawOptions& options = {}) {
    const auto document = svg::parse(text);
    SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    if (document) {
        cairo_t* cr = cairo_create(surface.get());
        cairo_scale(cr, width / document->width, height / document->height);
        svg::draw(cr, *document, options);
        cairo_destroy(cr);
    }
    cairo_surface_flush(surface.get());
    return Pixels{std::move(surface)};
}

TEST(SvgPainting, CurrentColorStrokeWidthAndInheritance) {
    // A 4-unit stroke along y = 10 inherited from the root, in currentColor.
    constexpr const char* line =
        "<svg width='20' height='20' stroke='currentColor' stroke-width='2'><g><path d='M0 10H20'/></g></svg>";
    const auto thin = drawn(line, 20, 20, {.currentColor = {0, 0, 1, 1}});
    EXPECT_EQ(thin.at(5, 10), 0xFF0000FFu);  // opaque blue
    EXPECT_EQ(thin.at(5, 11) >> 24, 0u);      // two units wide: 9..11
    const auto thick = drawn(line, 20, 20, {.rootStrokeWidth = 6, .currentColor = {0, 0, 1, 0.5}});
    EXPECT_EQ(thick.at(5, 12) >> 24, 0x80u);  // six wide, half transparent
    // An element's own stroke width wins over the root's override.
    const auto own = drawn("<svg width='20' height='20' stroke='#F00' stroke-width='2'>"
                           "<path stroke-width='1' d='M0 10.5H20'/></svg>",
                           20, 20, {.rootStrokeWidth = 6});
    EXPECT_EQ(own.at(5, 12) >> 24, 0u);
    EXPECT_EQ(own.at(5, 10), 0xFFFF0000u);
}

TEST(SvgPainting, FillsShapesAndGradients) {
    const auto shapes = drawn("<svg viewBox='0 0 10 10' width='20' height='20'>"
                              "<rect x='0' y='0' width='5' height='10' fill='#0F0'/>"
                              "<circle cx='7.5' cy='5' r='2' fill='none' stroke='#00F'/></svg>",
                              20, 20);
    EXPECT_EQ(shapes.at(2, 10), 0xFF00FF00u);  // the view box is scaled 2×
    EXPECT_EQ(shapes.at(15, 10) >> 24, 0u);    // the circle is not filled
    EXPECT_GT(shapes.at(19, 10) & 0xFF, 0xE0u);

    // Bounding-box units: top to bottom over the rectangle, not the view box.
    const auto gradient = drawn("<svg width='10' height='100'><defs><linearGradient id='g' x2='0' y2='1'>"
                                "<stop offset='0' stop-color='#FF0000'/><stop offset='100%' stop-color='#0000FF'/>"
                                "</linearGradient></defs><rect y='50' width='10' height='50' fill='url(#g)'/></svg>",
                                10, 100);
    EXPECT_EQ(gradient.at(5, 40) >> 24, 0u);
    EXPECT_GT((gradient.at(5, 51) >> 16) & 0xFF, 0xF0u);
    EXPECT_GT(gradient.at(5, 98) & 0xFF, 0xF0u);
}

TEST(SvgAssets, EveryBundledImageReadsAndDrawsInk) {
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(assetDirectory())) {
        if (entry.path().extension() != ".svg") continue;
        ++files;
        const auto text = testing::readFile(entry.path());
        const auto document = svg::parse(text);
        ASSERT_TRUE(document) << entry.path();
        EXPECT_GT(drawn(text, 48, 48).inked(0, 0, 48, 48), 48 * 48 / 20) << entry.path();
    }
    EXPECT_GT(files, 10);
}

}  // namespace
}  // namespace mw::render
