#pragma once
// The process-wide Pango font map and the settings every text uses
// (internal to the Cairo backend).

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <mutex>

namespace mw::render {

class TextEngine {
public:
    TextEngine() = default;
    TextEngine(const TextEngine&) = delete;
    TextEngine& operator=(const TextEngine&) = delete;

    // A new context on the shared font map: no hinting, unrounded metrics and
    // glyph positions, 72 dpi so that sizes are in points. The font map (and
    // with it Pango) is set up by the first call: most drawings set every
    // text as glyph lines and never need it. Caller unrefs.
    PangoContext* newContext();
    // Applies the same settings to a context made for a cairo_t.
    static void configure(PangoContext* context);

    // Held while a text is set, measured or drawn: the font map and the
    // glyph lines' faces are not thread-safe.
    std::recursive_mutex& mutex() { return mutex_; }

private:
    std::once_flag fontMapMade_;
    PangoFontMap* fontMap_ = nullptr;  // kept for the life of the process
    std::recursive_mutex mutex_;
};

TextEngine& textEngine();

// The fontconfig configuration the widgets' text uses: the system's fonts
// and fallback rules, read once per process.
FcConfig* widgetFontConfig();

// Cairo's font options for every text: no hinting, unhinted metrics, grey
// antialiasing.
const cairo_font_options_t* textFontOptions();

}  // namespace mw::render
