#include "render/cairo/engine.hpp"

#include <pango/pangofc-fontmap.h>

#include "render/cairo/font_config.hpp"

namespace mw::render {

FcConfig* widgetFontConfig() {
    static FcConfig* const config = loadWidgetFontConfig();  // kept for the life of the process
    return config;
}

const cairo_font_options_t* textFontOptions() {
    static const cairo_font_options_t* const options = [] {
        cairo_font_options_t* o = cairo_font_options_create();
        cairo_font_options_set_hint_style(o, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(o, CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_antialias(o, CAIRO_ANTIALIAS_GRAY);
        return o;
    }();
    return options;
}

void TextEngine::configure(PangoContext* context) {
    pango_cairo_context_set_font_options(context, textFontOptions());
    pango_cairo_context_set_resolution(context, 72.0);
    pango_context_set_round_glyph_positions(context, FALSE);
}

PangoContext* TextEngine::newContext() {
    std::call_once(fontMapMade_, [this] {
        FcConfig* config = widgetFontConfig();
        fontMap_ = pango_cairo_font_map_new();
        pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap_), 72.0);
        if (PANGO_IS_FC_FONT_MAP(fontMap_)) pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(fontMap_), config);
    });
    PangoContext* context = pango_font_map_create_context(fontMap_);
    configure(context);
    return context;
}

TextEngine& textEngine() {
    // The font map is never released: Pango keeps its own process-wide state anyway.
    static TextEngine engine;
    return engine;
}

}  // namespace mw::render
