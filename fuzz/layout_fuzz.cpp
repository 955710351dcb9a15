// Arbitrary payload bytes through every widget and family to a laid-out
// view: nothing crashes, every frame is finite, every link lies inside the
// widget and every text that reaches the text engine is clean and bounded.

#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <variant>
#include <vector>

#include "bundle/bundle.hpp"
#include "bundle/widget_view.hpp"
#include "fuzz/fuzz.hpp"
#include "payload/store.hpp"

namespace {

// Fixed-advance text: the layout's decisions, not the fonts, are under test.
class FixedMeasurer final : public mw::render::TextMeasurer {
  public:
    mw::render::TextMetrics measure(const std::vector<mw::render::TextRun>& runs,
                                    std::optional<double> wrapWidth) const override {
        double width = 0, lineHeight = 0;
        for (const auto& run : runs) {
            lineHeight = std::max(lineHeight, run.style.font.size * 1.2);
            for (const char c : run.text)
                if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) width += run.style.font.size * 0.55;
        }
        int lines = 1;
        if (wrapWidth && *wrapWidth > 0 && width > *wrapWidth) {
            lines = static_cast<int>(std::min(1e6, std::ceil(width / *wrapWidth)));
            width = *wrapWidth;
        }
        return {{width, lines * lineHeight}, lines, lineHeight};
    }
};

bool finite(const mw::render::Rect& r) {
    return std::isfinite(r.x) && std::isfinite(r.y) && std::isfinite(r.width) && std::isfinite(r.height);
}

bool inside(const mw::render::Rect& r, mw::render::Size size) {
    constexpr double slack = 0.5;
    return r.minX() >= -slack && r.minY() >= -slack && r.maxX() <= size.width + slack &&
           r.maxY() <= size.height + slack;
}

bool clean(const std::string& text) {
    for (const unsigned char c : text)
        if (c < 0x20 || c == 0x7F) return false;
    return text.size() <= 4 * 1000 + 16;  // cut to 1000 characters, plus an ellipsis
}

std::filesystem::path container() {
    static const std::filesystem::path dir = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "mw-layout-fuzz-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        return std::filesystem::path(pattern);
    }();
    return dir;
}

// The defaults, then each value of each option one at a time.
std::vector<mw::IntentParameters> variants(const mw::WidgetDeclaration& widget) {
    std::vector<mw::IntentParameters> out{{}};
    if (widget.intent == nullptr) return out;
    for (const auto& parameter : widget.intent->parameters)
        if (!mw::isEntity(parameter.type))
            for (const auto value : mw::acceptedRawValues(parameter.type))
                out.push_back({{std::string(parameter.name), std::string(value)}});
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto dir = container();
    {
        std::ofstream out(dir / "widget-payload.json", std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    static const FixedMeasurer measurer;
    const mw::ProviderContext context{dir, mw::Date::fromUnix(1764000000), {}};
    for (const auto& widget : mw::widgetDeclarations()) {
        // One set of options per input, so each run stays quick; the corpus
        // covers them all.
        const auto options = variants(widget);
        {
            const auto& parameters = options[size % options.size()];
            const auto entry = widget.snapshot(context, parameters);
            for (const auto family : widget.families) {
                const auto list = mw::layoutWidget(entry, family, measurer);
                for (const auto& op : list.ops) {
                    MW_FUZZ_CHECK(finite(op.frame));
                    if (const auto* text = std::get_if<mw::render::TextDraw>(&op.item))
                        for (const auto& run : text->runs) MW_FUZZ_CHECK(clean(run.text));
                }
                for (const auto& link : list.links) MW_FUZZ_CHECK(finite(link.rect) && inside(link.rect, list.size));
            }
        }
    }
    return 0;
}
