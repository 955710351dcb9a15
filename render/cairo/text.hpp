#pragma once
// The Pango text measurer: Inter as the system font (sizes in points, one
// point = one logical pixel), weights 400–700, tracking as letter spacing,
// monospaced digits via the OpenType feature "tnum", hinting and metric
// rounding off so widths scale with the size. Text is always set as plain text.
// A single line of plain Latin text is set as a glyph line (glyph_line.hpp),
// Pango's measures and pixels without Pango's set-up for each size; the rest
// goes through Pango layouts.

#include <pango/pangocairo.h>

#include <cstddef>
#include <functional>

#include "render/cairo/glyph_line.hpp"
#include "render/layout.hpp"

namespace mw::render {

class PangoTextMeasurer final : public TextMeasurer {
public:
    PangoTextMeasurer();
    ~PangoTextMeasurer() override;
    PangoTextMeasurer(const PangoTextMeasurer&) = delete;
    PangoTextMeasurer& operator=(const PangoTextMeasurer&) = delete;

    TextMetrics measure(const std::vector<TextRun>& runs, std::optional<double> wrapWidth) const override;

private:
    // Pango's context, made when a text first needs Pango (with the engine's
    // mutex held).
    PangoContext* context() const;
    mutable PangoContext* context_ = nullptr;
};

// One measurer for the process (thread-safe to obtain; use from one thread at a time).
const TextMeasurer& systemTextMeasurer();

// The font family used for a design: "Inter", or a rounded family that is
// installed and has tabular digits.
std::string fontFamily(Design design);

// The size of FONT as its layouts set it, in Pango units (whole units: the
// description keeps no fraction of one).
int fontSize(const Font& font);
// STYLE's tracking as Pango's letter spacing, in Pango units.
int letterSpacing(const TextStyle& style);
// A weight as OpenType (and Pango) number it: 400 regular to 700 bold.
int openTypeWeight(Weight w);

// A Pango layout of `runs` with the same settings the measurer uses; `width`
// (Pango units are not used: points) wraps when given. Caller unrefs.
PangoLayout* createTextLayout(PangoContext* context, const std::vector<TextRun>& runs, std::optional<double> wrapWidth);

// Keeps what the last COUNT texts measured without a width were set as, so
// that drawing them takes no second shaping; 0, the default, keeps none.
// For programs that draw what they have just laid out; a long-lived process
// keeps the memory instead.
void keepMeasuredLayouts(std::size_t count);

// A text set without a width: the glyph line or the Pango layout the
// measurer kept for it, else one set now (a layout on the context CONTEXT
// gives). Exactly one is given; the caller unrefs the layout. Called with the
// text engine's mutex held.
struct UnwrappedText {
    PangoLayout* layout = nullptr;
    std::optional<GlyphLine> line;
};
UnwrappedText unwrappedText(const std::function<PangoContext*()>& context, const std::vector<TextRun>& runs);

// Reads the font configuration ahead of the first text; for a thread a
// program can spare at start-up.
void prepareFonts();

}  // namespace mw::render
