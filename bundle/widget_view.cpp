#include "bundle/widget_view.hpp"

#include "widgets/chrome/chrome.hpp"

namespace mw {

render::View entryView(const AnyEntry& entry, WidgetFamily family) {
    return visitKind(entry, [family](auto kind, const auto& e) { return kind.view(e, family); });
}

render::View widgetContent(const AnyEntry& entry, WidgetFamily family) {
    using namespace render;
    return ZStack({
                      body(WidgetSurface{}),
                      entryView(entry, family).frame(Frame::maxInfinity()).padding(kWidgetContentMargin),
                  })
        .widgetURL(entryTapURL(entry));
}

render::DisplayList layoutWidget(const AnyEntry& entry, WidgetFamily family, const render::TextMeasurer& measurer) {
    const auto size = widgetSize(family);
    return render::layout(widgetContent(entry, family), {size.width, size.height}, measurer);
}

}  // namespace mw
