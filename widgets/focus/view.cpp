#include "widgets/focus/view.hpp"

#include <algorithm>

#include "model/accounts.hpp"
#include "model/brand.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/focus/card.hpp"
#include "widgets/chrome/panels.hpp"
#include "widgets/focus/content.hpp"
#include "widgets/focus/texts.hpp"

namespace mw {

using render::Font;
using render::HAlign;
using render::Text;
using render::View;
using render::Weight;

double classicRingPercent(const WidgetToolSnapshot& snapshot, bool remaining) {
    return remaining ? std::max(0.0, 100 - snapshot.usagePercent) : snapshot.usagePercent;
}

namespace {

View ringVariant(const WidgetToolSnapshot& s, const WidgetPayload& payload, Date now) {
    const bool remaining = payload.showRemaining;
    const double v = classicRingPercent(s, remaining);
    const UsageRing ring{v, colorFromHex(s.brandHex).value_or(Color::accent()), s.dangerLevel, 9};

    View reset;
    if (s.resetAt && *s.resetAt > now) {
        reset = Text("resets " + countdownText(*s.resetAt - now))
                    .font(Font::system(9, Weight::medium))
                    .foreground(Color::tertiary())
                    .accessibilityLabel(spokenReset(s.resetAt, now));
    }
    const View texts =
        render::VStack(
            {
                Text(upperCased(s.displayName))
                    .font(Font::system(9, Weight::semibold))
                    .tracking(0.6)
                    .foreground(Color::secondary()),
                Text(percentText(v) + (remaining ? " left" : ""))
                    .font(Font::system(28, Weight::bold, render::Design::rounded))
                    .foreground(Color::primary())
                    .lineLimit(1)
                    .minimumScaleFactor(0.6)
                    .accessibilityLabel(spokenRingFigure(percentText(v), remaining, s.dangerLevel)),
                reset,
                Text(ageText(now, payload.updatedAt)).font(Font::system(8)).foreground(Color::tertiary()),
            },
            {.alignment = HAlign::center, .spacing = 2})
            .padding(render::Edge::horizontal, 24);
    return body(ring).padding(6).overlay(texts, render::Alignment::center());
}

View textVariant(const WidgetToolSnapshot& s, const WidgetPayload& payload, Date now) {
    return render::VStack(
               {
                   Text(upperCased(s.displayName))
                       .font(Font::system(10, Weight::semibold))
                       .tracking(0.6)
                       .foreground(Color::secondary())
                       .lineLimit(1)
                       .minimumScaleFactor(0.75),
                   Text(s.menuBarText)
                       .font(Font::system(28, Weight::bold, render::Design::rounded))
                       .monospacedDigit()
                       .lineLimit(1)
                       .minimumScaleFactor(0.6),
                   Text(ageText(now, payload.updatedAt)).font(Font::system(8)).foreground(Color::tertiary()),
               },
               {.alignment = HAlign::center, .spacing = 6})
        .frame(render::Frame::maxInfinity(render::Alignment::center()));
}

}  // namespace

View focusClassicView(const WidgetToolSnapshot& snapshot, const WidgetPayload& payload, Date now) {
    if (snapshot.hasQuotaHeadline.value_or(true)) return ringVariant(snapshot, payload, now);
    return textVariant(snapshot, payload, now);
}

View focusView(const FocusEntry& entry, WidgetFamily /*family: both looks are the same in every size*/) {
    if (const auto panel = focusPanel(entry)) return body(*panel);
    const auto snapshot = resolvedSnapshot(entry);
    if (!snapshot) return body(missingToolPanel(entry.payload, entry.readStatus, entry.chosen));
    if (entry.style == WidgetDetailStyle::enhanced)
        return body(
            FocusCard{WidgetAccount{*snapshot}, entry.date, entry.payload.updatedAt, entry.payload.showRemaining});
    return focusClassicView(*snapshot, entry.payload, entry.date);
}

}  // namespace mw
