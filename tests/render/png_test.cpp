// PNG encoding: whatever the painter leaves in an image comes back from an
// independent decoder (Cairo's, through libpng; zlib) as the same pixels.

#include <cairo.h>
#include <libdeflate.h>
#include <zlib.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <random>

#include <gtest/gtest.h>

#include "render/cairo/deflate_join.hpp"
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

// The rows a PNG's IDAT holds, inflated by zlib, which checks the stream and
// its Adler-32; empty when it will not.
std::string inflatedRows(const std::string& png, std::size_t size) {
    std::string idat;
    for (std::size_t at = 8; at + 8 <= png.size();) {
        const auto* p = reinterpret_cast<const unsigned char*>(png.data() + at);
        const std::size_t length = std::size_t{p[0]} << 24 | std::size_t{p[1]} << 16 | p[2] << 8 | p[3];
        if (png.compare(at + 4, 4, "IDAT") == 0) idat += png.substr(at + 8, length);
        at += 12 + length;
    }
    std::string rows(size + 1, '\0');
    uLongf got = rows.size();
    const int status = uncompress(reinterpret_cast<Bytef*>(rows.data()), &got,
                                  reinterpret_cast<const Bytef*>(idat.data()), idat.size());
    if (status != Z_OK || got != size) return {};
    rows.resize(size);
    return rows;
}

// Raw DEFLATE from zlib, ending in each kind of final block (stored,
// fixed and dynamic Huffman).
std::string deflated(const std::string& data, int level, int strategy) {
    z_stream z{};
    deflateInit2(&z, level, Z_DEFLATED, -15, 8, strategy);
    std::string out(deflateBound(&z, data.size()), '\0');
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    z.avail_in = static_cast<uInt>(data.size());
    z.next_out = reinterpret_cast<Bytef*>(out.data());
    z.avail_out = static_cast<uInt>(out.size());
    deflate(&z, Z_FINISH);
    out.resize(z.total_out);
    deflateEnd(&z);
    return out;
}

// A raw DEFLATE stream inflated by zlib, and the bit its final block ends
// at: zlib, stopped block by block, says when it has just decoded the last
// block's end code and how many of the bits it took are left over.
struct Inflated {
    std::string data;
    std::size_t endBit = 0;
};
std::optional<Inflated> inflatedRaw(const std::string& stream, std::size_t limit = 1 << 16) {
    z_stream z{};
    inflateInit2(&z, -15);
    Inflated out{std::string(limit, '\0')};
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stream.data()));
    z.avail_in = static_cast<uInt>(stream.size());
    z.next_out = reinterpret_cast<Bytef*>(out.data.data());
    z.avail_out = static_cast<uInt>(out.data.size());
    constexpr int kLastBlock = 64, kAfterEndCode = 128;
    int status = Z_OK;
    while (status == Z_OK && (z.data_type & (kLastBlock | kAfterEndCode)) != (kLastBlock | kAfterEndCode))
        status = inflate(&z, Z_BLOCK);
    out.endBit = 8 * z.total_in - static_cast<std::size_t>(z.data_type & 63);
    if (status == Z_OK) status = inflate(&z, Z_FINISH);
    out.data.resize(z.total_out);
    inflateEnd(&z);
    if (status != Z_STREAM_END || z.avail_in != 0) return std::nullopt;
    return out;
}

// Large images are converted and compressed in two halves at once and the
// two streams joined. Whatever their content (long runs and fine detail,
// noise, smooth gradients, odd widths) they inflate to
// exactly the rows of images small enough to go in one piece: the same image
// taken in bands of a few rows. Both encoders are checked: into separate rows
// and in place in a workspace's own image.
TEST(Png, LargeImagesInTwoHalvesInflateToTheRowsOfOnePiece) {
    const auto detail = [](cairo_t* cr, int w, int h) {
        cairo_set_source_rgb(cr, 0.96, 0.95, 0.93);
        cairo_paint(cr);
        cairo_set_source_rgba(cr, 0.2, 0.45, 0.85, 0.7);
        cairo_rectangle(cr, w / 10.0, h / 8.0, w / 2.0, h / 3.0);
        cairo_fill(cr);
        std::mt19937 random(7);
        cairo_set_source_rgb(cr, 0.1, 0.1, 0.12);
        cairo_set_line_width(cr, 1.3);
        for (int i = 0; i < 4000; ++i) {  // strokes the size of letters, anti-aliased
            const double x = random() % w, y = random() % h;
            cairo_move_to(cr, x, y);
            cairo_curve_to(cr, x + 3, y - 4, x + 6, y + 5, x + 9.5, y - 1.5);
        }
        cairo_stroke(cr);
    };
    // Lines, then noise from the middle on: the second half in Huffman codes
    // of every length. (Premultiplied noise is never random enough for
    // deflate to store it; stored blocks are joined in DeflateJoin below.)
    const auto noise = [](cairo_t* cr, int w, int h) {
        cairo_set_source_rgb(cr, 0.1, 0.1, 0.12);
        for (int x = 0; x < w; x += 7) cairo_rectangle(cr, x, x % 13, 3, h / 2.0 - 13);
        cairo_fill(cr);
        cairo_surface_t* s = cairo_get_target(cr);
        cairo_surface_flush(s);
        std::mt19937 random(11);
        for (int y = h / 2; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const std::uint32_t a = random() % 256, scaled = a * 0x010101u;  // premultiplied: colour <= alpha
                pixel(s, x, y) = a << 24 | (random() & scaled & 0xFFFFFF);
            }
        }
        cairo_surface_mark_dirty(s);
    };
    const auto gradient = [](cairo_t* cr, int w, int h) {
        cairo_pattern_t* g = cairo_pattern_create_linear(0, 0, w, h);
        cairo_pattern_add_color_stop_rgba(g, 0, 1, 0.2, 0.1, 0.1);
        cairo_pattern_add_color_stop_rgba(g, 1, 0.1, 0.3, 1, 1);
        cairo_set_source(cr, g);
        cairo_paint(cr);
        cairo_pattern_destroy(g);
    };
    struct Case {
        const char* name;
        int width, height;
        void (*fill)(cairo_t*, int, int);
    };
    const Case cases[] = {
        {"detail", 1560, 764, detail},
        {"lines over noise", 701, 900, noise},  // odd width
        {"gradient", 1001, 700, gradient},
        {"tall and narrow", 60, 7000, detail},  // too tall to split in place
    };
    ImageWorkspace workspace;
    for (const auto& c : cases) {
        SurfacePtr source = prefaultedImage(c.width, c.height);
        cairo_t* cr = cairo_create(source.get());
        c.fill(cr, c.width, c.height);
        cairo_destroy(cr);
        cairo_surface_flush(source.get());
        unsigned char* data = cairo_image_surface_get_data(source.get());
        const int stride = cairo_image_surface_get_stride(source.get());

        const std::size_t rowBytes = 1 + 4 * static_cast<std::size_t>(c.width);
        std::string expected;
        for (int y = 0; y < c.height; y += 16) {
            const int band = std::min(16, c.height - y);
            SurfacePtr rows(
                cairo_image_surface_create_for_data(data + y * stride, CAIRO_FORMAT_ARGB32, c.width, band, stride));
            expected += inflatedRows(encodePNG(rows.get()), rowBytes * band);
        }
        ASSERT_EQ(expected.size(), rowBytes * c.height) << c.name;

        // The end of libdeflate's streams is found where zlib finds it (were
        // they refused, images would quietly go in one piece).
        libdeflate_compressor* compressor = libdeflate_alloc_compressor(1);
        std::string stream(libdeflate_deflate_compress_bound(compressor, expected.size()), '\0');
        stream.resize(libdeflate_deflate_compress(compressor, expected.data(), expected.size(), stream.data(),
                                                  stream.size()));
        libdeflate_free_compressor(compressor);
        const auto final = finalDeflateBlock(reinterpret_cast<const unsigned char*>(stream.data()), stream.size());
        ASSERT_TRUE(final) << c.name;
        EXPECT_EQ(final->endBit, inflatedRaw(stream, expected.size() + 1).value().endBit) << c.name;

        EXPECT_TRUE(inflatedRows(workspace.encodePNG(source.get()), expected.size()) == expected) << c.name;
        SurfacePtr own = workspace.image(c.width, c.height);
        std::memcpy(cairo_image_surface_get_data(own.get()), data, static_cast<std::size_t>(stride) * c.height);
        cairo_surface_mark_dirty(own.get());
        EXPECT_TRUE(inflatedRows(workspace.encodePNG(std::move(own)), expected.size()) == expected)
            << c.name << " in place";
    }
}

TEST(DeflateJoin, StreamsGoOnAfterEveryKindOfFinalBlock) {
    std::string text;
    for (int i = 0; i < 300; ++i) text += "Accounts " + std::to_string(i * 37 % 101) + "% of weekly limit; ";
    const std::string second = text.substr(1000, 2500);
    // Stored, fixed and dynamic final blocks; each stream is followed by the
    // next one's kind, a stored one after Huffman-coded blocks too.
    const struct {
        int level, strategy, type;
        std::size_t length;
    } cases[] = {{0, Z_DEFAULT_STRATEGY, 0, 3000}, {6, Z_FIXED, 1, 3000},
                 {6, Z_DEFAULT_STRATEGY, 2, 3000}, {6, Z_FIXED, 1, 0},
                 {0, Z_DEFAULT_STRATEGY, 0, 0},    {6, Z_DEFAULT_STRATEGY, 1, 7}};
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        const auto& next = cases[(i + 1) % std::size(cases)];
        const std::string first = text.substr(0, c.length);
        std::string joined = deflated(first, c.level, c.strategy);
        const auto* bytes = reinterpret_cast<unsigned char*>(joined.data());
        const auto final = finalDeflateBlock(bytes, joined.size());
        ASSERT_TRUE(final) << c.length << " at level " << c.level;
        EXPECT_EQ(final->endBit, inflatedRaw(joined).value().endBit) << c.length << " at level " << c.level;
        const auto bit = [&](std::size_t n) { return (bytes[n / 8] >> (n % 8)) & 1; };
        EXPECT_EQ(bit(final->finalBit + 1) | bit(final->finalBit + 2) << 1, c.type)
            << c.length << " at level " << c.level;
        // Nothing but a whole stream is taken.
        EXPECT_FALSE(finalDeflateBlock(bytes, joined.size() - 1));
        EXPECT_FALSE(
            finalDeflateBlock(reinterpret_cast<const unsigned char*>((joined + '\0').data()), joined.size() + 1));

        joined.resize(joined.size() + kDeflateContinueBytes);
        joined.resize(continueDeflateStream(reinterpret_cast<unsigned char*>(joined.data()), *final));
        joined += deflated(second, next.level, next.strategy);
        EXPECT_EQ(inflatedRaw(joined).value_or(Inflated{}).data, first + second) << c.length << " at level " << c.level;

        const auto adler = [](const std::string& s) {
            return static_cast<std::uint32_t>(
                adler32(1, reinterpret_cast<const Bytef*>(s.data()), static_cast<uInt>(s.size())));
        };
        EXPECT_EQ(adler32Combine(adler(first), adler(second), second.size()), adler(first + second));
    }
}

}  // namespace
}  // namespace mw::render
