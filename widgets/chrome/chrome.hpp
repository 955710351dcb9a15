#pragma once
// The views every widget shares: surface, badge, empty panel, usage ring,
// freshness mark, provider mark, the pace drawings and the tap links. Each
// view is a small record with the fields it draws from and a `body` that
// builds its element tree.

#include <cstdint>
#include <optional>
#include <string>

#include "model/pace.hpp"
#include "payload/records.hpp"
#include "platform/date.hpp"
#include "render/view.hpp"
#include "widgets/chrome/empty_state.hpp"

namespace mw {

// ---- links

// "meterwick://open", made once per process.
const std::string& openAppURL();
// "meterwick://tool/<key>" with the key escaped as a path; the open-app URL
// when the key is empty.
std::string toolLinkURL(const std::string& toolKey);

// ---- texts

// "now" under a minute, then "<m>m ago", then "<h>h ago" (no days).
std::string ageText(Date reference, Date earlier);

// ---- words for screen readers

// What a window's figure says to someone who cannot see its colour, bar and
// pace tick: the figure, "used" or "left", then the pace ("over pace",
// "limit reached"), then "resets in 40m". A view that draws the pace or the
// countdown as text of its own leaves that part out.
struct FigureWords {
    bool pace = true;
    bool reset = true;
    bool operator==(const FigureWords&) const = default;
};
std::string spokenFigure(const std::string& figure, const WidgetUsageWindow& window, Date now, bool remaining,
                         FigureWords words = {});
// A drawn countdown as it is read: "resets in 2h 10m", "resets now" once
// the reset is past; empty without a reset.
std::string spokenReset(std::optional<Date> resetAt, Date now);
// A usage ring's figure, whose colour shows the application's danger level:
// "91% used, critical", "40% left".
std::string spokenRingFigure(const std::string& figure, bool remaining, std::int64_t dangerLevel);

// ---- views

// The widget's background: the window colour at 0.98 with a hairline on top.
struct WidgetSurface {
    bool operator==(const WidgetSurface&) const = default;
};
render::View body(const WidgetSurface&);

// The application icon and the word "Meterwick".
struct BrandBadge {
    bool operator==(const BrandBadge&) const = default;
};
render::View body(const BrandBadge&);

// The centred empty/error panel.
render::View body(const WidgetEmptyState& state);

struct UsageRing {
    double percent = 0;
    Color brandColor;
    std::int64_t dangerLevel = 0;
    double lineWidth = 9;
    bool operator==(const UsageRing&) const = default;
};
render::View body(const UsageRing& ring);

// The data-age mark; empty (no space) while fresh unless `always`.
struct FreshnessMark {
    Date now;
    Date updatedAt;
    bool always = false;
    bool operator==(const FreshnessMark&) const = default;
};
render::View body(const FreshnessMark& mark);

// A tool's monochrome logo ("provider-<toolID>" under assets/), or the
// placeholder mark (the tool's initial, bold, on a solid rounded square in
// the tool's colour) when there is none.
struct ProviderMarkView {
    std::string toolID;
    Color color;
    double size = 14;
    bool operator==(const ProviderMarkView&) const = default;
};
render::View body(const ProviderMarkView& mark);

// A tick on a ring: 0 at the top, 1 a full turn.
struct PaceTick {
    double fraction = 0;
    double length = 0;
    bool operator==(const PaceTick&) const = default;
};
render::View body(const PaceTick& tick);

// One or two concentric pace rings (the main window outside).
struct PaceRings {
    WidgetUsageWindow outer;
    std::optional<WidgetUsageWindow> inner;
    Color brand;
    Date now;
    bool remaining = false;
    double outerWidth = 7;
    double innerWidth = 5;
    bool operator==(const PaceRings&) const = default;
};
render::View body(const PaceRings& rings);

// The bar form: track, fill in the fill colour, tick at the elapsed fraction.
struct PaceBar {
    WidgetUsageWindow window;
    Color brand;
    Date now;
    bool remaining = false;
    double height = 5;
    bool operator==(const PaceBar&) const = default;
};
render::View body(const PaceBar& bar);

}  // namespace mw
