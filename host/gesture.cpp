#include "host/gesture.hpp"

#include <cmath>

namespace mw {

GestureAction PointerGesture::press(PointerButton button, PointerPoint at, WidgetPosition windowAt) {
    if (button == PointerButton::secondary) {
        pressedAt_.reset();
        moving_ = false;
        return {GestureAction::Kind::openMenu, windowAt, at};
    }
    if (button != PointerButton::primary) return {};
    pressedAt_ = at;
    windowAtPress_ = windowAt;
    lastPosition_ = windowAt;
    moving_ = false;
    return {};
}

GestureAction PointerGesture::motion(PointerPoint at) {
    if (!pressedAt_) return {};
    const double dx = at.x - pressedAt_->x;
    const double dy = at.y - pressedAt_->y;
    if (!moving_) {
        // Like GTK's own check: beyond the threshold on either axis.
        if (std::abs(dx) <= threshold_ && std::abs(dy) <= threshold_) return {};
        moving_ = true;
        if (mode_ == MoveMode::windowManager) return {GestureAction::Kind::beginMove, windowAtPress_, *pressedAt_};
    }
    if (mode_ == MoveMode::windowManager) return {};
    const WidgetPosition next{windowAtPress_.x + static_cast<int>(std::lround(dx)),
                              windowAtPress_.y + static_cast<int>(std::lround(dy))};
    if (next == lastPosition_) return {};
    lastPosition_ = next;
    return {GestureAction::Kind::moveTo, next, at};
}

GestureAction PointerGesture::release(PointerButton button, PointerPoint at) {
    if (button != PointerButton::primary || !pressedAt_) return {};
    pressedAt_.reset();
    if (moving_) {
        if (mode_ == MoveMode::windowManager) return {};  // moveEnded says where it went
        moving_ = false;
        return {GestureAction::Kind::saveAt, lastPosition_, at};
    }
    return {GestureAction::Kind::openLink, lastPosition_, at};
}

GestureAction PointerGesture::moveEnded(WidgetPosition windowAt) {
    const bool wasMoving = moving_;
    moving_ = false;
    pressedAt_.reset();
    if (!wasMoving || windowAt == windowAtPress_) return {};
    return {GestureAction::Kind::saveAt, windowAt, {}};
}

GestureAction keyAction(WidgetKey key) {
    switch (key) {
        case WidgetKey::menu:
        case WidgetKey::shiftF10:
            return {GestureAction::Kind::openMenu, {}, {}};
        case WidgetKey::activate:
            return {GestureAction::Kind::openLink, {}, {-1, -1}};  // outside every row: the widget's link
        case WidgetKey::other:
            break;
    }
    return {};
}

}  // namespace mw
