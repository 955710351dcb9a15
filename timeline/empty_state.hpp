#pragma once
// The centred panel a widget shows in place of its content: a symbol, a
// headline and one sentence saying what to do. A plain value; the widget
// builds it afresh for each render.

#include <string>

namespace mw {

struct WidgetEmptyState {
    std::string title;
    std::string subtitle;
    std::string systemImage;  // a symbol name
    bool operator==(const WidgetEmptyState&) const = default;
};

}  // namespace mw
