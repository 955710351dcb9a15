// The smallest program that sets one line of text the way the widgets do:
// fontconfig set up as the drawing code sets it up, a Cairo font map at
// 72 dpi, a context, one layout measured. Its wall time and peak memory are
// the floor under every `meterwick-widgets render`.

#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include "render/cairo/font_config.hpp"

int main() {
    FcConfig* config = mw::render::loadWidgetFontConfig();
    PangoFontMap* fontMap = pango_cairo_font_map_new();
    if (PANGO_IS_FC_FONT_MAP(fontMap)) pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(fontMap), config);
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap), 72.0);
    PangoContext* context = pango_font_map_create_context(fontMap);

    PangoLayout* layout = pango_layout_new(context);
    PangoFontDescription* font = pango_font_description_from_string("Inter Semi-Bold 12px");
    pango_layout_set_font_description(layout, font);
    pango_layout_set_text(layout, "Usage 42% \u00B7 resets in 2h 5m", -1);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);

    pango_font_description_free(font);
    g_object_unref(layout);
    g_object_unref(context);
    g_object_unref(fontMap);
    return width > 0 && height > 0 ? 0 : 1;
}
