// The drawing program does not link Pango: most drawings set every text as
// a glyph line (render/cairo/glyph_line.hpp) and never call it, and loading
// Pango with the dozen libraries only it needs (GObject, GIO, FriBidi,
// libthai and theirs) costs a few milliseconds before main. These are the
// Pango and GObject functions the drawing code calls; the first call to any
// of them opens Pango. A Pango function the code starts to call is missing
// here until it is added (the link fails, naming it).

#include <dlfcn.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <cstdio>
#include <cstdlib>

namespace {

void* pangoFunction(const char* name) {
    static void* const pango = [] {
        void* library = ::dlopen("libpangocairo-1.0.so.0", RTLD_NOW | RTLD_GLOBAL);
        if (library == nullptr) {
            std::fprintf(stderr, "meterwick-widgets: cannot load Pango: %s\n", ::dlerror());
            std::abort();
        }
        return library;
    }();
    void* function = ::dlsym(pango, name);
    if (function == nullptr) {
        std::fprintf(stderr, "meterwick-widgets: Pango has no %s\n", name);
        std::abort();
    }
    return function;
}

}  // namespace

// Each function looks its Pango original up once, on its first call.
#define MW_PANGO(ret, name, params, args)                                                   \
    extern "C" ret(name) params {                                                          \
        static const auto original = reinterpret_cast<ret(*) params>(pangoFunction(#name)); \
        return original args;                                                              \
    }

MW_PANGO(gpointer, g_object_ref, (gpointer object), (object))
MW_PANGO(void, g_object_unref, (gpointer object), (object))
MW_PANGO(GTypeInstance*, g_type_check_instance_cast, (GTypeInstance * instance, GType type), (instance, type))
MW_PANGO(gboolean, g_type_check_instance_is_a, (GTypeInstance * instance, GType type), (instance, type))

MW_PANGO(PangoFontMap*, pango_cairo_font_map_new, (void), ())
MW_PANGO(GType, pango_cairo_font_map_get_type, (void), ())
MW_PANGO(void, pango_cairo_font_map_set_resolution, (PangoCairoFontMap * map, double dpi), (map, dpi))
MW_PANGO(GType, pango_fc_font_map_get_type, (void), ())
MW_PANGO(void, pango_fc_font_map_set_config, (PangoFcFontMap * map, FcConfig* config), (map, config))
MW_PANGO(PangoContext*, pango_font_map_create_context, (PangoFontMap * map), (map))
MW_PANGO(void, pango_cairo_context_set_font_options, (PangoContext * context, const cairo_font_options_t* options),
         (context, options))
MW_PANGO(void, pango_cairo_context_set_resolution, (PangoContext * context, double dpi), (context, dpi))
MW_PANGO(void, pango_context_set_round_glyph_positions, (PangoContext * context, gboolean round), (context, round))

MW_PANGO(PangoFontDescription*, pango_font_description_new, (void), ())
MW_PANGO(void, pango_font_description_free, (PangoFontDescription * desc), (desc))
MW_PANGO(void, pango_font_description_set_family, (PangoFontDescription * desc, const char* family), (desc, family))
MW_PANGO(void, pango_font_description_set_weight, (PangoFontDescription * desc, PangoWeight weight), (desc, weight))
MW_PANGO(void, pango_font_description_set_absolute_size, (PangoFontDescription * desc, double size), (desc, size))

MW_PANGO(PangoAttrList*, pango_attr_list_new, (void), ())
MW_PANGO(void, pango_attr_list_unref, (PangoAttrList * list), (list))
MW_PANGO(void, pango_attr_list_insert, (PangoAttrList * list, PangoAttribute* attr), (list, attr))
MW_PANGO(PangoAttribute*, pango_attr_font_desc_new, (const PangoFontDescription* desc), (desc))
MW_PANGO(PangoAttribute*, pango_attr_font_features_new, (const char* features), (features))
MW_PANGO(PangoAttribute*, pango_attr_insert_hyphens_new, (gboolean insert), (insert))
MW_PANGO(PangoAttribute*, pango_attr_letter_spacing_new, (int spacing), (spacing))

MW_PANGO(GType, pango_layout_get_type, (void), ())
MW_PANGO(PangoLayout*, pango_layout_new, (PangoContext * context), (context))
MW_PANGO(void, pango_layout_set_text, (PangoLayout * layout, const char* text, int length), (layout, text, length))
MW_PANGO(void, pango_layout_set_attributes, (PangoLayout * layout, PangoAttrList* attrs), (layout, attrs))
MW_PANGO(void, pango_layout_set_font_description, (PangoLayout * layout, const PangoFontDescription* desc),
         (layout, desc))
MW_PANGO(void, pango_layout_set_width, (PangoLayout * layout, int width), (layout, width))
MW_PANGO(void, pango_layout_set_height, (PangoLayout * layout, int height), (layout, height))
MW_PANGO(void, pango_layout_set_wrap, (PangoLayout * layout, PangoWrapMode wrap), (layout, wrap))
MW_PANGO(void, pango_layout_set_ellipsize, (PangoLayout * layout, PangoEllipsizeMode mode), (layout, mode))
MW_PANGO(void, pango_layout_set_alignment, (PangoLayout * layout, PangoAlignment alignment), (layout, alignment))
MW_PANGO(void, pango_layout_get_extents, (PangoLayout * layout, PangoRectangle* ink, PangoRectangle* logical),
         (layout, ink, logical))
MW_PANGO(int, pango_layout_get_line_count, (PangoLayout * layout), (layout))
MW_PANGO(void, pango_cairo_show_layout, (cairo_t * cr, PangoLayout* layout), (cr, layout))
MW_PANGO(void, pango_cairo_layout_path, (cairo_t * cr, PangoLayout* layout), (cr, layout))
