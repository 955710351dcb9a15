#include "widgets/focus/card.hpp"

#include <algorithm>
#include <cstdio>

#include "model/brand.hpp"
#include "model/pace.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/focus/texts.hpp"

namespace mw {

using render::Font;
using render::HAlign;
using render::Text;
using render::View;
using render::Weight;

RingCentreSize ringCentreSize(bool hasInnerRing) {
    return hasInnerRing ? RingCentreSize{15, 35} : RingCentreSize{19, 50};
}

std::vector<WidgetUsageWindow> cardWindows(const WidgetAccount& account) {
    auto windows = shownWindows(account);
    if (windows.size() > 2) windows.resize(2);
    return windows;
}

double shownPercent(const WidgetUsageWindow& window, bool remaining) {
    return remaining ? roomLeft(window) : window.usedPercent;
}

std::optional<std::string> paceNote(const WidgetUsageWindow& window, Date now, bool remaining) {
    if (window.usedPercent >= 100) {
        if (window.resetAt && *window.resetAt > now) return "resets " + countdownText(*window.resetAt - now);
        return std::nullopt;
    }
    const auto expected = expectedPercent(window, now);
    if (!expected) return std::nullopt;
    return "vs " + percentText(remaining ? std::max(0.0, 100 - *expected) : *expected);
}

Color resetLineColor(const WidgetUsageWindow& window) {
    return window.usedPercent >= 100 ? dangerRed() : Color::tertiary();
}

namespace {

View header(const FocusCard& card, Color tool) {
    const auto& s = card.account.snapshot;
    return render::HStack(
        {
            body(ProviderMarkView{s.toolID, tool}),
            Text(s.displayName).font(Font::system(11, Weight::semibold)).lineLimit(1),
            body(FreshnessMark{card.now, card.updatedAt, false}),
        },
        {.alignment = render::VAlign::center, .spacing = 5});
}

// "62%" with the sign set smaller, and the window's name (or "left") under it.
View ringCentre(const WidgetUsageWindow& main, bool remaining, RingCentreSize size) {
    char number[32];
    std::snprintf(number, sizeof number, "%lld", percentValue(shownPercent(main, remaining)));
    const View figure = (Text(number).font(Font::system(size.pointSize, Weight::bold, render::Design::rounded)) +
                         Text("%").font(Font::system(size.pointSize * 0.55, Weight::bold, render::Design::rounded)))
                            .monospacedDigit()
                            .lineLimit(1)
                            .minimumScaleFactor(0.6);
    const View caption = Text(remaining ? "left" : main.label)
                             .font(Font::system(8, Weight::semibold))
                             .foreground(Color::secondary())
                             .lineLimit(1)
                             .minimumScaleFactor(0.8);
    // The window rows read the same figure with what it means.
    return render::VStack({figure, caption}, {.alignment = HAlign::center, .spacing = 0})
        .accessibilityLabel("")
        .frame(size.side, size.side);
}

View windowRow(const WidgetUsageWindow& window, Color brand, Date now, bool remaining) {
    const View label =
        Text(window.label).font(Font::system(9, Weight::semibold)).foreground(Color::secondary()).lineLimit(1);
    const View percent = Text(percentText(shownPercent(window, remaining)))
                             .font(Font::system(13, Weight::bold, render::Design::rounded))
                             .monospacedDigit()
                             .minimumScaleFactor(0.75)
                             .lineLimit(1)
                             .foreground(fillColor(window, brand, now))
                             .accessibilityLabel(spokenFigure(percentText(shownPercent(window, remaining)), window,
                                                              now, remaining, {.reset = false}));
    View reset;
    if (window.resetAt) {
        reset = render::HStack({render::Image::system("arrow.clockwise"), Text(countdownText(*window.resetAt - now))},
                               {.alignment = render::VAlign::center, .spacing = 2})
                    .font(Font::system(9, Weight::medium))
                    .monospacedDigit()
                    .minimumScaleFactor(0.8)
                    .lineLimit(1)
                    .foreground(resetLineColor(window))
                    .accessibilityLabel(spokenReset(window.resetAt, now));
    }
    // The label sits over the figure rather than beside it: beside the ring
    // of a small card there is room for "100%" at its full size, but not for
    // "Week" next to it.
    return render::VStack({label, percent, reset}, {.alignment = HAlign::leading, .spacing = 0});
}

View paceLine(const WidgetUsageWindow& main, Date now, bool remaining) {
    const auto text = paceText(main, now);
    if (!text) return {};
    const Color colour = paceColor(main, now);
    View note;
    if (const auto n = paceNote(main, now, remaining)) {
        // "vs 86%" is the share expected by now.
        std::string words = spokenReset(main.resetAt, now);
        if (const auto expected = expectedPercent(main, now); expected && main.usedPercent < 100)
            words = percentText(remaining ? std::max(0.0, 100 - *expected) : *expected) +
                    (remaining ? " left expected by now" : " used expected by now");
        note = Text(*n).font(Font::system(9)).foreground(Color::tertiary()).accessibilityLabel(words);
    }
    return render::HStack({render::Circle().fill(colour).frame(5, 5),
                           Text(*text).font(Font::system(9, Weight::semibold)).foreground(colour), note},
                          {.alignment = render::VAlign::center, .spacing = 4})
        .lineLimit(1);
}

View quotaBody(const FocusCard& card, const std::vector<WidgetUsageWindow>& windows, Color tool) {
    const WidgetUsageWindow& main = windows.front();
    const std::optional<WidgetUsageWindow> inner =
        windows.size() > 1 ? std::optional<WidgetUsageWindow>(windows[1]) : std::nullopt;
    const View rings =
        body(PaceRings{.outer = main, .inner = inner, .brand = tool, .now = card.now, .remaining = card.remaining})
            .frame(76, 76)
            .overlay(ringCentre(main, card.remaining, ringCentreSize(inner.has_value())));
    std::vector<View> rows;
    for (const auto& w : windows) rows.push_back(windowRow(w, tool, card.now, card.remaining));
    const View column = render::VStack(std::move(rows), {.alignment = HAlign::leading, .spacing = 8})
                            .frame(render::Frame::maxWidthInfinity(render::Alignment::leading()));
    return render::VStack({render::HStack({rings, column}, {.alignment = render::VAlign::center, .spacing = 8}),
                           paceLine(main, card.now, card.remaining)},
                          {.alignment = HAlign::leading, .spacing = 8});
}

View figureBody(const WidgetToolSnapshot& s) {
    return render::VStack(
        {
            Text(s.menuBarText)
                .font(Font::system(26, Weight::bold, render::Design::rounded))
                .monospacedDigit()
                .lineLimit(1)
                .minimumScaleFactor(0.7),
            Text("No quota window").font(Font::system(9)).foreground(Color::tertiary()),
        },
        {.alignment = HAlign::leading, .spacing = 2});
}

}  // namespace

View body(const FocusCard& card) {
    const Color tool = toolColor(card.account.snapshot);
    const auto windows = cardWindows(card.account);
    return render::VStack({header(card, tool),
                           windows.empty() ? figureBody(card.account.snapshot) : quotaBody(card, windows, tool)},
                          {.alignment = HAlign::leading, .spacing = 8})
        .frame(render::Frame::maxInfinity(render::Alignment::topLeading()));
}

}  // namespace mw
