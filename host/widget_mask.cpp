#include "host/widget_mask.hpp"

namespace mw {

render::DisplayList maskedToWidgetShape(const render::DisplayList& list) {
    render::DisplayList masked;
    masked.size = list.size;
    masked.tapURL = list.tapURL;
    masked.links = list.links;
    masked.ops.reserve(list.ops.size() + 2);
    const render::Rect bounds{0, 0, list.size.width, list.size.height};
    masked.ops.push_back({bounds, {}, 0, render::ClipBegin{render::Shape::roundedRectangle(kWidgetCornerRadius)}});
    masked.ops.insert(masked.ops.end(), list.ops.begin(), list.ops.end());
    masked.ops.push_back({bounds, {}, 0, render::ClipEnd{}});
    return masked;
}

}  // namespace mw
