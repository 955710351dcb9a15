#include "render/cairo/text.hpp"

#include <fontconfig/fontconfig.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>

#include "render/cairo/engine.hpp"
#include "render/cairo/glyph_line.hpp"

namespace mw::render {

namespace {

constexpr const char* kSystemFamily = "Inter";

// Rounded faces worth using for `design rounded`, best first.
constexpr std::array<const char*, 6> kRoundedFamilies{
    "SF Pro Rounded", "Nunito", "Varela Round", "M PLUS Rounded 1c", "Quicksand", "Comfortaa",
};

bool familyInstalled(const char* family) {
    FcPattern* pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcObjectSet* os = FcObjectSetBuild(FC_FAMILY, nullptr);
    FcFontSet* set = FcFontList(widgetFontConfig(), pattern, os);
    const bool found = set && set->nfont > 0;
    if (set) FcFontSetDestroy(set);
    FcObjectSetDestroy(os);
    FcPatternDestroy(pattern);
    return found;
}

PangoWeight pangoWeight(Weight w) { return static_cast<PangoWeight>(openTypeWeight(w)); }

// A face keeps tabular digits when, with "tnum" on, every digit advances alike.
bool hasTabularDigits(const char* family) {
    std::lock_guard lock(textEngine().mutex());
    PangoContext* ctx = textEngine().newContext();
    double first = -1;
    bool same = true;
    for (char d = '0'; d <= '9' && same; ++d) {
        PangoLayout* layout = pango_layout_new(ctx);
        PangoFontDescription* desc = pango_font_description_new();
        pango_font_description_set_family(desc, family);
        pango_font_description_set_absolute_size(desc, 20 * PANGO_SCALE);
        pango_layout_set_font_description(layout, desc);
        PangoAttrList* attrs = pango_attr_list_new();
        pango_attr_list_insert(attrs, pango_attr_font_features_new("tnum"));
        pango_layout_set_attributes(layout, attrs);
        pango_layout_set_text(layout, &d, 1);
        PangoRectangle logical;
        pango_layout_get_extents(layout, nullptr, &logical);
        if (first < 0) {
            first = logical.width;
        } else if (std::abs(logical.width - first) > 1) {
            same = false;
        }
        pango_attr_list_unref(attrs);
        pango_font_description_free(desc);
        g_object_unref(layout);
    }
    g_object_unref(ctx);
    return same;
}

std::string chooseRoundedFamily() {
    for (const char* family : kRoundedFamilies) {
        if (familyInstalled(family) && hasTabularDigits(family)) return family;
    }
    return kSystemFamily;
}

std::string cacheKey(const std::vector<TextRun>& runs, std::optional<double> wrapWidth) {
    std::string key;
    char buf[96];
    std::snprintf(buf, sizeof buf, "%.4f|", wrapWidth.value_or(-1));
    key += buf;
    for (const auto& r : runs) {
        std::snprintf(buf, sizeof buf, "%.4f/%d/%d/%d/%.4f|", r.style.font.size, static_cast<int>(r.style.font.weight),
                      static_cast<int>(r.style.font.design), r.style.font.monospacedDigit ? 1 : 0, r.style.tracking);
        key += buf;
        key += std::to_string(r.text.size());
        key += ':';
        key += r.text;
    }
    return key;
}

// Measurements repeat a lot (stacks ask each child several times, and
// widgets redraw the same texts), so they are kept per process.
class MeasureCache {
public:
    std::optional<TextMetrics> find(const std::string& key) {
        std::lock_guard lock(mutex_);
        auto it = map_.find(key);
        if (it == map_.end()) return std::nullopt;
        return it->second;
    }
    void put(std::string key, TextMetrics m) {
        std::lock_guard lock(mutex_);
        if (map_.size() > 8192) map_.clear();
        map_.emplace(std::move(key), m);
    }

private:
    std::mutex mutex_;
    std::unordered_map<std::string, TextMetrics> map_;
};

MeasureCache& measureCache() {
    static MeasureCache cache;
    return cache;
}

// The last few texts measured without a width, as glyph lines or Pango
// layouts, for the painter to draw as they are instead of shaping them a
// second time. Used with the text engine's mutex held. Empty unless a
// program asks for it: the host keeps its memory instead.
class LayoutShelf {
public:
    struct Kept {
        PangoLayout* layout = nullptr;  // a reference of the shelf's own
        std::optional<GlyphLine> line;
    };

    ~LayoutShelf() { resize(0); }

    void resize(std::size_t capacity) {
        capacity_ = capacity;
        while (order_.size() > capacity_) dropOldest();
    }
    void put(const std::string& key, Kept kept) {
        if (capacity_ == 0 || kept_.contains(key)) return;
        if (order_.size() == capacity_) dropOldest();
        if (kept.layout) g_object_ref(kept.layout);
        kept_.emplace(key, std::move(kept));
        order_.push_back(key);
    }
    const Kept* find(const std::string& key) const {
        const auto it = kept_.find(key);
        return it == kept_.end() ? nullptr : &it->second;
    }

private:
    void dropOldest() {
        const auto it = kept_.find(order_.front());
        if (it->second.layout) g_object_unref(it->second.layout);
        kept_.erase(it);
        order_.pop_front();
    }

    std::size_t capacity_ = 0;
    std::unordered_map<std::string, Kept> kept_;
    std::deque<std::string> order_;
};

LayoutShelf& layoutShelf() {
    static LayoutShelf shelf;
    return shelf;
}

}  // namespace

std::string fontFamily(Design design) {
    if (design == Design::standard) return kSystemFamily;
    static const std::string rounded = chooseRoundedFamily();
    return rounded;
}

int openTypeWeight(Weight w) {
    switch (w) {
        case Weight::regular: return 400;
        case Weight::medium: return 500;
        case Weight::semibold: return 600;
        case Weight::bold: return 700;
    }
    return 400;
}

int fontSize(const Font& font) { return static_cast<int>(std::max(0.1, font.size) * PANGO_SCALE); }

int letterSpacing(const TextStyle& style) { return static_cast<int>(std::lround(style.tracking * PANGO_SCALE)); }

namespace {

// FONT's family, weight and size as a Pango description. Caller frees.
PangoFontDescription* fontDescription(const Font& font) {
    PangoFontDescription* desc = pango_font_description_new();
    const std::string family = fontFamily(font.design);
    pango_font_description_set_family(desc, family.c_str());
    pango_font_description_set_weight(desc, pangoWeight(font.weight));
    pango_font_description_set_absolute_size(desc, fontSize(font));
    return desc;
}

}  // namespace

PangoLayout* createTextLayout(PangoContext* context, const std::vector<TextRun>& runs,
                              std::optional<double> wrapWidth) {
    PangoLayout* layout = pango_layout_new(context);
    std::string text;
    PangoAttrList* attrs = pango_attr_list_new();
    for (const auto& run : runs) {
        const auto start = static_cast<guint>(text.size());
        text += run.text;
        const auto end = static_cast<guint>(text.size());
        if (start == end) continue;
        PangoFontDescription* desc = fontDescription(run.style.font);
        auto add = [&](PangoAttribute* a) {
            a->start_index = start;
            a->end_index = end;
            pango_attr_list_insert(attrs, a);
        };
        add(pango_attr_font_desc_new(desc));
        pango_font_description_free(desc);
        if (run.style.tracking != 0) add(pango_attr_letter_spacing_new(letterSpacing(run.style)));
        if (run.style.font.monospacedDigit) add(pango_attr_font_features_new("tnum"));
    }
    // Words broken to fit a line get no hyphen.
    if (!text.empty()) pango_attr_list_insert(attrs, pango_attr_insert_hyphens_new(FALSE));
    // Plain text only: never parsed as markup.
    pango_layout_set_text(layout, text.c_str(), static_cast<int>(text.size()));
    pango_layout_set_attributes(layout, attrs);
    pango_attr_list_unref(attrs);
    if (wrapWidth) {
        pango_layout_set_width(layout, static_cast<int>(std::ceil(std::max(0.0, *wrapWidth) * PANGO_SCALE)));
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    return layout;
}

PangoTextMeasurer::PangoTextMeasurer() = default;

PangoTextMeasurer::~PangoTextMeasurer() {
    if (context_) g_object_unref(context_);
}

PangoContext* PangoTextMeasurer::context() const {
    if (!context_) context_ = textEngine().newContext();
    return context_;
}

TextMetrics PangoTextMeasurer::measure(const std::vector<TextRun>& runs, std::optional<double> wrapWidth) const {
    std::string key = cacheKey(runs, wrapWidth);
    if (auto hit = measureCache().find(key)) return *hit;

    std::lock_guard lock(textEngine().mutex());
    TextMetrics m;
    if (auto line = wrapWidth ? std::nullopt : setGlyphLine(runs)) {
        m.size = {static_cast<double>(line->width) / PANGO_SCALE, static_cast<double>(line->height) / PANGO_SCALE};
        m.lineHeight = m.size.height;
        layoutShelf().put(key, {nullptr, std::move(line)});
    } else {
        PangoLayout* layout = createTextLayout(context(), runs, wrapWidth);
        PangoRectangle logical;
        pango_layout_get_extents(layout, nullptr, &logical);
        m.lines = std::max(1, pango_layout_get_line_count(layout));
        m.size = {static_cast<double>(logical.width) / PANGO_SCALE, static_cast<double>(logical.height) / PANGO_SCALE};
        m.lineHeight = m.size.height / m.lines;
        if (!wrapWidth) layoutShelf().put(key, {layout, std::nullopt});
        g_object_unref(layout);
    }
    measureCache().put(std::move(key), m);
    return m;
}

void keepMeasuredLayouts(std::size_t count) {
    std::lock_guard lock(textEngine().mutex());
    layoutShelf().resize(count);
}

UnwrappedText unwrappedText(const std::function<PangoContext*()>& context, const std::vector<TextRun>& runs) {
    if (const auto* kept = layoutShelf().find(cacheKey(runs, std::nullopt))) {
        if (kept->line) return {nullptr, kept->line};
        return {PANGO_LAYOUT(g_object_ref(kept->layout)), std::nullopt};
    }
    if (auto line = setGlyphLine(runs)) return {nullptr, std::move(line)};
    return {createTextLayout(context(), runs, std::nullopt), std::nullopt};
}

void prepareFonts() { (void)widgetFontConfig(); }

const TextMeasurer& systemTextMeasurer() {
    static const PangoTextMeasurer measurer;
    return measurer;
}

}  // namespace mw::render
