#include "render/cairo/png.hpp"

#include <libdeflate.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <thread>
#include <utility>

#include "render/cairo/deflate_join.hpp"

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

// An image's pixels, SOURCE rows STRIDE bytes apart, and where their PNG
// rows go. ROWS may be SOURCE itself (see encodePNG(SurfacePtr)).
struct RowsJob {
    const unsigned char* source;
    std::size_t stride;
    unsigned char* rows;
    std::size_t width;

    std::size_t rowBytes() const { return 1 + 4 * width; }
    // Rows [FIRST, END), from the last to the first; row FIRST's pixels are
    // read from FIRSTSOURCE.
    void convert(std::size_t first, std::size_t end, const unsigned char* firstSource) const {
        for (std::size_t y = end; y-- > first;)
            unpremultipliedRow(y == first ? firstSource : source + y * stride, width, rows + y * rowBytes());
    }
};

// Images whose PNG rows come to at least this many bytes are converted and
// compressed in two halves at once, one on a second thread. Encoding alone,
// halves pay from about half a megabyte (a 1560 × 764 image: 5.9 ms in one
// piece, 3.3 in halves). A whole drawing process gains less, since the other
// core has to wake and fetch its half from the first core's cache: at scale 2
// the extra-large widgets (4.8 MB of rows) gain about a millisecond, the large
// ones (2.2 MB) break even and the medium ones (1 MB) lose half a
// millisecond, so they stay in one piece.
constexpr std::size_t kTwoHalvesBytes = std::size_t{3} << 19;

// A PNG file's bytes before IDAT's data (signature, IHDR, IDAT's length and
// type) and after it (IDAT's CRC, IEND).
constexpr std::size_t kIdatDataAt = 8 + (8 + 13 + 4) + 8;
constexpr std::size_t kAfterIdat = 4 + (8 + 4);

void store32(unsigned char* at, std::uint32_t v) {
    at[0] = static_cast<unsigned char>(v >> 24);
    at[1] = static_cast<unsigned char>(v >> 16);
    at[2] = static_cast<unsigned char>(v >> 8);
    at[3] = static_cast<unsigned char>(v);
}

// The PNG file of a WIDTH × HEIGHT RGBA image around the IDATLENGTH bytes
// of IDAT data already at kIdatDataAt in BYTES.
std::string pngFile(unsigned char* bytes, std::size_t width, std::size_t height, std::size_t idatLength) {
    std::memcpy(bytes, "\x89PNG\r\n\x1a\n", 8);
    std::size_t at = 8;
    // A chunk is length, type, data and the CRC of type and data.
    const auto chunk = [&](const char* type, std::size_t length) {
        store32(bytes + at, static_cast<std::uint32_t>(length));
        std::memcpy(bytes + at + 4, type, 4);
        store32(bytes + at + 8 + length, libdeflate_crc32(0, bytes + at + 4, length + 4));
        at += 8 + length + 4;
    };
    store32(bytes + at + 8, static_cast<std::uint32_t>(width));
    store32(bytes + at + 12, static_cast<std::uint32_t>(height));
    const unsigned char rest[5] = {8, 6, 0, 0, 0};  // 8 bits, RGBA, deflate, adaptive filters, no interlace
    std::memcpy(bytes + at + 16, rest, 5);
    chunk("IHDR", 13);
    chunk("IDAT", idatLength);
    chunk("IEND", 0);
    return std::string(reinterpret_cast<const char*>(bytes), at);
}

}  // namespace

struct ImageWorkspace::Buffers {
    Mapping pixels;
    bool pixelsClear = true;  // fresh pages come zeroed
    Mapping rows;
    std::unique_ptr<unsigned char[]> out;
    std::size_t outSize = 0;
    std::unique_ptr<unsigned char[]> aside;  // one row's pixels, for two halves in place
    std::size_t asideSize = 0;
    libdeflate_compressor* compressor = nullptr;
    libdeflate_compressor* secondCompressor = nullptr;  // the second half's, on its own thread

    ~Buffers() {
        if (compressor != nullptr) libdeflate_free_compressor(compressor);
        if (secondCompressor != nullptr) libdeflate_free_compressor(secondCompressor);
    }

    // The PNG of the image JOB converts, of HEIGHT rows; empty when memory
    // or the compressor fails.
    std::string encode(const RowsJob& job, std::size_t height) {
        const std::size_t size = job.rowBytes() * height;
        if (compressor == nullptr) compressor = libdeflate_alloc_compressor(kCompressionLevel);
        if (compressor == nullptr) return {};
        bool converted = false;
        std::size_t idat = size >= kTwoHalvesBytes ? deflateInTwo(job, height, converted) : 0;
        if (idat == 0) {
            if (!converted) job.convert(0, height, job.source);
            const std::size_t bound = libdeflate_zlib_compress_bound(compressor, size);
            unsigned char* bytes = output(bound);
            if (bytes == nullptr) return {};
            idat = libdeflate_zlib_compress(compressor, job.rows, size, bytes + kIdatDataAt, bound);
            if (idat == 0) return {};
        }
        return pngFile(out.get(), job.width, height, idat);
    }

private:
    // Room for a PNG file with up to IDAT bytes of IDAT data. The buffer is
    // left uninitialised: only the compressed bytes, a few percent of the
    // bound, are ever touched; the file is copied out at its final size.
    unsigned char* output(std::size_t idat) {
        const std::size_t capacity = kIdatDataAt + idat + kAfterIdat;
        if (outSize < capacity) {
            out.reset(new (std::nothrow) unsigned char[capacity]);
            outSize = out ? capacity : 0;
        }
        return out.get();
    }

    // Converts and deflates rows [0, k) on this thread while a second thread
    // does rows [k, HEIGHT), then joins the two raw DEFLATE streams into one
    // zlib stream at kIdatDataAt: its length, or 0 when the image is to be
    // done in one piece instead. CONVERTED tells whether every row has been
    // converted all the same (then only the compression is left to redo).
    std::size_t deflateInTwo(const RowsJob& job, std::size_t height, bool& converted) {
        const std::size_t k = height / 2, w = job.width, rowBytes = job.rowBytes();
        const bool inPlace = job.rows == job.source;
        // In place, the first half's rows end k bytes past where its pixels
        // did, over the start of row k's pixels: the second thread reads
        // those last, so it takes them from a copy made before either starts.
        // Were k more than a row's pixel bytes, the first half would reach
        // rows after k, which nothing copies.
        if (inPlace && (k > 4 * w || job.stride != 4 * w)) return 0;
        if (secondCompressor == nullptr) secondCompressor = libdeflate_alloc_compressor(kCompressionLevel);
        if (secondCompressor == nullptr) return 0;
        const std::size_t firstSize = k * rowBytes, secondSize = (height - k) * rowBytes;
        const std::size_t firstBound = libdeflate_deflate_compress_bound(compressor, firstSize);
        const std::size_t secondBound = libdeflate_deflate_compress_bound(secondCompressor, secondSize);
        // The zlib header, the first stream and what joins it to the second,
        // the second (written further on, then moved down), the Adler-32.
        unsigned char* bytes = output(2 + firstBound + kDeflateContinueBytes + secondBound + 4);
        if (bytes == nullptr) return 0;
        const unsigned char* rowK = job.source + k * job.stride;
        if (inPlace) {
            if (asideSize < 4 * w) {
                aside.reset(new (std::nothrow) unsigned char[4 * w]);
                asideSize = aside ? 4 * w : 0;
            }
            if (!aside) return 0;
            std::memcpy(aside.get(), rowK, 4 * w);
            rowK = aside.get();
        }
        unsigned char* const zlib = bytes + kIdatDataAt;
        unsigned char* const first = zlib + 2;
        unsigned char* const second = first + firstBound + kDeflateContinueBytes;
        const unsigned char* const secondRows = job.rows + firstSize;
        std::size_t secondLength = 0;
        std::uint32_t secondAdler = 0;
        std::thread helper;
        try {
            helper = std::thread([&, rowK] {
                job.convert(k, height, rowK);
                secondLength =
                    libdeflate_deflate_compress(secondCompressor, secondRows, secondSize, second, secondBound);
                secondAdler = libdeflate_adler32(1, secondRows, secondSize);
            });
        } catch (const std::exception&) {
            return 0;  // nothing converted yet
        }
        job.convert(0, k, job.source);
        const std::size_t firstLength = libdeflate_deflate_compress(compressor, job.rows, firstSize, first, firstBound);
        const std::uint32_t firstAdler = libdeflate_adler32(1, job.rows, firstSize);
        const auto final = firstLength > 0 ? finalDeflateBlock(first, firstLength) : std::nullopt;
        helper.join();
        converted = true;
        if (!final || secondLength == 0) return 0;

        zlib[0] = 0x78;  // deflate, 32 KB window
        zlib[1] = 0x01;  // fastest level; the header's check bits
        const std::size_t secondAt = continueDeflateStream(first, *final);
        std::memmove(first + secondAt, second, secondLength);
        store32(first + secondAt + secondLength, adler32Combine(firstAdler, secondAdler, secondSize));
        return 2 + secondAt + secondLength + 4;
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
    if (b.rows.bytes() == nullptr) return {};
    return b.encode({data, stride, b.rows.bytes(), w}, h);
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
    return b.encode({data, stride, data, w}, h);
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

std::string encodePNG(cairo_surface_t* image) {
    return ImageWorkspace().encodePNG(image);
}

}  // namespace mw::render
