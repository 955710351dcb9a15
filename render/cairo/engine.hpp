#pragma once
// The process-wide Pango font map and the settings every text layout uses
// (internal to the Cairo backend).

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <mutex>

namespace mw::render {

class TextEngine {
public:
    TextEngine();
    TextEngine(const TextEngine&) = delete;
    TextEngine& operator=(const TextEngine&) = delete;

    // A new context on the shared font map: no hinting, unrounded metrics and
    // glyph positions, 72 dpi so that sizes are in points. Caller unrefs.
    PangoContext* newContext() const;
    // Applies the same settings to a context made for a cairo_t.
    static void configure(PangoContext* context);

    // Held while a layout is made or measured: the font map is not thread-safe.
    std::recursive_mutex& mutex() { return mutex_; }

private:
    PangoFontMap* fontMap_;  // kept for the life of the process
    std::recursive_mutex mutex_;
};

TextEngine& textEngine();

// The fontconfig configuration the widgets' text uses: the system's fonts
// and fallback rules, read once per process.
FcConfig* widgetFontConfig();

}  // namespace mw::render
