// Text set straight on HarfBuzz must be Pango's text to the unit and to the
// pixel, or every widget's frames and pictures move; and whatever it cannot
// set exactly must be left to Pango.

#include <gtest/gtest.h>

#include <cairo.h>

#include <clocale>
#include <cstring>
#include <mutex>

#include "render/cairo/engine.hpp"
#include "render/cairo/glyph_line.hpp"
#include "render/cairo/text.hpp"

namespace mw::render {
namespace {

using Runs = std::vector<TextRun>;

TextRun run(std::string text, double size, Weight weight = Weight::regular, bool tabular = false,
            Design design = Design::standard) {
    Font font = Font::system(size, weight, design);
    font.monospacedDigit = tabular;
    return {std::move(text), {font, 0}};
}

TextRun tracked(TextRun r, double tracking) {
    r.style.tracking = tracking;
    return r;
}

struct Context {
    explicit Context(const char* language = nullptr) : context(textEngine().newContext()) {
        if (language) pango_context_set_language(context, pango_language_from_string(language));
    }
    ~Context() { g_object_unref(context); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;
    PangoContext* context;
};

// The texts widgets set, at sizes that are and are not whole Pango units,
// each weight, with and without tabular digits, alone and beside a second
// run, under languages with and without their own forms.
TEST(GlyphLine, MeasuresEveryTextAsPangoDoes) {
    const char* texts[] = {"Claude · Work", "91%", "Resets in 2h 10m", "+6% vs pace", "−3% vs pace", "1,284,310",
                           "$14.37", "Updated 2m ago · next in 3m", "AVAToWaYfi ffl", "Résumé — naïve café",
                           "İstanbul fiş", "IJsselmeer", "  spaces at both ends  ", "0123456789", "“quoted” ‘x’ …",
                           "Oct 24 → Nov 22", "€9 × 3 ≤ ¾"};
    const Weight weights[] = {Weight::regular, Weight::medium, Weight::semibold, Weight::bold};
    const double sizes[] = {5.5, 8, 9.5, 13, 8.2935, 17.0001, 31.3};
    std::lock_guard lock(textEngine().mutex());
    int compared = 0;
    for (const char* language : {"en-us", "tr", "nl", "c"}) {
        Context c(language);
        for (std::size_t i = 0; i < std::size(texts); ++i) {
            const Weight weight = weights[i % 4];
            const double size = sizes[i % std::size(sizes)];
            const bool tabular = i % 3 == 0;
            for (const Runs& runs : {Runs{run(texts[i], size, weight, tabular)},
                                     Runs{run(texts[i], size, weight, tabular), run("%", size * 0.55, Weight::bold)},
                                     Runs{run("12", 10, Weight::bold, true, Design::rounded), run(texts[i], size)},
                                     Runs{run("AV", size, weight), run(texts[i], size, weight)},
                                     Runs{tracked(run(texts[i], size, weight, tabular), 0.6)},
                                     Runs{tracked(run("ffi", 9), 1), run(texts[i], size), tracked(run("fl", 7), -0.37)}}) {
                const auto line = setGlyphLine(runs, language);
                ASSERT_TRUE(line.has_value()) << texts[i];
                PangoLayout* layout = createTextLayout(c.context, runs, std::nullopt);
                PangoRectangle logical;
                pango_layout_get_extents(layout, nullptr, &logical);
                EXPECT_EQ(line->width, logical.width) << language << " " << texts[i] << " " << runs.size();
                EXPECT_EQ(line->height, logical.height) << language << " " << texts[i] << " " << runs.size();
                EXPECT_EQ(line->baseline, pango_layout_get_baseline(layout)) << language << " " << texts[i];
                g_object_unref(layout);
                ++compared;
            }
        }
    }
    EXPECT_EQ(compared, 4 * 17 * 6);
}

TEST(GlyphLine, LeavesToPangoWhatOnlyPangoSets) {
    const std::pair<const char*, Runs> cases[] = {
        {"letter spacing that rounds to nothing", {tracked(run("CLAUDE", 9), 0.0004)}},
        {"a tab", {run("a\tb", 12)}},
        {"a line break", {run("one\ntwo", 12)}},
        {"a soft hyphen", {run("Ac\u00ADcount", 12)}},
        {"a combining mark", {run("Cafe\u0301", 12)}},
        {"a zero-width joiner", {run("a\u200Db", 12)}},
        {"right to left", {run("Work العربية", 12)}},
        {"a script Inter lacks", {run("日本語", 12)}},
        {"Greek letters", {run("Ελληνικά", 12)}},
        {"an emoji", {run("Done \U0001F600", 12)}},
        {"nothing", {run("", 12)}},
        {"broken UTF-8", {run("ab\xC3(", 12)}},
    };
    std::lock_guard lock(textEngine().mutex());
    for (const auto& [what, runs] : cases) EXPECT_FALSE(setGlyphLine(runs).has_value()) << what;
}

// Latin text in a language Pango shapes it in: only languages Pango writes
// in Latin letters, named as Pango names them; any other goes to Pango.
TEST(GlyphLine, SetsOnlyLanguagesPangoWritesInLatin) {
    const std::pair<const char*, const char*> locales[] = {
        {"C", "c"}, {"C.UTF-8", "c"}, {"en_US.UTF-8", "en-us"}, {"de_DE@euro", "de-de"}, {"pt_BR", "pt-br"}};
    for (const auto& [locale, tag] : locales) {
        EXPECT_EQ(languageTag(locale), tag);
        EXPECT_STREQ(pango_language_to_string(pango_language_from_string(tag)), tag);
    }
    EXPECT_EQ(languageTag(std::setlocale(LC_CTYPE, nullptr)), pango_language_to_string(pango_language_get_default()));
    std::lock_guard lock(textEngine().mutex());
    int set = 0;
    for (const char* tag : {"c",  "af", "ar", "bg", "ca", "cs", "cy", "da", "de", "el", "en", "en-gb", "eo", "es", "et",
                            "eu", "fa", "fi", "fo", "fr", "fy", "ga", "gd", "gl", "he", "hi", "hr", "hu", "hy", "id",
                            "is", "it", "ja", "ka", "ko", "la", "lb", "lt", "lv", "mk", "ms", "mt", "nb", "nl", "nn",
                            "no", "pl", "pt", "ro", "ru", "sk", "sl", "sq", "sr", "sv", "th", "tr", "uk", "zh-cn"}) {
        if (!setGlyphLine({run("Usage 42%", 12)}, tag)) continue;
        ++set;
        EXPECT_TRUE(pango_language_includes_script(pango_language_from_string(tag), PANGO_SCRIPT_LATIN)) << tag;
    }
    EXPECT_GE(set, 30);
    EXPECT_FALSE(setGlyphLine({run("Usage 42%", 12)}, "ja").has_value());
}

// The faces are the ones Pango picks, drawn through the same Cairo face with
// the same options.
TEST(GlyphLine, TakesTheFacesPangoTakes) {
    std::lock_guard lock(textEngine().mutex());
    Context c;
    for (const Weight weight : {Weight::regular, Weight::medium, Weight::semibold, Weight::bold}) {
        for (const double size : {7.5, 13.0, 28.0}) {
            const auto line = setGlyphLine({run("Abc", size, weight)});
            ASSERT_TRUE(line.has_value());
            PangoLayout* layout = createTextLayout(c.context, {run("Abc", size, weight)}, std::nullopt);
            PangoLayoutRun* first = pango_layout_get_line_readonly(layout, 0)->runs
                                        ? static_cast<PangoLayoutRun*>(pango_layout_get_line_readonly(layout, 0)->runs->data)
                                        : nullptr;
            ASSERT_NE(first, nullptr);
            cairo_scaled_font_t* scaled = pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(first->item->analysis.font));
            EXPECT_EQ(cairo_scaled_font_get_font_face(scaled), line->runs[0].face);
            cairo_font_options_t* options = cairo_font_options_create();
            cairo_scaled_font_get_font_options(scaled, options);
            EXPECT_TRUE(cairo_font_options_equal(options, line->runs[0].options));
            cairo_font_options_destroy(options);
            g_object_unref(layout);
        }
    }
}

struct Image {
    explicit Image(int size) : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size)) {}
    ~Image() { cairo_surface_destroy(surface); }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    bool operator==(const Image& other) const {
        cairo_surface_flush(surface);
        cairo_surface_flush(other.surface);
        const int bytes = cairo_image_surface_get_stride(surface) * cairo_image_surface_get_height(surface);
        return std::memcmp(cairo_image_surface_get_data(surface), cairo_image_surface_get_data(other.surface),
                           static_cast<std::size_t>(bytes)) == 0;
    }
    cairo_surface_t* surface;
};

// Both ways of drawing, glyphs through the glyph cache and outlines filled,
// at the scales widgets are drawn at and turned, give Pango's pixels.
TEST(GlyphLine, DrawsPangosPixels) {
    const Runs texts[] = {
        {run("Claude · Work", 13, Weight::semibold)},
        {run("91", 10, Weight::bold, true), run("%", 5.5, Weight::bold, true)},
        {run("Resets Thu 09:00", 8.2935, Weight::medium, true)},
        {tracked(run("CLAUDE · WORK", 8, Weight::semibold), 0.6), run(" 42%", 9)},
    };
    std::lock_guard lock(textEngine().mutex());
    Context c;
    for (const Runs& runs : texts) {
        const auto line = setGlyphLine(runs);
        ASSERT_TRUE(line.has_value());
        PangoLayout* layout = createTextLayout(c.context, runs, std::nullopt);
        for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
            for (const bool asPath : {true, false}) {
                for (const double angle : {0.0, 0.3}) {
                    Image mine(96 * 3), pango(96 * 3);
                    for (auto [image, ours] : {std::pair{&mine, true}, std::pair{&pango, false}}) {
                        cairo_t* cr = cairo_create(image->surface);
                        cairo_scale(cr, scale, scale);
                        cairo_rotate(cr, angle);
                        cairo_set_source_rgba(cr, 0.1, 0.2, 0.3, 0.9);
                        cairo_move_to(cr, 3.25, 7.5);
                        if (ours) {
                            showGlyphLine(cr, *line, asPath);
                        } else if (asPath) {
                            pango_cairo_layout_path(cr, layout);
                        } else {
                            pango_cairo_show_layout(cr, layout);
                        }
                        if (asPath) cairo_fill(cr);
                        cairo_destroy(cr);
                    }
                    EXPECT_TRUE(mine == pango) << runs[0].text << " at " << scale << (asPath ? " as outlines" : "")
                                               << " turned " << angle;
                }
            }
        }
        g_object_unref(layout);
    }
}

}  // namespace
}  // namespace mw::render
