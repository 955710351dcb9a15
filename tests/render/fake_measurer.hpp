#pragma once
// A text measurer without fonts: every character is half the font size wide
// plus the tracking, a line is 1.2 × the size high, and wrapping breaks
// greedily at spaces (or inside a word longer than the line).

#include <algorithm>
#include <string>
#include <vector>

#include "render/layout.hpp"

namespace mw::render::testing {

class FakeMeasurer final : public TextMeasurer {
public:
    TextMetrics measure(const std::vector<TextRun>& runs, std::optional<double> wrapWidth) const override {
        ++calls;
        struct Glyph {
            double width;
            bool space;
        };
        std::vector<Glyph> glyphs;
        double lineHeight = 0;
        for (const auto& r : runs) {
            lineHeight = std::max(lineHeight, r.style.font.size * 1.2);
            for (std::size_t i = 0; i < r.text.size(); ++i) {
                if ((static_cast<unsigned char>(r.text[i]) & 0xC0) == 0x80) continue;
                glyphs.push_back({r.style.font.size * 0.5 + r.style.tracking, r.text[i] == ' '});
            }
        }
        // `line` is the committed words of the current line, `gap` the space
        // before the word being read, `word` that word so far.
        double widest = 0, line = 0, gap = 0, word = 0;
        int lines = 1;
        auto breakLine = [&] {
            widest = std::max(widest, line);
            ++lines;
            line = 0;
            gap = 0;
        };
        for (const auto& g : glyphs) {
            if (g.space) {
                if (word > 0 || line == 0) line += (line > 0 ? gap : 0) + word;
                word = 0;
                gap = line > 0 ? g.width : 0;
                continue;
            }
            if (wrapWidth && (line > 0 ? line + gap : 0) + word + g.width > *wrapWidth + 1e-9) {
                if (line > 0) {
                    breakLine();
                } else if (word > 0) {
                    widest = std::max(widest, word);
                    ++lines;
                    word = 0;
                }
            }
            word += g.width;
        }
        if (word > 0) line += (line > 0 ? gap : 0) + word;
        widest = std::max(widest, line);
        return {{widest, lineHeight * lines}, lines, lineHeight};
    }
    mutable int calls = 0;
};

}  // namespace mw::render::testing
