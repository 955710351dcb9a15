#include "render/cairo/engine.hpp"

#include <pango/pangofc-fontmap.h>

namespace mw::render {
namespace {

// The system's font directories and caches, its user configuration, and of
// the shared rules only those that pick fallback faces for scripts and
// symbols Inter lacks (CJK, Arabic, emoji) and the rendering defaults. The
// dozens of alias and per-family rules in conf.d are for other programs'
// font names; reading them cost most of fontconfig's start-up.
constexpr const char* kFontConfig = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts</dir>
  <dir>/usr/local/share/fonts</dir>
  <dir prefix="xdg">fonts</dir>
  <dir>~/.fonts</dir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <cachedir>~/.fontconfig</cachedir>
  <include ignore_missing="yes">/etc/fonts/conf.d/10-hinting-slight.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/10-yes-antialias.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/11-lcdfilter-default.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/40-nonlatin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/45-generic.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/45-latin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/49-sansserif.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/50-user.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/51-local.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/60-generic.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/60-latin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/65-nonlatin.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/69-unifont.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/70-no-bitmaps.conf</include>
  <include ignore_missing="yes">/etc/fonts/conf.d/90-synthetic.conf</include>
</fontconfig>
)";

// Set up once per process and made the current configuration, so that
// Pango's own start-up (which initialises fontconfig on a thread of its
// own) finds it instead of reading the system's in full; the system's full
// configuration when this one cannot be built.
FcConfig* loadFontConfig() {
    if (FcConfig* config = FcConfigCreate()) {
        if (FcConfigParseAndLoadFromMemory(config, reinterpret_cast<const FcChar8*>(kFontConfig), FcFalse) &&
            FcConfigBuildFonts(config) && FcConfigSetCurrent(config))
            return config;
        FcConfigDestroy(config);
    }
    return FcConfigReference(nullptr);
}

}  // namespace

FcConfig* widgetFontConfig() {
    static FcConfig* const config = loadFontConfig();  // kept for the life of the process
    return config;
}

TextEngine::TextEngine() : fontMap_((widgetFontConfig(), pango_cairo_font_map_new())) {
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap_), 72.0);
    if (PANGO_IS_FC_FONT_MAP(fontMap_)) pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(fontMap_), widgetFontConfig());
}

void TextEngine::configure(PangoContext* context) {
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context, options);
    cairo_font_options_destroy(options);
    pango_cairo_context_set_resolution(context, 72.0);
    pango_context_set_round_glyph_positions(context, FALSE);
}

PangoContext* TextEngine::newContext() const {
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
