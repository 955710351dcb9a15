#include "bundle/widget_view.hpp"

#include "widgets/accounts/view.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/dashboard/view.hpp"
#include "widgets/focus/view.hpp"
#include "widgets/limit/view.hpp"
#include "widgets/sparkline/view.hpp"

namespace mw {
namespace {

template <class... Fs>
struct Overloaded : Fs... {
    using Fs::operator()...;
};
template <class... Fs>
Overloaded(Fs...) -> Overloaded<Fs...>;

}  // namespace

render::View entryView(const AnyEntry& entry, WidgetFamily family) {
    return std::visit(Overloaded{
                          [family](const FocusEntry& e) { return focusView(e, family); },
                          [family](const AccountsEntry& e) { return accountsWidgetView(e, family); },
                          [family](const AccountsLimitEntry& e) { return accountsLimitView(e, family); },
                          [family](const SparklineEntry& e) { return sparklineView(e, family); },
                          [family](const DashboardEntry& e) { return dashboardView(e, family); },
                      },
                      entry);
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
