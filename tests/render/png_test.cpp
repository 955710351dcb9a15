// PNG encoding: whatever the painter leaves in an image comes back from an
// independent decoder (Cairo's, through libpng) as the same pixels.

#include <cairo.h>

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "render/cairo/painter.hpp"

namespace mw::render {
namespace {

struct Reader {
    const std::string& bytes;
    std::size_t at = 0;
};

cairo_status_t readFrom(void* closure, unsigned char* data, unsigned int length) {
    auto* reader = static_cast<Reader*>(closure);
    if (reader->at + length > reader->bytes.size()) return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, reader->bytes.data() + reader->at, length);
    reader->at += length;
    return CAIRO_STATUS_SUCCESS;
}

std::uint32_t& pixel(cairo_surface_t* s, int x, int y) {
    auto* row = cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s);
    return reinterpret_cast<std::uint32_t*>(row)[x];
}

TEST(Png, DecodesToThePaintedPixels) {
    // Premultiplied ARGB values: opaque, translucent at several alphas,
    // clear, and runs of one colour. Odd widths check the row bookkeeping.
    const std::uint32_t palette[] = {0xFF000000, 0xFFFFFFFF, 0xFF3A7BD5, 0x80402010, 0x01010000,
                                     0xFE7F0000, 0x00000000, 0x40404040, 0xC0102030, 0xFFFFFFFF};
    for (const int width : {1, 7, 333}) {
        const int height = 5;
        SurfacePtr image = prefaultedImage(width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) pixel(image.get(), x, y) = palette[(x / 3 + y) % std::size(palette)];
        cairo_surface_mark_dirty(image.get());

        const std::string png = encodePNG(image.get());
        Reader reader{png};
        SurfacePtr decoded(cairo_image_surface_create_from_png_stream(readFrom, &reader));
        ASSERT_EQ(cairo_surface_status(decoded.get()), CAIRO_STATUS_SUCCESS) << width;
        ASSERT_EQ(cairo_image_surface_get_width(decoded.get()), width);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const std::uint32_t want = pixel(image.get(), x, y), got = pixel(decoded.get(), x, y);
                // Straight colour loses a little at low alpha on the way back.
                for (int shift = 0; shift < 32; shift += 8)
                    EXPECT_NEAR(static_cast<int>((got >> shift) & 0xFF), static_cast<int>((want >> shift) & 0xFF), 1)
                        << width << " at " << x << "," << y << std::hex << ": " << want << " became " << got;
            }
        }
    }
}

// Memory kept from image to image (large pages for large images) is
// cleared for the next, whatever its size and whatever the last encoding left
// in it: an image handed over is turned into its own PNG rows. Either way
// the bytes are those of a one-off encoding.
TEST(Png, AWorkspaceGivesWhatFreshImagesGive) {
    ImageWorkspace workspace;
    const int sizes[][2] = {{333, 5}, {7, 3}, {800, 420}, {400, 9}, {801, 421}, {90, 30}};
    bool handOver = false;
    for (const auto [width, height] : sizes) {
        SurfacePtr fresh = prefaultedImage(width, height);
        SurfacePtr reused = workspace.image(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                ASSERT_EQ(pixel(reused.get(), x, y), 0u) << width << " at " << x << "," << y;
                pixel(fresh.get(), x, y) = pixel(reused.get(), x, y) = 0x80402010u + static_cast<unsigned>(x % 5 + y % 7);
            }
        }
        cairo_surface_mark_dirty(fresh.get());
        cairo_surface_mark_dirty(reused.get());
        const std::string expected = encodePNG(fresh.get());
        EXPECT_EQ(handOver ? workspace.encodePNG(std::move(reused)) : workspace.encodePNG(reused.get()), expected)
            << width << (handOver ? " handed over" : "");
        handOver = !handOver;
    }
}

TEST(Png, PrefaultedImagesStartClearAndRefuseOtherSurfaces) {
    SurfacePtr image = prefaultedImage(40, 3);
    ASSERT_EQ(cairo_image_surface_get_format(image.get()), CAIRO_FORMAT_ARGB32);
    for (int x = 0; x < 40; ++x) EXPECT_EQ(pixel(image.get(), x, 2), 0u);
    SurfacePtr a8(cairo_image_surface_create(CAIRO_FORMAT_A8, 4, 4));
    EXPECT_TRUE(encodePNG(a8.get()).empty());
}

}  // namespace
}  // namespace mw::render
