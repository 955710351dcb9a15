#include "render/cairo/png.hpp"

#include <libdeflate.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace mw::render {

namespace {

// libdeflate's level 4. On the Sub-filtered widget images it is twice as fast
// as level 1 (whose fastest match finder does badly on the long runs of zeros
// flat artwork filters to) and its files are a little smaller; levels 2 to 4
// take the same time, 5 and 6 save another 3 % for 10 % more time.
constexpr int kCompressionLevel = 4;

// Anonymous memory, all of its pages mapped up front: a fresh 2 MB image
// would otherwise take a page fault per 4 KB while it is painted. The pages
// come zeroed.
struct Mapping {
    void* pixels = MAP_FAILED;
    std::size_t size = 0;

    Mapping() = default;
    explicit Mapping(std::size_t bytes)
        : pixels(bytes > 0 ? ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0)
                           : MAP_FAILED),
          size(pixels == MAP_FAILED ? 0 : bytes) {}
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

// Each byte of X minus the same byte of Y, modulo 256, with no borrow
// between bytes.
std::uint32_t bytewiseDifference(std::uint32_t x, std::uint32_t y) {
    return ((x | 0x80808080u) - (y & 0x7F7F7F7Fu)) ^ ((x ^ ~y) & 0x80808080u);
}

// One row through PNG's Sub filter (each byte minus the one a pixel to its
// left), filter byte first. Runs of one colour, most of a widget, become
// zeros without any arithmetic.
void unpremultiplySubFiltered(const std::uint32_t* source, std::size_t width, unsigned char* row) {
    *row++ = 1;  // Sub
    std::uint32_t previousSource = 0;
    std::uint32_t previous = 0;
    for (std::size_t x = 0; x < width; ++x, row += 4) {
        const std::uint32_t p = source[x];
        std::uint32_t d = 0;
        if (p != previousSource) {
            const std::uint32_t straight = straightRGBA(p);
            d = bytewiseDifference(straight, previous);
            previous = straight;
            previousSource = p;
        }
        row[0] = static_cast<unsigned char>(d);
        row[1] = static_cast<unsigned char>(d >> 8);
        row[2] = static_cast<unsigned char>(d >> 16);
        row[3] = static_cast<unsigned char>(d >> 24);
    }
}

}  // namespace

struct ImageWorkspace::Buffers {
    Mapping pixels;
    bool pixelsClear = true;  // fresh pages come zeroed
    Mapping filtered;
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
    if (b.pixels.size < size) {
        b.pixels = Mapping();  // the old pages go before the new ones are mapped
        b.pixels = Mapping(size);
        b.pixelsClear = true;
    }
    if (b.pixels.bytes() == nullptr) return SurfacePtr(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    // Clearing the part used is cheaper than mapping and faulting it afresh.
    if (!b.pixelsClear) std::memset(b.pixels.bytes(), 0, size);
    b.pixelsClear = false;
    if (auto surface = surfaceOn(b.pixels.bytes(), width, height, stride)) return surface;
    return SurfacePtr(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
}

std::string ImageWorkspace::encodePNG(cairo_surface_t* image) {
    if (!image || cairo_surface_get_type(image) != CAIRO_SURFACE_TYPE_IMAGE ||
        cairo_image_surface_get_format(image) != CAIRO_FORMAT_ARGB32) {
        return {};
    }
    cairo_surface_flush(image);
    const auto w = static_cast<std::size_t>(cairo_image_surface_get_width(image));
    const auto h = static_cast<std::size_t>(cairo_image_surface_get_height(image));
    const int stride = cairo_image_surface_get_stride(image);
    const unsigned char* data = cairo_image_surface_get_data(image);
    if (w == 0 || h == 0 || data == nullptr) return {};
    auto& b = *buffers_;

    // The image data as PNG wants it before deflate: each row a filter byte
    // then straight RGBA. Every byte is written, so the buffer is not cleared.
    const std::size_t rowBytes = 1 + 4 * w;
    const std::size_t filteredSize = rowBytes * h;
    if (b.filtered.size < filteredSize) {
        b.filtered = Mapping();
        b.filtered = Mapping(filteredSize);
    }
    unsigned char* filtered = b.filtered.bytes();
    if (filtered == nullptr) return {};
    for (std::size_t y = 0; y < h; ++y)
        unpremultiplySubFiltered(reinterpret_cast<const std::uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride),
                                 w, filtered + y * rowBytes);

    if (b.compressor == nullptr) b.compressor = libdeflate_alloc_compressor(kCompressionLevel);
    if (b.compressor == nullptr) return {};
    // The whole file is assembled in a buffer kept uninitialised (only the
    // compressed bytes, a few percent of the bound, are ever touched), then
    // copied out at its final size.
    const std::size_t bound = libdeflate_zlib_compress_bound(b.compressor, filteredSize);
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
        const std::size_t n = libdeflate_zlib_compress(b.compressor, filtered, filteredSize, bytes + at, bound);
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
