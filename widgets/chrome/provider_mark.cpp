#include <string>

#include "model/brand.hpp"
#include "render/assets.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {

namespace {

constexpr double kDiscOpacity = 0.22;

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

// A tool without a logo: its initial in the mark's colour on a disc tinted
// with the same colour. A disc rather than a ring, so that a letter in a
// ring is never taken for a copyright sign.
render::View placeholder(const ProviderMarkView& mark, const render::Color& color) {
    using namespace render;
    using render::Color;
    const ProviderMark model{mark.toolID, mark.color, mark.size};
    const double inset = providerMarkPlaceholderInset(model);
    const double side = std::max(0.0, mark.size - 2 * inset);
    return ZStack({
                      Circle().fill(color.withOpacity(kDiscOpacity)),
                      Text(initialOf(mark.toolID))
                          .font(Font::system(side * 0.7, Weight::bold))
                          .lineLimit(1)
                          .minimumScaleFactor(0.5)
                          .foreground(color),
                  })
        .padding(inset)
        .frame(mark.size, mark.size);
}

}  // namespace

render::View body(const ProviderMarkView& mark) {
    using namespace render;
    using render::Color;
    const Color color = toRender(mark.color);
    const std::string asset = providerMarkAssetName(mark.toolID);
    if (!assetExists(asset)) return placeholder(mark, color);
    return Image::asset(asset, ContentMode::fit).templateRendering().foreground(color).frame(mark.size, mark.size);
}

}  // namespace mw
