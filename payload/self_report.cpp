#include "payload/self_report.hpp"

#include <nlohmann/json.hpp>

#include "platform/atomic_write.hpp"

namespace mw {
namespace {

// Lives in the same binary as the writer; its address finds that binary.
const char kAnchorTag = 0;

}  // namespace

BundleInfo SelfReportAnchor::bundle() { return bundleInfoContaining(&kAnchorTag); }

WidgetSelfReport makeSelfReport(const std::string& kind, ReadStatus status, const WidgetPayload& payload,
                                const std::optional<std::string>& resolvedToolID, Date now, const BundleInfo& bundle) {
    WidgetSelfReport report;
    report.recordedAt = now;
    report.bundleVersion = bundle.version.value_or("unknown");
    report.bundlePath = bundle.path;
    report.kind = kind;
    report.payloadReadStatus = std::string(rawValue(status));
    if (wasWritten(payload)) report.payloadUpdatedAt = payload.updatedAt;
    report.resolvedToolID = resolvedToolID;
    return report;
}

std::string encodeSelfReport(const WidgetSelfReport& report) {
    nlohmann::ordered_json o;
    o["recordedAt"] = formatISO8601(report.recordedAt);
    o["bundleVersion"] = report.bundleVersion;
    o["bundlePath"] = report.bundlePath;
    o["kind"] = report.kind;
    o["payloadReadStatus"] = report.payloadReadStatus;
    if (report.payloadUpdatedAt) o["payloadUpdatedAt"] = formatISO8601(*report.payloadUpdatedAt);
    if (report.resolvedToolID) o["resolvedToolID"] = *report.resolvedToolID;
    return o.dump();  // throws on text that is not UTF-8
}

void writeSelfReport(const std::optional<std::filesystem::path>& container, const std::string& kind,
                     ReadStatus status, const WidgetPayload& payload,
                     const std::optional<std::string>& resolvedToolID, Date now, const BundleInfo& bundle) {
    if (!container) return;
    std::string bytes;
    try {
        bytes = encodeSelfReport(makeSelfReport(kind, status, payload, resolvedToolID, now, bundle));
    } catch (const std::exception&) {
        return;  // an unencodable report is skipped, like any other failure here
    }
    // Rewritten by every build and read only for diagnosis: replaced
    // atomically, but not worth a flush to disk on every build.
    (void)writeFileAtomically(*container / kSelfReportFileName, bytes, Flush::unflushed);
}

}  // namespace mw
