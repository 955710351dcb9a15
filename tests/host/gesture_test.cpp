#include "host/gesture.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace mw {
namespace {

using Kind = GestureAction::Kind;

// One pointer event of a gesture and what the window must do in answer.
struct Step {
    enum { press, motion, release, moveEnded } event;
    PointerButton button = PointerButton::primary;
    PointerPoint at;
    Kind expected = Kind::none;
    WidgetPosition position;  // checked for moveTo and saveAt; for moveEnded, where the window rests
};

Step press(PointerPoint at, PointerButton button = PointerButton::primary, Kind expected = Kind::none) {
    return {Step::press, button, at, expected, {}};
}
Step motion(PointerPoint at, Kind expected = Kind::none, WidgetPosition position = {}) {
    return {Step::motion, PointerButton::primary, at, expected, position};
}
Step release(PointerPoint at, Kind expected = Kind::none, WidgetPosition position = {},
             PointerButton button = PointerButton::primary) {
    return {Step::release, button, at, expected, position};
}
Step moveEnded(WidgetPosition restsAt, Kind expected = Kind::none) {
    return {Step::moveEnded, PointerButton::primary, {}, expected, restsAt};
}

struct Case {
    const char* what;
    MoveMode mode;
    std::vector<Step> steps;
};

TEST(PointerGesture, TurnsPointerEventsIntoClicksMovesAndMenus) {
    const WidgetPosition window{100, 50};
    const auto S = PointerButton::secondary;
    const Case cases[] = {
        {"a click opens the link where the button went up",
         MoveMode::host,
         {press({10, 10}), release({11, 10}, Kind::openLink)}},
        {"motion within the threshold is still a click",
         MoveMode::host,
         {press({10, 10}), motion({14, 6}), release({14, 6}, Kind::openLink)}},
        // The pointer's travel since the press, not the sum of the steps: a
        // compositor that reports each motion from the press-time surface
        // must move the window by exactly the travel.
        {"a host-moved drag follows the pointer's travel exactly",
         MoveMode::host,
         {press({10, 10}), motion({30, 10}, Kind::moveTo, {120, 50}), motion({50, 10}, Kind::moveTo, {140, 50}),
          motion({50, 10}),  // the same place again: nothing to do
          motion({210, 210}, Kind::moveTo, {300, 250}), release({210, 210}, Kind::saveAt, {300, 250})}},
        {"a drag back to where it started still saves, and opens nothing",
         MoveMode::host,
         {press({10, 10}), motion({40, 10}, Kind::moveTo, {130, 50}), motion({10, 10}, Kind::moveTo, {100, 50}),
          release({10, 10}, Kind::saveAt, {100, 50})}},
        {"the window manager moves it: one hand-over, then where it rested",
         MoveMode::windowManager,
         {press({500, 400}), motion({520, 400}, Kind::beginMove), motion({600, 400}),
          moveEnded({180, 50}, Kind::saveAt)}},
        {"a window-manager move that ends where it began saves nothing",
         MoveMode::windowManager,
         {press({500, 400}), motion({520, 400}, Kind::beginMove), moveEnded({100, 50})}},
        {"the secondary button opens the menu and cancels a press",
         MoveMode::host,
         {press({10, 10}), press({10, 10}, S, Kind::openMenu), motion({90, 90}), release({90, 90})}},
        {"a release without a press (it began elsewhere) does nothing", MoveMode::host, {release({10, 10})}},
        {"other buttons do nothing",
         MoveMode::host,
         {press({10, 10}, PointerButton::other), release({10, 10}, Kind::none, {}, PointerButton::other)}},
    };
    for (const auto& c : cases) {
        PointerGesture gesture(c.mode, 8);
        for (std::size_t i = 0; i < c.steps.size(); ++i) {
            const auto& s = c.steps[i];
            GestureAction action;
            switch (s.event) {
                case Step::press:
                    action = gesture.press(s.button, s.at, window);
                    break;
                case Step::motion:
                    action = gesture.motion(s.at);
                    break;
                case Step::release:
                    action = gesture.release(s.button, s.at);
                    break;
                case Step::moveEnded:
                    action = gesture.moveEnded(s.position);  // where the window came to rest
                    break;
            }
            EXPECT_EQ(action.kind, s.expected) << c.what << ", step " << i;
            if (s.expected == Kind::moveTo || s.expected == Kind::saveAt) {
                EXPECT_EQ(action.position, s.position) << c.what << ", step " << i;
            }
        }
        EXPECT_FALSE(gesture.moving()) << c.what << ": the gesture is over";
    }
}

TEST(PointerGesture, KeysOpenTheMenuOrTheWidgetsOwnLink) {
    EXPECT_EQ(keyAction(WidgetKey::menu).kind, Kind::openMenu);
    EXPECT_EQ(keyAction(WidgetKey::shiftF10).kind, Kind::openMenu);
    const auto activate = keyAction(WidgetKey::activate);
    EXPECT_EQ(activate.kind, Kind::openLink);
    EXPECT_LT(activate.at.x, 0) << "outside every row, so the widget's link opens";
    EXPECT_EQ(keyAction(WidgetKey::other).kind, Kind::none);
}

}  // namespace
}  // namespace mw
