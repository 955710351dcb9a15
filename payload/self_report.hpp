#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "payload/records.hpp"
#include "payload/store.hpp"
#include "platform/bundle_info.hpp"

namespace mw {

inline constexpr const char* kSelfReportFileName = "widget-self-report.json";

// The diagnostic record a timeline build leaves beside the payload.
struct WidgetSelfReport {
    Date recordedAt;
    std::string bundleVersion;
    std::string bundlePath;
    std::string kind;
    std::string payloadReadStatus;
    std::optional<Date> payloadUpdatedAt;
    std::optional<std::string> resolvedToolID;
    bool operator==(const WidgetSelfReport&) const = default;
};

// Exists only so the writer can find the binary that holds this code.
class SelfReportAnchor {
public:
    static BundleInfo bundle();
};

WidgetSelfReport makeSelfReport(const std::string& kind, ReadStatus status, const WidgetPayload& payload,
                                const std::optional<std::string>& resolvedToolID, Date now, const BundleInfo& bundle);

// Compact JSON, keys in declaration order, absent optionals omitted.
std::string encodeSelfReport(const WidgetSelfReport& report);

// Writes the report atomically into the container; every failure is silent.
void writeSelfReport(const std::optional<std::filesystem::path>& container, const std::string& kind,
                     ReadStatus status, const WidgetPayload& payload,
                     const std::optional<std::string>& resolvedToolID, Date now,
                     const BundleInfo& bundle = SelfReportAnchor::bundle());

}  // namespace mw
