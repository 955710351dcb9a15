#pragma once
// The Pango text measurer: Inter as the system font (sizes in points, one
// point = one logical pixel), weights 400–700, tracking as letter spacing,
// monospaced digits via the OpenType feature "tnum", hinting and metric
// rounding off so widths scale with the size. Text is always set as plain text.

#include <pango/pangocairo.h>

#include <cstddef>

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
    PangoContext* context_;
};

// One measurer for the process (thread-safe to obtain; use from one thread at a time).
const TextMeasurer& systemTextMeasurer();

// The font family used for a design: "Inter", or a rounded family that is
// installed and has tabular digits.
std::string fontFamily(Design design);

// A Pango layout of `runs` with the same settings the measurer uses; `width`
// (Pango units are not used: points) wraps when given. Caller unrefs.
PangoLayout* createTextLayout(PangoContext* context, const std::vector<TextRun>& runs, std::optional<double> wrapWidth);

// Keeps the layouts of the last COUNT texts measured without a width, so
// that drawing them takes no second shaping; 0, the default, keeps none.
// For programs that draw what they have just laid out; a long-lived process
// keeps the memory instead.
void keepMeasuredLayouts(std::size_t count);

// The layout of `runs` without a width: the measurer's own when it kept it
// (shared: not to be changed), else a new one on CONTEXT. Caller unrefs;
// called with the text engine's mutex held.
PangoLayout* unwrappedTextLayout(PangoContext* context, const std::vector<TextRun>& runs);

}  // namespace mw::render
