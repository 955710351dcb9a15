#pragma once
// The option enumerations of the configurable widgets. They sit in the model
// because the limit board ranks by them; the configuration layer offers them.
// Each has one table: case, stored raw value, display text, in case order,
// and the name of the option it offers.

#include <array>
#include <string_view>

#include "platform/option_table.hpp"

namespace mw {

enum class WidgetLimitChoice { weekly, fiveHour };
enum class WidgetPercentChoice { left, used };
enum class WidgetOrderChoice { mostRoom, app };
enum class WidgetDetailStyle { classic, enhanced };

template <>
struct OptionTable<WidgetLimitChoice> {
    static constexpr std::string_view typeDisplayName = "Limit";
    static constexpr std::array<OptionCase<WidgetLimitChoice>, 2> cases{{
        {WidgetLimitChoice::weekly, "weekly", "Weekly"},
        {WidgetLimitChoice::fiveHour, "fiveHour", "5-hour"},
    }};
};

template <>
struct OptionTable<WidgetPercentChoice> {
    static constexpr std::string_view typeDisplayName = "Show";
    static constexpr std::array<OptionCase<WidgetPercentChoice>, 2> cases{{
        {WidgetPercentChoice::left, "left", "Percent left"},
        {WidgetPercentChoice::used, "used", "Percent used"},
    }};
};

template <>
struct OptionTable<WidgetOrderChoice> {
    static constexpr std::string_view typeDisplayName = "Order";
    static constexpr std::array<OptionCase<WidgetOrderChoice>, 2> cases{{
        {WidgetOrderChoice::mostRoom, "mostRoom", "Most room first"},
        {WidgetOrderChoice::app, "app", "Same as the app"},
    }};
};

template <>
struct OptionTable<WidgetDetailStyle> {
    static constexpr std::string_view typeDisplayName = "Style";
    static constexpr std::array<OptionCase<WidgetDetailStyle>, 2> cases{{
        {WidgetDetailStyle::classic, "classic", "Classic"},
        {WidgetDetailStyle::enhanced, "enhanced", "Enhanced (session, weekly and pace)"},
    }};
};

}  // namespace mw
