#pragma once
// Lines of plain text set straight on HarfBuzz, in the face Pango would pick
// for their font, where that gives exactly what Pango would: one line, every
// character in the face and of Latin or common script, in a language written
// in Latin letters. Pango sets up fontconfig, a font and its caches for every
// size of every face, and a widget uses a dozen sizes; here fontconfig picks
// a face once, as Pango asks it, and each further size costs a HarfBuzz font.
// Nor is Pango loaded at all while every text is a glyph line. Widths,
// heights and glyph positions (letter spacing included) are Pango's to the
// Pango unit, and the glyphs are drawn with the same Cairo face, matrix and
// options, so the pixels are Pango's too. Other text gets nullopt and goes to
// Pango. Used with the text engine's mutex held.

#include <pango/pangocairo.h>

#include <optional>
#include <string>
#include <vector>

#include "render/display_list.hpp"

namespace mw::render {

struct PlacedGlyph {
    unsigned index = 0;
    int x = 0;        // from the start of its run, offset included, Pango units
    int yOffset = 0;  // down from the baseline, Pango units
    bool operator==(const PlacedGlyph&) const = default;
};

struct GlyphRun {
    cairo_font_face_t* face = nullptr;  // kept for the life of the process
    const cairo_font_options_t* options = nullptr;
    int size = 0;  // Pango units
    int x = 0;     // from the start of the line, Pango units
    std::vector<PlacedGlyph> glyphs;
    bool operator==(const GlyphRun&) const = default;
};

struct GlyphLine {
    std::vector<GlyphRun> runs;
    int width = 0;     // Pango units, as Pango's logical extents
    int height = 0;
    int baseline = 0;  // from the top
    bool operator==(const GlyphLine&) const = default;
};

// The line of RUNS in the process's language (Pango's default, from the
// locale), or nullopt when Pango has to set it.
std::optional<GlyphLine> setGlyphLine(const std::vector<TextRun>& runs);
// The same in LANGUAGE, a tag as Pango writes it ("en-us", "c").
std::optional<GlyphLine> setGlyphLine(const std::vector<TextRun>& runs, const std::string& language);

// Language tags as Pango writes them, from a locale name ("en_US.UTF-8" is
// "en-us", "C" is "c").
std::string languageTag(const char* locale);

// Draws LINE with its top left corner at the current point, as
// pango_cairo_show_layout would (or adds its outlines to the path, as
// pango_cairo_layout_path would).
void showGlyphLine(cairo_t* cr, const GlyphLine& line, bool asPath);

}  // namespace mw::render
