#pragma once
// Image surfaces to paint into and their PNG encoding (libdeflate), for one
// image at a time or for many in a row with the working memory kept between
// them.

#include <cairo.h>

#include <cstddef>
#include <memory>
#include <string>

namespace mw::render {

struct SurfaceDeleter {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};
using SurfacePtr = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;

// A transparent ARGB32 image of WIDTH × HEIGHT pixels, its memory touched
// in advance so that painting takes no page faults.
SurfacePtr prefaultedImage(int width, int height);

// PNG bytes of an ARGB32 image surface; empty for any other surface.
std::string encodePNG(cairo_surface_t* image);

// What drawing many images in a row keeps from one to the next: the pixels
// (cleared, not mapped afresh), the rows handed to deflate and the
// compressors. Each image must be released before the next is asked for. One
// per thread; it holds a few megabytes, so long-lived processes keep none.
// A large image is converted and compressed in two halves at once, the
// second on a thread of its own while the call lasts.
class ImageWorkspace {
public:
    ImageWorkspace();
    ~ImageWorkspace();
    ImageWorkspace(const ImageWorkspace&) = delete;
    ImageWorkspace& operator=(const ImageWorkspace&) = delete;

    // A transparent ARGB32 image in this workspace's memory.
    SurfacePtr image(int width, int height);
    // The same bytes as encodePNG (on two cores).
    std::string encodePNG(cairo_surface_t* image);
    // The same again, taking the image: one of this workspace's own becomes
    // the rows handed to deflate where it lies, which spares touching a
    // second buffer the size of the image.
    std::string encodePNG(SurfacePtr image);

private:
    struct Buffers;
    std::unique_ptr<Buffers> buffers_;
};

}  // namespace mw::render
