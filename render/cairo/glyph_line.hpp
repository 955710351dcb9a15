#pragma once
// Lines of plain text set straight on HarfBuzz, in the face Pango picks for
// their font, where that gives exactly what Pango would: one line, no letter
// spacing, every character in the face and of Latin or common script. Pango
// sets up fontconfig, a font and its caches for every size of every face,
// and a widget uses a dozen sizes; here a face is set up once (through
// Pango, which picks it) and each further size costs a HarfBuzz font. Widths,
// heights and glyph positions are Pango's to the Pango unit, and the glyphs
// are drawn with the same Cairo face, matrix and options, so the pixels are
// Pango's too. Other text gets nullopt and goes to Pango. Used with the text
// engine's mutex held.

#include <pango/pangocairo.h>

#include <optional>
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

// The line of RUNS, or nullopt when Pango has to set it.
std::optional<GlyphLine> setGlyphLine(PangoContext* context, const std::vector<TextRun>& runs);

// Draws LINE with its top left corner at the current point, as
// pango_cairo_show_layout would (or adds its outlines to the path, as
// pango_cairo_layout_path would).
void showGlyphLine(cairo_t* cr, const GlyphLine& line, bool asPath);

}  // namespace mw::render
