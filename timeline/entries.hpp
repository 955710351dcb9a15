#pragma once
// The timeline entries of the five widgets. All entries of one timeline share
// payload, read status and options and differ only in `date`; views derive
// every time-dependent text from that date.

#include <optional>
#include <string>

#include "config/choices.hpp"
#include "config/options.hpp"
#include "payload/records.hpp"
#include "payload/store.hpp"
#include "platform/date.hpp"

namespace mw {

struct AccountsEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    bool operator==(const AccountsEntry&) const = default;
};

struct AccountsLimitEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetProviderChoice provider;  // "all" when the intent leaves it unset
    WidgetLimitChoice limit = WidgetLimitChoice::weekly;
    WidgetPercentChoice percent = WidgetPercentChoice::left;
    WidgetOrderChoice order = WidgetOrderChoice::mostRoom;
    bool operator==(const AccountsLimitEntry&) const = default;
};

struct DashboardEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetToolChoice chosen;
    bool operator==(const DashboardEntry&) const = default;
};

struct FocusEntry {
    Date date;
    WidgetPayload payload;
    WidgetToolChoice chosen;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetDetailStyle style = WidgetDetailStyle::classic;
    bool operator==(const FocusEntry&) const = default;
};

struct SparklineEntry {
    Date date;
    WidgetPayload payload;
    ReadStatus readStatus = ReadStatus::ok;
    WidgetToolChoice chosen;
    bool operator==(const SparklineEntry&) const = default;
};

// The tool a single-tool entry shows, and the key it names (for the
// self-report and the tap link).
std::optional<WidgetToolSnapshot> resolvedSnapshot(const FocusEntry& entry);
std::optional<WidgetToolSnapshot> resolvedSnapshot(const SparklineEntry& entry);
std::optional<WidgetToolSnapshot> resolvedSnapshot(const DashboardEntry& entry);
std::optional<std::string> resolvedToolKey(const FocusEntry& entry);
std::optional<std::string> resolvedToolKey(const SparklineEntry& entry);
std::optional<std::string> resolvedToolKey(const DashboardEntry& entry);

// The provider an Accounts by Limit entry is pinned to; nothing for "all".
std::optional<std::string> resolvedProviderID(const AccountsLimitEntry& entry);

}  // namespace mw
