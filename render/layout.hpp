#pragma once
// The layout pass: a pure function of a view tree, the size offered to it and
// a text measurer. The parent proposes a size, the child chooses its size,
// the parent places it.

#include <optional>
#include <string_view>

#include "render/display_list.hpp"
#include "render/geometry.hpp"
#include "render/style.hpp"
#include "render/view.hpp"

namespace mw::render {

struct TextMetrics {
    Size size;              // the ink-independent box: widest line × (lines × lineHeight)
    int lines = 1;
    double lineHeight = 0;
    bool operator==(const TextMetrics&) const = default;
};

// Measures plain text. Runs are set one after the other in one paragraph.
// Without `wrapWidth` the text stays on one line (hard line breaks aside);
// with it, lines break at word boundaries to fit that width (a word longer
// than the width is broken between characters).
class TextMeasurer {
public:
    virtual ~TextMeasurer() = default;
    virtual TextMetrics measure(const std::vector<TextRun>& runs, std::optional<double> wrapWidth) const = 0;
};

struct LayoutOptions {
    std::string tapURL = {};  // used when the tree sets no widgetURL
};

// Lays `root` out in exactly `size` (the widget's size): the root is offered
// that size and centred in it.
DisplayList layout(const View& root, Size size, const TextMeasurer& measurer, const LayoutOptions& options = {});

// What `view` would choose when offered `proposal` (nullopt on an axis asks
// for its ideal size). Handy in tests and for sizing a window to content.
Size sizeThatFits(const View& view, std::optional<double> width, std::optional<double> height,
                  const TextMeasurer& measurer);

// The natural square of a symbol image set in `font` (side = size × 1.2).
double symbolSide(const Font& font);

}  // namespace mw::render
