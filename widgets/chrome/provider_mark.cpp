#include <string>

#include "model/brand.hpp"
#include "render/assets.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {

namespace {

// The square's corners, as a share of its side.
constexpr double kSquareCornerShare = 0.26;
// The initial's point size, as a share of the whole mark: a bold capital of
// half the mark or more reads as a logo's weight beside the drawn ones.
constexpr double kInitialShare = 0.58;

// The first character of the tool's id, upper-cased when it is an ASCII
// letter; a multi-byte character is kept whole and as it is.
std::string initialOf(const std::string& toolID) {
    if (toolID.empty()) return {};
    const auto lead = static_cast<unsigned char>(toolID.front());
    if (lead < 0x80) {
        const char c = lead >= 'a' && lead <= 'z' ? static_cast<char>(lead - 'a' + 'A') : static_cast<char>(lead);
        return std::string(1, c);
    }
    std::size_t length = 1;
    while (length < toolID.size() && (static_cast<unsigned char>(toolID[length]) & 0xC0) == 0x80) ++length;
    return toolID.substr(0, length);
}

// Black or white, whichever stands out more from the tool's colour.
Color initialColor(const Color& tool) {
    const render::RGBA c{tool.red(), tool.green(), tool.blue(), 1};
    const double onWhite = render::contrastRatio({1, 1, 1, 1}, c);
    const double onBlack = render::contrastRatio({0, 0, 0, 1}, c);
    return onWhite >= onBlack ? Color::white() : Color::black(0.85);
}

// A tool without a logo: its initial, bold, on a solid rounded square in the
// tool's colour that fills the inset frame, so that it weighs as much as a
// drawn logo of the same size.
render::View placeholder(const ProviderMarkView& mark, const Color& color) {
    using namespace render;
    const ProviderMark model{mark.toolID, mark.color, mark.size};
    const double inset = providerMarkPlaceholderInset(model);
    const double side = std::max(0.0, mark.size - 2 * inset);
    const Color letter = mark.color.kind() == Color::Kind::rgb ? initialColor(mark.color) : Color::white();
    return ZStack({
                      RoundedRectangle(side * kSquareCornerShare).fill(color),
                      Text(initialOf(mark.toolID))
                          .font(Font::system(mark.size * kInitialShare, Weight::bold))
                          .lineLimit(1)
                          .foreground(letter),
                  })
        .padding(inset)
        .frame(mark.size, mark.size);
}

}  // namespace

render::View body(const ProviderMarkView& mark) {
    using namespace render;
    const Color color = mark.color;
    const std::string asset = providerMarkAssetName(mark.toolID);
    if (!assetExists(asset)) return placeholder(mark, color);
    return Image::asset(asset, ContentMode::fit).templateRendering().foreground(color).frame(mark.size, mark.size);
}

}  // namespace mw
