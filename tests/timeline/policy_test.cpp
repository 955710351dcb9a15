#include "timeline/policy.hpp"

#include <gtest/gtest.h>

#include "support/payloads.hpp"

namespace mw {
namespace {

using testing::kNow;
using testing::payloadOf;
using testing::tool;

constexpr double kMinute = 60;

std::vector<double> offsets(const std::vector<Date>& dates) {
    std::vector<double> out;
    for (const Date d : dates) out.push_back((d - kNow) / kMinute);
    return out;
}

WidgetPayload writtenAgo(double minutes, bool withTools = true) {
    auto p = withTools ? payloadOf({tool("claude")}) : payloadOf({});
    p.updatedAt = kNow - minutes * kMinute;
    return p;
}

TEST(TimelinePolicy, EntriesAndReloadPerDataState) {
    struct Case {
        const char* name;
        WidgetPayload payload;
        std::vector<double> accountsMinutes;  // look-ahead form
        std::vector<double> singleMinutes;    // the single-tool widgets' form
        double reloadSeconds;
    };
    const Case cases[] = {
        {"never written", emptyPayload(), {0, 15, 30}, {0}, 120},
        {"never written, with tools", payloadOf({tool("claude")}, kDistantPast), {0, 15, 30}, {0}, 120},
        {"written just now", writtenAgo(0), {0, 15, 30}, {0, 30}, 600},
        {"10 min old", writtenAgo(10), {0, 15, 20}, {0, 20}, 600},
        {"10 min old, no tools", writtenAgo(10, false), {0, 15, 20}, {0, 20}, 120},
        {"15 min old: the 15-minute offset is the stale moment", writtenAgo(15), {0, 15}, {0, 15}, 600},
        {"20 min old", writtenAgo(20), {0, 10}, {0, 10}, 600},
        {"29 min 59 s old", writtenAgo(29 + 59.0 / 60), {0, 1.0 / 60}, {0, 1.0 / 60}, 600},
        {"exactly 30 min old", writtenAgo(30), {0}, {0}, 120},
        {"an hour in the future", writtenAgo(-60), {0, 15, 30, 90}, {0, 90}, 600},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(offsets(timelineDates(c.payload, kNow, true)), c.accountsMinutes) << c.name;
        EXPECT_EQ(offsets(timelineDates(c.payload, kNow, false)), c.singleMinutes) << c.name;
        EXPECT_EQ(reloadDate(c.payload, kNow) - kNow, c.reloadSeconds) << c.name;
    }
}

TEST(TimelinePolicy, DatesAlwaysAscendStrictly) {
    for (double minutes = -120; minutes <= 120; minutes += 0.25) {
        for (const bool lookAhead : {true, false}) {
            const auto dates = timelineDates(writtenAgo(minutes), kNow, lookAhead);
            ASSERT_FALSE(dates.empty());
            EXPECT_EQ(dates.front(), kNow);
            for (std::size_t i = 1; i < dates.size(); ++i)
                EXPECT_LT(dates[i - 1], dates[i]) << minutes << " min, entry " << i;
        }
    }
}

}  // namespace
}  // namespace mw
