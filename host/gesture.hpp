#pragma once
// What a press, a pointer motion, a release or a key on a widget window
// means, decided without a toolkit: a click opens the link under the
// pointer, a press that travels beyond the drag threshold moves the widget
// (by the pointer's travel since the press, never by summed steps), the
// secondary button or the menu keys open the context menu.

#include <optional>

#include "host/placements.hpp"

namespace mw {

struct PointerPoint {
    double x = 0;
    double y = 0;
    bool operator==(const PointerPoint&) const = default;
};

enum class PointerButton { primary, secondary, other };

// What the window does in answer.
struct GestureAction {
    enum class Kind {
        none,
        openMenu,   // the context menu, at the pointer
        beginMove,  // hand the move to the window manager from the press point
        moveTo,     // place the window at `position` now
        saveAt,     // the move ended at `position`: store it
        openLink,   // a click at `at` (window points)
    };
    Kind kind = Kind::none;
    WidgetPosition position;
    PointerPoint at;
    bool operator==(const GestureAction&) const = default;
};

// How the window is moved while the button is held: by the window manager
// (X11 moves the window itself after `beginMove`) or by the host setting the
// position on every motion (layer-shell margins).
enum class MoveMode { windowManager, host };

// One window's pointer gesture. Points are in one fixed frame for the whole
// gesture: the frame the press was reported in.
class PointerGesture {
  public:
    explicit PointerGesture(MoveMode mode, double threshold) : mode_(mode), threshold_(threshold) {}

    GestureAction press(PointerButton button, PointerPoint at, WidgetPosition windowAt);
    GestureAction motion(PointerPoint at);
    GestureAction release(PointerButton button, PointerPoint at);

    // A move is under way (the button is held past the threshold).
    bool moving() const { return moving_; }
    // The window manager's move ended: where the window came to rest.
    GestureAction moveEnded(WidgetPosition windowAt);

  private:
    MoveMode mode_;
    double threshold_;
    std::optional<PointerPoint> pressedAt_;
    WidgetPosition windowAtPress_;
    WidgetPosition lastPosition_;
    bool moving_ = false;
};

enum class WidgetKey { menu, shiftF10, activate, other };

// Keys on a focused widget window: the menu keys open the context menu,
// Enter or Space opens the widget's own link.
GestureAction keyAction(WidgetKey key);

}  // namespace mw
