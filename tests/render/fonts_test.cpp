// The widgets' fontconfig set-up keeps the system's fallback: any script
// the system can show in some installed face, the widgets' text shows too.

#include <fontconfig/fontconfig.h>

#include <gtest/gtest.h>

#include "render/cairo/engine.hpp"

namespace mw::render {
namespace {

// Whether some face under the system's full configuration covers every
// character of TEXT (UTF-8).
bool systemCovers(FcConfig* system, const char* text) {
    FcCharSet* wanted = FcCharSetCreate();
    for (const auto* p = reinterpret_cast<const FcChar8*>(text); *p != 0;) {
        FcChar32 c = 0;
        const int n = FcUtf8ToUcs4(p, &c, 8);
        if (n <= 0) break;
        FcCharSetAddChar(wanted, c);
        p += n;
    }
    FcPattern* pattern = FcPatternCreate();
    FcObjectSet* objects = FcObjectSetBuild(FC_CHARSET, nullptr);
    FcFontSet* fonts = FcFontList(system, pattern, objects);
    bool covered = false;
    for (int i = 0; fonts && i < fonts->nfont && !covered; ++i) {
        FcCharSet* has = nullptr;
        if (FcPatternGetCharSet(fonts->fonts[i], FC_CHARSET, 0, &has) == FcResultMatch)
            covered = FcCharSetIsSubset(wanted, has);
    }
    if (fonts) FcFontSetDestroy(fonts);
    FcObjectSetDestroy(objects);
    FcPatternDestroy(pattern);
    FcCharSetDestroy(wanted);
    return covered;
}

int unknownGlyphs(const char* text) {
    PangoContext* context = textEngine().newContext();
    PangoLayout* layout = pango_layout_new(context);
    PangoFontDescription* font = pango_font_description_from_string("Inter 13px");
    pango_layout_set_font_description(layout, font);
    pango_layout_set_text(layout, text, -1);
    const int unknown = pango_layout_get_unknown_glyphs_count(layout);
    pango_font_description_free(font);
    g_object_unref(layout);
    g_object_unref(context);
    return unknown;
}

TEST(Fonts, ScriptsInterLacksFallBackAsOnTheSystem) {
    FcConfig* system = FcInitLoadConfigAndFonts();
    ASSERT_NE(system, nullptr);
    int checked = 0;
    for (const char* text : {"Usage 42%", "العربية", "日本語のテキスト", "한국어", "Ελληνικά Кириллица", "\u2713\u2192\u2605",
                             "\U0001F600\U0001F525"}) {
        if (!systemCovers(system, text)) continue;  // nothing installed shows it, with or without us
        ++checked;
        EXPECT_EQ(unknownGlyphs(text), 0) << text;
    }
    EXPECT_GE(checked, 2);  // Latin at least, and Inter's fallback for something
    FcConfigDestroy(system);
}

}  // namespace
}  // namespace mw::render
