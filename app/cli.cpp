#include "app/cli.hpp"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "platform/text.hpp"

#include <filesystem>
#include <iostream>

#include "payload/self_report.hpp"
#include "platform/clock.hpp"
#include "platform/container.hpp"

namespace mw::cli {

std::optional<std::filesystem::path> containerFrom(const GlobalOptions& options) {
    if (options.containerOption == nullptr || options.containerOption->count() == 0) return containerDirectory();
    std::error_code error;
    if (!std::filesystem::is_directory(options.container, error)) return std::nullopt;
    return std::filesystem::path(options.container);
}

std::string nowProblem(const std::string& text) {
    if (parseISO8601(text)) return {};
    return "\"" + text + "\" is not an ISO 8601 date-time such as 2025-01-31T14:05:00Z (whole seconds, with a zone)";
}

Date nowFrom(const GlobalOptions& options) {
    if (options.nowOption == nullptr || options.nowOption->count() == 0) return systemNow();
    if (const auto date = parseISO8601(options.now)) return *date;
    throw UsageError("--now: " + nowProblem(options.now));
}

ProviderContext providerContext(const GlobalOptions& options) {
    const Date now = nowFrom(options);  // a bad --now fails before anything is read
    return {containerFrom(options), now, SelfReportAnchor::bundle()};
}

const WidgetDeclaration& widgetNamed(const std::string& kind) {
    if (const auto* widget = findWidget(kind)) return *widget;
    std::string accepted;
    for (const auto& widget : widgetDeclarations()) {
        if (!accepted.empty()) accepted += ", ";
        accepted += std::string(widget.kind) + " (" + std::string(widget.kindWord) + ")";
    }
    throw UsageError("unknown widget kind \"" + kind + "\"; accepted: " + accepted);
}

WidgetFamily familyFor(const WidgetDeclaration& widget, const std::optional<std::string>& family) {
    if (!family) return widget.families.front();
    std::string accepted;
    for (const auto f : widget.families) {
        if (!accepted.empty()) accepted += ", ";
        accepted += rawValue(f);
    }
    const auto parsed = widgetFamilyFromRaw(*family);
    if (!parsed || !supportsFamily(widget, *parsed))
        throw UsageError(std::string(widget.displayName) + " does not come in family \"" + *family +
                         "\"; accepted: " + accepted);
    return *parsed;
}

IntentParameters intentParametersFor(const WidgetDeclaration& widget, const std::vector<std::string>& assignments) {
    if (widget.intent == nullptr) {
        if (assignments.empty()) return {};
        throw UsageError(std::string(widget.displayName) + " has no options to --set");
    }
    for (const auto& assignment : assignments)
        if (!isValidUTF8(assignment)) throw UsageError("--set: \"" + assignment + "\" is not valid UTF-8 text");
    auto parsed = parseIntentParameters(*widget.intent, assignments);
    if (!parsed) throw UsageError("--set: " + parsed.error());
    return *parsed;
}

CLI::Option* addSetOption(CLI::App& command, std::vector<std::string>& assignments) {
    return command.add_option("--set", assignments, "An option of the widget's intent as NAME=VALUE (repeatable)")
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE");
}

void printJSON(const nlohmann::ordered_json& json) { std::cout << json.dump(2) << '\n'; }

}  // namespace mw::cli
