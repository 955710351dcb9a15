#include "render/cairo/glyph_line.hpp"

#include <cairo-ft.h>
#include <hb.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>

#include "render/cairo/engine.hpp"
#include "render/cairo/text.hpp"

namespace mw::render {

namespace {

// Characters whose shaping Pango leaves to HarfBuzz alone: printable Basic
// Latin, Latin-1 and Latin Extended-A and -B (the soft hyphen aside, an
// invisible break opportunity), punctuation, currency signs, letterlike
// symbols, arrows and mathematical operators. No controls, tabs, line or
// paragraph separators, format characters, combining marks or
// right-to-left letters, each of which Pango treats on its own.
bool plainCharacter(gunichar c) {
    return (c >= 0x20 && c <= 0x7E) || (c >= 0xA0 && c <= 0x24F && c != 0xAD) || (c >= 0x2010 && c <= 0x2027) ||
           (c >= 0x2030 && c <= 0x205E) || (c >= 0x20A0 && c <= 0x20C0) || (c >= 0x2100 && c <= 0x214F) ||
           (c >= 0x2190 && c <= 0x22FF);
}

// A face as Pango would pick it for a family and weight: fontconfig's match
// for the pattern Pango makes, its HarfBuzz face (from the file, as Pango
// makes it) and the Cairo face Pango would draw it with. Kept for the life
// of the process.
struct Face {
    FcPattern* match = nullptr;
    FcCharSet* charset = nullptr;  // the characters Pango takes from this face
    hb_face_t* hbFace = nullptr;
    cairo_font_face_t* cairoFace = nullptr;
};

struct Faces {
    std::map<std::tuple<std::string, int>, Face> faces;
    // Per face and size (Pango units); a long-lived process that meets many
    // sizes starts again past a few hundred. Lines keep no HarfBuzz font.
    std::map<std::tuple<hb_face_t*, int>, hb_font_t*> fonts;
    std::map<std::string, hb_language_t> languages;
};

Faces& faces() {
    static Faces* const all = new Faces;  // kept for the life of the process, as Pango's fonts are
    return *all;
}

// The pattern Pango's font map asks fontconfig to match for a font of
// FAMILY, WEIGHT and SIZE (Pango units) in LANGUAGE at 72 dpi, with the same
// substitutions: the configuration's, Cairo's font options, the defaults.
FcPattern* pangoPattern(const std::string& family, Weight weight, int size, const std::string& language) {
    constexpr double kDpi = 72;
    FcPattern* pattern = FcPatternCreate();
    FcPatternAddDouble(pattern, FC_WEIGHT, FcWeightFromOpenTypeDouble(openTypeWeight(weight)));
    FcPatternAddInteger(pattern, FC_SLANT, FC_SLANT_ROMAN);
    FcPatternAddInteger(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
    FcPatternAddBool(pattern, FC_VARIABLE, FcDontCare);
    FcPatternAddDouble(pattern, FC_DPI, kDpi);
    FcPatternAddDouble(pattern, FC_SIZE, size * (72. / PANGO_SCALE / kDpi));
    FcPatternAddDouble(pattern, FC_PIXEL_SIZE, size / static_cast<double>(PANGO_SCALE));
    for (std::size_t from = 0; from <= family.size();) {
        const std::size_t comma = std::min(family.find(',', from), family.size());
        FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.substr(from, comma - from).c_str()));
        from = comma + 1;
    }
    FcPatternAddString(pattern, FC_LANG, reinterpret_cast<const FcChar8*>(language.c_str()));
    if (const char* program = g_get_prgname()) FcPatternAddString(pattern, "prgname", reinterpret_cast<const FcChar8*>(program));
    FcConfigSubstitute(widgetFontConfig(), pattern, FcMatchPattern);
    cairo_ft_font_options_substitute(textFontOptions(), pattern);
    FcDefaultSubstitute(pattern);
    return pattern;
}

const Face* faceFor(const Font& font, const std::string& language) {
    const std::string family = fontFamily(font.design);
    const auto key = std::make_tuple(family, static_cast<int>(font.weight));
    auto& known = faces().faces;
    if (const auto it = known.find(key); it != known.end()) return it->second.cairoFace ? &it->second : nullptr;
    Face face;
    FcPattern* pattern = pangoPattern(family, font.weight, fontSize(font), language);
    FcResult result = FcResultNoMatch;
    face.match = FcFontMatch(widgetFontConfig(), pattern, &result);
    FcPatternDestroy(pattern);
    FcChar8* file = nullptr;
    int index = 0;
    if (face.match && FcPatternGetString(face.match, FC_FILE, 0, &file) == FcResultMatch &&
        FcPatternGetCharSet(face.match, FC_CHARSET, 0, &face.charset) == FcResultMatch) {
        (void)FcPatternGetInteger(face.match, FC_INDEX, 0, &index);
        hb_blob_t* blob = hb_blob_create_from_file(reinterpret_cast<const char*>(file));
        face.hbFace = hb_face_create(blob, static_cast<unsigned>(index));
        hb_blob_destroy(blob);
        face.cairoFace = cairo_ft_font_face_create_for_pattern(face.match);
        if (cairo_font_face_status(face.cairoFace) != CAIRO_STATUS_SUCCESS || hb_face_get_glyph_count(face.hbFace) == 0) {
            cairo_font_face_destroy(face.cairoFace);
            face.cairoFace = nullptr;
        }
    }
    const Face& stored = known.emplace(key, face).first->second;
    return stored.cairoFace ? &stored : nullptr;
}

// Languages Pango knows to be written in Latin letters (by the language
// alone, any region): Pango sets Latin text in them in the language itself,
// as is done here. Text in any other language goes to Pango, whose table of
// languages and scripts decides what language such text is shaped in.
bool writtenInLatin(const std::string& tag) {
    static constexpr std::array<std::string_view, 42> kLatin{
        "c",  "af", "ca", "cs", "cy", "da", "de", "en", "eo", "es", "et", "eu", "fi", "fo",
        "fr", "fy", "ga", "gd", "gl", "hr", "hu", "id", "is", "it", "la", "lb", "lt", "lv",
        "ms", "mt", "nb", "nl", "nn", "no", "pl", "pt", "ro", "sk", "sl", "sq", "sv", "tr"};
    const std::string_view language = std::string_view(tag).substr(0, tag.find('-'));
    return std::find(kLatin.begin(), kLatin.end(), language) != kLatin.end();
}

const std::string& processLanguage() {
    static const std::string tag = languageTag(std::setlocale(LC_CTYPE, nullptr));
    return tag;
}

hb_font_t* fontAt(const Face& face, int size) {
    auto& fonts = faces().fonts;
    if (fonts.size() >= 256 && !fonts.contains({face.hbFace, size})) {
        for (const auto& [key, font] : fonts) hb_font_destroy(font);
        fonts.clear();
    }
    hb_font_t*& font = fonts[{face.hbFace, size}];
    if (!font) {
        font = hb_font_create(face.hbFace);
        hb_font_set_scale(font, size, size);
    }
    return font;
}

// A run as Pango itemises it: each run's attributes start a new item, so
// even two runs of one style are shaped apart (no kerning between them).
struct Item {
    TextStyle style;
    int size = 0;
    int letterSpacing = 0;  // Pango units
    unsigned start = 0;
    unsigned length = 0;
};

// A glyph's advance and horizontal offset as Pango keeps them, Pango units.
struct Advance {
    int width = 0;
    int xOffset = 0;
};

// Letter spacing split around a glyph as Pango splits it: the left half
// rounded to whole pixels when the spacing is whole pixels.
std::pair<int, int> letterSpaceHalves(int spacing) {
    int left = spacing / 2;
    if ((spacing & (PANGO_SCALE - 1)) == 0) left = PANGO_UNITS_ROUND(left);
    return {left, spacing - left};
}

// Pango's letter spacing of one item: half the spacing before and half after
// every cluster, and, at the ends of the line, only inwards. CLUSTERS gives
// each glyph's cluster (its first byte in the paragraph); every character
// set here starts a cluster that a cursor can stand before.
void spaceLetters(std::vector<Advance>& glyphs, const std::vector<unsigned>& clusters, unsigned itemStart,
                  unsigned itemEnd, int spacing, bool firstItem, bool lastItem) {
    const auto [left, right] = letterSpaceHalves(spacing);
    const std::size_t n = glyphs.size();
    for (std::size_t g = 0; g < n;) {
        std::size_t end = g + 1;
        while (end < n && clusters[end] == clusters[g]) ++end;
        const unsigned clusterEnd = end < n ? clusters[end] : itemEnd;
        if (clusters[g] > itemStart) {
            glyphs[g].width += left;
            glyphs[g].xOffset += left;
        }
        if (clusterEnd < itemEnd) glyphs[end - 1].width += right;
        g = end;
    }
    if (n == 0) return;
    glyphs.front().width += left;
    glyphs.front().xOffset += left;
    glyphs.back().width += right;
    // The line's ends lose the outer halves again (on the first and last
    // glyphs that advance at all).
    if (glyphs.front().width == 0 || firstItem) {
        for (auto& g : glyphs) {
            if (g.width == 0) continue;
            g.width -= left;
            g.xOffset -= left;
            break;
        }
    }
    if (glyphs.back().width == 0 || lastItem) {
        for (auto g = glyphs.rbegin(); g != glyphs.rend(); ++g) {
            if (g->width == 0) continue;
            g->width = std::max(0, g->width - right);
            break;
        }
    }
}

}  // namespace

std::string languageTag(const char* locale) {
    std::string tag;
    for (const char* p = locale ? locale : "C"; *p != 0 && *p != '.' && *p != '@'; ++p) {
        const char c = *p;
        if (c == '_' || c == '-') {
            tag += '-';
        } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            tag += c;
        } else if (c >= 'A' && c <= 'Z') {
            tag += static_cast<char>(c - 'A' + 'a');
        } else {
            break;
        }
    }
    return tag;
}

std::optional<GlyphLine> setGlyphLine(const std::vector<TextRun>& runs) { return setGlyphLine(runs, processLanguage()); }

std::optional<GlyphLine> setGlyphLine(const std::vector<TextRun>& runs, const std::string& language) {
    if (!writtenInLatin(language)) return std::nullopt;
    std::string text;
    std::vector<Item> items;
    for (const auto& run : runs) {
        if (run.text.empty()) continue;
        const int spacing = letterSpacing(run.style);
        // Spacing that rounds to nothing still turns ligatures off in Pango.
        if (run.style.tracking != 0 && spacing == 0) return std::nullopt;
        const auto start = static_cast<unsigned>(text.size());
        text += run.text;
        items.push_back({run.style, fontSize(run.style.font), spacing, start, static_cast<unsigned>(run.text.size())});
    }
    if (items.empty() || !g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr)) return std::nullopt;

    // Pango gives the whole paragraph the script of its letters, or the
    // common script when it has none, and its context's language, which is
    // written in both.
    bool latin = false;
    for (const char* p = text.data(); p < text.data() + text.size(); p = g_utf8_next_char(p)) {
        const gunichar c = g_utf8_get_char(p);
        if (!plainCharacter(c)) return std::nullopt;
        const GUnicodeScript script = g_unichar_get_script(c);
        if (script == G_UNICODE_SCRIPT_LATIN) {
            latin = true;
        } else if (script != G_UNICODE_SCRIPT_COMMON) {
            return std::nullopt;
        }
    }
    const hb_script_t script = latin ? HB_SCRIPT_LATIN : HB_SCRIPT_COMMON;
    auto [known, added] = faces().languages.try_emplace(language);
    if (added) known->second = hb_language_from_string(language.c_str(), -1);
    const hb_language_t hbLanguage = known->second;

    GlyphLine line;
    int top = 0;
    int bottom = 0;
    const std::unique_ptr<hb_buffer_t, decltype(&hb_buffer_destroy)> shaped(hb_buffer_create(), hb_buffer_destroy);
    hb_buffer_t* const buffer = shaped.get();
    for (const Item& item : items) {
        const Face* face = faceFor(item.style.font, language);
        if (!face) return std::nullopt;
        hb_font_t* font = fontAt(*face, item.size);
        // Every character from this face: Pango takes the first face of the
        // font's set that has it, which for anything else is a fallback.
        const char* end = text.data() + item.start + item.length;
        for (const char* p = text.data() + item.start; p < end; p = g_utf8_next_char(p)) {
            hb_codepoint_t glyph = 0;
            const gunichar c = g_utf8_get_char(p);
            if (!FcCharSetHasChar(face->charset, c) || !hb_font_get_nominal_glyph(font, c, &glyph)) return std::nullopt;
        }
        hb_buffer_clear_contents(buffer);
        hb_buffer_set_direction(buffer, HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer, script);
        hb_buffer_set_language(buffer, hbLanguage);
        hb_buffer_set_cluster_level(buffer, HB_BUFFER_CLUSTER_LEVEL_MONOTONE_CHARACTERS);
        hb_buffer_set_flags(buffer, static_cast<hb_buffer_flags_t>(HB_BUFFER_FLAG_BOT | HB_BUFFER_FLAG_EOT));
        // The whole paragraph goes in, as Pango gives it, for the context
        // its contextual substitutions look at.
        hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), item.start,
                           static_cast<int>(item.length));
        // Tabular digits as asked; letter spacing turns ligatures off.
        const unsigned itemEnd = item.start + item.length;
        std::vector<hb_feature_t> features;
        if (item.style.font.monospacedDigit) features.push_back({HB_TAG('t', 'n', 'u', 'm'), 1, item.start, itemEnd});
        if (item.letterSpacing != 0) {
            for (const hb_tag_t tag : {HB_TAG('l', 'i', 'g', 'a'), HB_TAG('c', 'l', 'i', 'g'), HB_TAG('d', 'l', 'i', 'g')})
                features.push_back({tag, 0, item.start, itemEnd});
        }
        hb_shape(font, buffer, features.data(), static_cast<unsigned>(features.size()));

        unsigned count = 0;
        const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
        const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
        std::vector<Advance> advances(count);
        std::vector<unsigned> clusters(count);
        for (unsigned i = 0; i < count; ++i) {
            advances[i] = {positions[i].x_advance, positions[i].x_offset};
            clusters[i] = infos[i].cluster;
        }
        if (item.letterSpacing != 0) {
            spaceLetters(advances, clusters, item.start, itemEnd, item.letterSpacing, &item == &items.front(),
                         &item == &items.back());
        }
        GlyphRun run{face->cairoFace, textFontOptions(), item.size, line.width, {}};
        run.glyphs.reserve(count);
        int advance = 0;
        for (unsigned i = 0; i < count; ++i) {
            run.glyphs.push_back({infos[i].codepoint, advance + advances[i].xOffset, -positions[i].y_offset});
            advance += advances[i].width;
        }
        line.width += advance;
        line.runs.push_back(std::move(run));

        hb_font_extents_t extents{};
        hb_font_get_h_extents(font, &extents);
        const bool first = line.runs.size() == 1;
        top = first ? -extents.ascender : std::min(top, -extents.ascender);
        bottom = first ? -extents.descender : std::max(bottom, -extents.descender);
    }
    line.height = bottom - top;
    line.baseline = -top;
    return line;
}

void showGlyphLine(cairo_t* cr, const GlyphLine& line, bool asPath) {
    // The arithmetic is Pango's renderer's, in its order, so that every
    // glyph lands on the same double.
    double x0 = 0;
    double y0 = 0;
    cairo_get_current_point(cr, &x0, &y0);
    std::vector<cairo_glyph_t> glyphs;
    for (const GlyphRun& run : line.runs) {
        const double baseX = x0 + static_cast<double>(run.x) / PANGO_SCALE;
        const double baseY = y0 + static_cast<double>(line.baseline) / PANGO_SCALE;
        glyphs.clear();
        for (const PlacedGlyph& g : run.glyphs) {
            glyphs.push_back({g.index, baseX + static_cast<double>(g.x) / PANGO_SCALE,
                              g.yOffset == 0 ? baseY : baseY + static_cast<double>(g.yOffset) / PANGO_SCALE});
        }
        cairo_save(cr);
        cairo_matrix_t matrix;
        cairo_matrix_init_scale(&matrix, static_cast<double>(run.size) / PANGO_SCALE,
                                static_cast<double>(run.size) / PANGO_SCALE);
        cairo_set_font_face(cr, run.face);
        cairo_set_font_matrix(cr, &matrix);
        cairo_set_font_options(cr, run.options);
        if (asPath) {
            cairo_glyph_path(cr, glyphs.data(), static_cast<int>(glyphs.size()));
        } else {
            cairo_show_glyphs(cr, glyphs.data(), static_cast<int>(glyphs.size()));
        }
        cairo_restore(cr);
    }
    cairo_move_to(cr, x0, y0);
}

}  // namespace mw::render
