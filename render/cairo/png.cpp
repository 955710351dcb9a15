#include "render/cairo/png.hpp"

#include <libdeflate.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>

namespace mw::render {

namespace {

// libdeflate's level 1 on unfiltered rows. Widget artwork is long runs of
// one colour, which the fastest match finder takes whole when the rows are
// left as they are; filtering them first (Sub or Up) turns the runs into
// zeros that level 1 handles badly and the higher levels only as well as
// level 1 handles the raw rows. On the gallery's images the files come out a
// fifth smaller than Sub at level 4, in two thirds of the time.
constexpr int kCompressionLevel = 1;

// Anonymous memory, all of its pages mapped up front: a fresh 2 MB image
// would otherwise take a page fault per 4 KB while it is painted. The pages
// come zeroed.
//
// `Pages::large` asks for 2 MB pages where the kernel offers them on
// request, for memory that lives as long as a drawing program: a 5 MB image
// is then ready in under a millisecond instead of six (most of which, in a
// virtual machine, is the host backing each small page on first touch).
// Not for a long-lived process's small images: a large page is resident
// whole.
enum class Pages { small, large };

struct Mapping {
    static constexpr std::size_t kLargePage = std::size_t{2} << 20;

    void* pixels = MAP_FAILED;
    std::size_t size = 0;

    Mapping() = default;
    explicit Mapping(std::size_t bytes, Pages pages = Pages::small) {
        if (bytes == 0) return;
        if (pages == Pages::large && bytes >= kLargePage / 2 && mapLarge(bytes)) return;
        pixels = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
        size = pixels == MAP_FAILED ? 0 : bytes;
    }
    Mapping(Mapping&& other) noexcept
        : pixels(std::exchange(other.pixels, MAP_FAILED)), size(std::exchange(other.size, 0)) {}
    Mapping& operator=(Mapping&& other) noexcept {
        std::swap(pixels, other.pixels);
        std::swap(size, other.size);
        return *this;
    }
    ~Mapping() {
        if (pixels != MAP_FAILED) ::munmap(pixels, size);
    }
    unsigned char* bytes() const { return pixels == MAP_FAILED ? nullptr : static_cast<unsigned char*>(pixels); }

private:
    // BYTES rounded up to whole large pages, on a large-page boundary (the
    // kernel only backs aligned ranges that way), populated writable; false
    // when the kernel will not (the caller maps small pages instead).
    bool mapLarge(std::size_t bytes) {
        const std::size_t length = (bytes + kLargePage - 1) / kLargePage * kLargePage;
        void* range = ::mmap(nullptr, length + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (range == MAP_FAILED) return false;
        const auto start = reinterpret_cast<std::uintptr_t>(range);
        const std::uintptr_t aligned = (start + kLargePage - 1) & ~(kLargePage - 1);
        if (aligned > start) ::munmap(range, aligned - start);
        if (const std::size_t tail = start + length + kLargePage - (aligned + length); tail > 0)
            ::munmap(reinterpret_cast<void*>(aligned + length), tail);
        void* region = reinterpret_cast<void*>(aligned);
        if (::madvise(region, length, MADV_HUGEPAGE) != 0 || ::madvise(region, length, MADV_POPULATE_WRITE) != 0) {
            ::munmap(region, length);
            return false;
        }
        pixels = region;
        size = length;
        return true;
    }
};

std::size_t imageBytes(int width, int height, int stride) {
    return stride > 0 && height > 0 && width > 0 ? static_cast<std::size_t>(stride) * static_cast<std::size_t>(height)
                                                 : 0;
}

// A surface drawing into PIXELS (cleared by the caller); nothing when Cairo
// refuses the size.
SurfacePtr surfaceOn(unsigned char* pixels, int width, int height, int stride) {
    SurfacePtr surface(cairo_image_surface_create_for_data(pixels, CAIRO_FORMAT_ARGB32, width, height, stride));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    return surface;
}

void releaseMapping(void* mapping) { delete static_cast<Mapping*>(mapping); }

// Premultiplied ARGB32 to straight RGBA, the bytes in PNG's order packed
// R first (lowest). Division by alpha is a multiplication by a 16.16
// reciprocal.
std::uint32_t straightRGBA(std::uint32_t p) {
    static const auto reciprocal = [] {
        std::array<std::uint32_t, 256> t{};
        for (unsigned a = 1; a < 256; ++a) t[a] = (255u * 65536u + a / 2) / a;
        return t;
    }();
    const std::uint32_t a = p >> 24;
    std::uint32_t r = (p >> 16) & 0xFF, g = (p >> 8) & 0xFF, b = p & 0xFF;
    if (a != 255 && a != 0) {
        const std::uint32_t k = reciprocal[a];
        r = std::min<std::uint32_t>(255, (r * k + 32768) >> 16);
        g = std::min<std::uint32_t>(255, (g * k + 32768) >> 16);
        b = std::min<std::uint32_t>(255, (b * k + 32768) >> 16);
    }
    return r | g << 8 | b << 16 | a << 24;
}

// One row as PNG wants it before deflate: the filter byte (none), then
// straight RGBA; a run of one colour, most of a widget, is converted once.
// ROW may be SOURCE itself moved on by up to a byte a row (see
// encodePNG(SurfacePtr)): going from the last pixel to the first, each is
// read whole before its bytes, which lie at or after it, are written.
void unpremultipliedRow(const unsigned char* source, std::size_t width, unsigned char* row) {
    std::uint32_t previousSource = 0;
    std::uint32_t straight = 0;
    for (std::size_t x = width; x-- > 0;) {
        std::uint32_t p;
        std::memcpy(&p, source + 4 * x, 4);
        if (p != previousSource) {
            straight = straightRGBA(p);
            previousSource = p;
        }
        unsigned char* out = row + 1 + 4 * x;
        out[0] = static_cast<unsigned char>(straight);
        out[1] = static_cast<unsigned char>(straight >> 8);
        out[2] = static_cast<unsigned char>(straight >> 16);
        out[3] = static_cast<unsigned char>(straight >> 24);
    }
    row[0] = 0;  // no filter
}

}  // namespace

struct ImageWorkspace::Buffers {
    Mapping pixels;
    bool pixelsClear = true;  // fresh pages come zeroed
    Mapping rows;
    std::unique_ptr<unsigned char[]> out;
    std::size_t outSize = 0;
    libdeflate_compressor* compressor = nullptr;

    ~Buffers() {
        if (compressor != nullptr) libdeflate_free_compressor(compressor);
    }
};

ImageWorkspace::ImageWorkspace() : buffers_(std::make_unique<Buffers>()) {}
ImageWorkspace::~ImageWorkspace() = default;

SurfacePtr ImageWorkspace::image(int width, int height) {
    const int stride = cairo_format_stride_for_width(CAIRO_FORMAT_ARGB32, width);
    const std::size_t size = imageBytes(width, height, stride);
    if (size == 0) return SurfacePtr(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    auto& b = *buffers_;
    // One byte a row more than the image needs, so that the image can become
    // its own PNG rows (see encodePNG(SurfacePtr)).
    const std::size_t mapped = size + static_cast<std::size_t>(height);
    if (b.pixels.size < mapped) {
        b.pixels = Mapping();  // the old pages go before the new ones are mapped
        b.pixels = Mapping(mapped, Pages::large);
        b.pixelsClear = true;
    }
    if (b.pixels.bytes() == nullptr) return SurfacePtr(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    // Clearing the part used is cheaper than mapping and faulting it afresh.
    if (!b.pixelsClear) std::memset(b.pixels.bytes(), 0, size);
    b.pixelsClear = false;
    if (auto surface = surfaceOn(b.pixels.bytes(), width, height, stride)) return surface;
    return SurfacePtr(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
}

namespace {

struct ImageFacts {
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t stride = 0;
    unsigned char* data = nullptr;
};

// The pixels of a non-empty ARGB32 image surface; nothing otherwise.
std::optional<ImageFacts> argbImage(cairo_surface_t* image) {
    if (!image || cairo_surface_get_type(image) != CAIRO_SURFACE_TYPE_IMAGE ||
        cairo_image_surface_get_format(image) != CAIRO_FORMAT_ARGB32) {
        return std::nullopt;
    }
    cairo_surface_flush(image);
    const ImageFacts facts{static_cast<std::size_t>(cairo_image_surface_get_width(image)),
                           static_cast<std::size_t>(cairo_image_surface_get_height(image)),
                           static_cast<std::size_t>(cairo_image_surface_get_stride(image)),
                           cairo_image_surface_get_data(image)};
    if (facts.width == 0 || facts.height == 0 || facts.data == nullptr) return std::nullopt;
    return facts;
}

}  // namespace

std::string ImageWorkspace::encodePNG(cairo_surface_t* image) {
    const auto facts = argbImage(image);
    if (!facts) return {};
    const auto [w, h, stride, data] = *facts;
    auto& b = *buffers_;
    // The image data as PNG wants it before deflate: each row a filter byte
    // then straight RGBA. Every byte is written, so the buffer is not cleared.
    const std::size_t rowBytes = 1 + 4 * w;
    if (b.rows.size < rowBytes * h) {
        b.rows = Mapping();
        b.rows = Mapping(rowBytes * h);
    }
    unsigned char* rows = b.rows.bytes();
    if (rows == nullptr) return {};
    for (std::size_t y = 0; y < h; ++y)
        unpremultipliedRow(data + y * stride, w, rows + y * rowBytes);
    return pngOfRows(rows, w, h);
}

std::string ImageWorkspace::encodePNG(SurfacePtr image) {
    const auto facts = argbImage(image.get());
    if (!facts) return {};
    const auto [w, h, stride, data] = *facts;
    auto& b = *buffers_;
    const std::size_t rowBytes = 1 + 4 * w;
    if (data != b.pixels.bytes() || stride != 4 * w || b.pixels.size < rowBytes * h) return encodePNG(image.get());
    // Row y moves from y·4w to y·(4w + 1): never below where it was, so going
    // from the last row to the first, and along each row from its end, every
    // pixel is read before anything is written over it.
    for (std::size_t y = h; y-- > 0;) unpremultipliedRow(data + y * stride, w, data + y * rowBytes);
    return pngOfRows(data, w, h);
}

std::string ImageWorkspace::pngOfRows(const unsigned char* rows, std::size_t w, std::size_t h) {
    auto& b = *buffers_;
    const std::size_t rowsSize = (1 + 4 * w) * h;
    if (b.compressor == nullptr) b.compressor = libdeflate_alloc_compressor(kCompressionLevel);
    if (b.compressor == nullptr) return {};
    // The whole file is assembled in a buffer kept uninitialised (only the
    // compressed bytes, a few percent of the bound, are ever touched), then
    // copied out at its final size.
    const std::size_t bound = libdeflate_zlib_compress_bound(b.compressor, rowsSize);
    const std::size_t capacity = 8 + (8 + 13 + 4) + (8 + bound + 4) + (8 + 4);
    if (b.outSize < capacity) {
        b.out.reset(new unsigned char[capacity]);
        b.outSize = capacity;
    }
    unsigned char* bytes = b.out.get();
    std::size_t at = 0;
    const auto put = [&](const void* source, std::size_t n) {
        std::memcpy(bytes + at, source, n);
        at += n;
    };
    const auto put32 = [&](std::uint32_t v) {
        const unsigned char be[4] = {static_cast<unsigned char>(v >> 24), static_cast<unsigned char>(v >> 16),
                                     static_cast<unsigned char>(v >> 8), static_cast<unsigned char>(v)};
        put(be, 4);
    };
    // A chunk is length, type, data and the CRC of type and data; `fill`
    // writes the data at `at` and returns its length.
    const auto chunk = [&](const char* type, auto fill) {
        const std::size_t lengthAt = at;
        at += 4;
        put(type, 4);
        const std::size_t length = fill();
        const std::size_t dataEnd = at;
        at = lengthAt;
        put32(static_cast<std::uint32_t>(length));
        at = dataEnd;
        put32(libdeflate_crc32(0, bytes + lengthAt + 4, length + 4));
    };
    put("\x89PNG\r\n\x1a\n", 8);
    chunk("IHDR", [&] {
        put32(static_cast<std::uint32_t>(w));
        put32(static_cast<std::uint32_t>(h));
        const unsigned char rest[5] = {8, 6, 0, 0, 0};  // 8 bits, RGBA, deflate, adaptive filters, no interlace
        put(rest, 5);
        return std::size_t{13};
    });
    bool compressed = true;
    chunk("IDAT", [&] {
        const std::size_t n = libdeflate_zlib_compress(b.compressor, rows, rowsSize, bytes + at, bound);
        compressed = n > 0;
        at += n;
        return n;
    });
    chunk("IEND", [] { return std::size_t{0}; });
    if (!compressed) return {};
    return std::string(reinterpret_cast<const char*>(bytes), at);
}

SurfacePtr prefaultedImage(int width, int height) {
    const int stride = cairo_format_stride_for_width(CAIRO_FORMAT_ARGB32, width);
    auto* mapping = new Mapping(imageBytes(width, height, stride));
    SurfacePtr surface = mapping->bytes() ? surfaceOn(mapping->bytes(), width, height, stride) : nullptr;
    static const cairo_user_data_key_t key{};
    if (!surface || cairo_surface_set_user_data(surface.get(), &key, mapping, releaseMapping) != CAIRO_STATUS_SUCCESS) {
        // No mapping, or the surface cannot own it: an ordinary surface.
        surface.reset();
        delete mapping;
        return SurfacePtr(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    }
    return surface;
}

std::string encodePNG(cairo_surface_t* image) { return ImageWorkspace().encodePNG(image); }

}  // namespace mw::render
