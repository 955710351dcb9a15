// meterwick-widgets-draw: the commands that draw, started by the
// meterwick-widgets launcher with its own arguments (see app/launch.hpp).

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "app/cli.hpp"
#include "render/cairo/text.hpp"

namespace {

// A drawing process is short, and page faults are its dearest single cost
// after loading its libraries: each is a trap into the kernel, several
// microseconds on a virtual machine, and a render first touches a few
// megabytes of heap one page at a time (fontconfig's patterns, Pango's
// layouts, Cairo's surfaces, the PNG compressor's tables). So large blocks
// come from the heap instead of fresh mappings of their own, the font thread
// shares it instead of starting an arena of its own (oneHeap, before any
// thread starts), and the heap grows once by what a large widget needs,
// filled by the kernel in one call (populateHeap). On kernels without
// MADV_POPULATE_WRITE (before 5.14) the pages fault in as before.
void oneHeap() {
#ifndef __SANITIZE_ADDRESS__
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    mallopt(M_TRIM_THRESHOLD, 128 << 20);
    mallopt(M_ARENA_MAX, 1);
#endif
}

void populateHeap() {
#ifndef __SANITIZE_ADDRESS__
    constexpr std::size_t kHeap = 4 << 20;
    void* block = std::malloc(kHeap);
    if (block == nullptr) return;
    const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const auto begin = (reinterpret_cast<std::uintptr_t>(block) + page - 1) & ~(page - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(block) + kHeap) & ~(page - 1);
    (void)::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_POPULATE_WRITE);
    std::free(block);
#endif
}

}  // namespace

int main(int argc, char** argv) {
    oneHeap();
    // Every command here sets text. Fontconfig takes a few milliseconds to
    // read its configuration: that happens on a second core while the
    // command fills its heap and reads its arguments, the payload and the
    // timeline. The texts set are kept for the drawing that follows (a
    // gallery's images hold a few hundred texts between them).
    std::thread fonts([] {
        mw::render::keepMeasuredLayouts(512);
        mw::render::prepareFonts();
    });
    populateHeap();
    const int status = mw::cli::runCommandLine(argc, argv, {mw::cli::registerRenderCommands});
    fonts.join();
    // Everything this command writes is written and closed by now. Tearing
    // down the kept layouts, Pango's fonts and the caches would only hand
    // memory back to a process about to end, so the program leaves without
    // it; under AddressSanitizer it takes the long way, for the leak check.
#ifndef __SANITIZE_ADDRESS__
    std::fflush(nullptr);
    std::_Exit(status);
#endif
    return status;
}
