#include "platform/date.hpp"

#include <gtest/gtest.h>

namespace mw {
namespace {

struct ParseCase {
    const char* text;
    std::optional<double> unix;  // nothing: refused
};

class ParseISO8601 : public ::testing::TestWithParam<ParseCase> {};

TEST_P(ParseISO8601, AcceptsOnlyWholeSecondsWithAZone) {
    const auto& c = GetParam();
    const auto parsed = parseISO8601(c.text);
    ASSERT_EQ(parsed.has_value(), c.unix.has_value()) << c.text;
    if (parsed) {
        EXPECT_DOUBLE_EQ(parsed->unixSeconds(), *c.unix) << c.text;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ParseISO8601,
    ::testing::Values(
        ParseCase{"2025-01-31T14:05:00Z", 1738332300},
        ParseCase{"2025-01-31T16:05:00+02:00", 1738332300},
        ParseCase{"2025-01-31T09:35:00-04:30", 1738332300},
        ParseCase{"2001-01-01T00:00:00Z", 978307200},
        ParseCase{"1970-01-01T00:00:00Z", 0},
        ParseCase{"0001-01-01T00:00:00Z", -62135769600},  // Julian, like the platform
        ParseCase{"1582-10-04T00:00:00Z", -12219379200},
        ParseCase{"1582-10-15T00:00:00Z", -12219292800},
        ParseCase{"1582-10-10T00:00:00Z", std::nullopt},  // skipped by the calendar reform
        ParseCase{"1500-02-29T00:00:00Z", -14825894400},  // a Julian leap day
        ParseCase{"9999-12-31T23:59:59Z", 253402300799},
        ParseCase{"0000-01-01T00:00:01Z", std::nullopt},       // no year 0 in the text form
        ParseCase{"0001-01-01T00:00:00+00:01", std::nullopt},  // an instant before year 1
        ParseCase{"9999-12-31T23:59:59-00:01", std::nullopt},  // and after year 9999
        ParseCase{"0001-01-01T00:01:00+00:01", -62135769600},
        ParseCase{"2024-02-29T12:00:00Z", 1709208000},   // leap year
        ParseCase{"2000-02-29T00:00:00Z", 951782400},    // divisible by 400
        ParseCase{"2023-02-29T00:00:00Z", std::nullopt},  // not a leap year
        ParseCase{"1900-02-29T00:00:00Z", std::nullopt},  // century, not by 400
        ParseCase{"2025-04-31T00:00:00Z", std::nullopt},
        ParseCase{"2025-13-01T00:00:00Z", std::nullopt},
        ParseCase{"2025-00-10T00:00:00Z", std::nullopt},
        ParseCase{"2025-01-00T00:00:00Z", std::nullopt},
        ParseCase{"2025-01-31T24:00:00Z", std::nullopt},
        ParseCase{"2025-01-31T23:60:00Z", std::nullopt},
        ParseCase{"2025-01-31T23:59:60Z", std::nullopt},
        ParseCase{"2025-01-31T14:05:00.123Z", std::nullopt},  // fractional seconds
        ParseCase{"2025-01-31T14:05:00", std::nullopt},       // no zone
        ParseCase{"2025-01-31 14:05:00Z", std::nullopt},
        ParseCase{"2025-01-31T14:05Z", std::nullopt},
        ParseCase{"2025-01-31T14:05:00+0200", std::nullopt},
        ParseCase{"2025-01-31T14:05:00+24:00", std::nullopt},
        ParseCase{"2025-01-31T14:05:00Z ", std::nullopt},
        ParseCase{"+2025-01-31T14:05:00Z", std::nullopt},
        ParseCase{"２025-01-31T14:05:00Z", std::nullopt},
        ParseCase{"", std::nullopt}));

TEST(FormatISO8601, WritesUTCWithZAndRoundTrips) {
    EXPECT_EQ(formatISO8601(*parseISO8601("2025-01-31T16:05:00+02:00")), "2025-01-31T14:05:00Z");
    EXPECT_EQ(formatISO8601(Date{0}), "2001-01-01T00:00:00Z");
    EXPECT_EQ(formatISO8601(kDistantPast), "0001-01-01T00:00:00Z");
    EXPECT_EQ(formatISO8601(Date::fromUnix(-1)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(formatISO8601(Date{0.75}), "2001-01-01T00:00:00Z");  // fractions are never written
    for (const char* text : {"2024-02-29T23:59:59Z", "1999-12-31T00:00:01Z", "9999-12-31T23:59:59Z",
                             "1582-10-04T23:59:59Z", "1582-10-15T00:00:00Z", "0800-02-29T12:00:00Z"})
        EXPECT_EQ(formatISO8601(*parseISO8601(text)), text);
}

TEST(FormatISO8601, ClampsDatesOutsideTheTextForm) {
    EXPECT_EQ(formatISO8601(Date{1e300}), "9999-12-31T23:59:59Z");
    EXPECT_EQ(formatISO8601(Date{-1e300}), "0001-01-01T00:00:00Z");
}

}  // namespace
}  // namespace mw
