// check, schema: what a producer of widget-payload.json needs to know. Both
// work from the payload's own decoder and field lists, and draw nothing.

#include <filesystem>
#include <iostream>
#include <memory>
#include <unordered_set>

#include <nlohmann/json.hpp>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "app/cli.hpp"
#include "model/accounts.hpp"
#include "payload/codec.hpp"
#include "payload/store.hpp"

namespace mw::cli {
namespace {

struct CheckArguments {
    std::string file;
    bool json = false;
    CLI::Option* fileOption = nullptr;
};

struct LeftOutTool {
    std::string key;
    std::string reason;
};

std::string reasonText(LeftOut reason, const WidgetToolSnapshot& tool) {
    switch (reason) {
        case LeftOut::notEnabled: return "not listed in enabledToolIDs";
        case LeftOut::bareToolIDOnly:
            return "enabledToolIDs lists only \"" + tool.toolID + "\"; this account is enabled as \"" +
                   toolKey(tool) + "\"";
        case LeftOut::disconnected: return "disconnected, and it carries no windows";
    }
    return {};
}

// Every tool the account list leaves out, and every enabled key no tool has.
std::vector<LeftOutTool> leftOutTools(const WidgetPayload& payload) {
    const std::unordered_set<std::string> enabled(payload.enabledToolIDs.begin(), payload.enabledToolIDs.end());
    std::vector<LeftOutTool> result;
    std::unordered_set<std::string> present;
    for (const auto& tool : payload.tools) {
        present.insert(toolKey(tool));
        if (const auto reason = leftOutReason(tool, enabled)) result.push_back({toolKey(tool), reasonText(*reason, tool)});
    }
    for (const auto& key : payload.enabledToolIDs) {
        if (!present.contains(key)) result.push_back({key, "listed in enabledToolIDs, but no tool has this key"});
    }
    return result;
}

struct CheckReport {
    std::filesystem::path file;  // empty when there is no container
    ReadStatus status = ReadStatus::ok;
    std::vector<PayloadProblem> problems;
    WidgetPayload payload;
};

CheckReport checkPayload(const std::optional<std::filesystem::path>& file) {
    CheckReport report;
    if (!file) {
        report.status = ReadStatus::noContainer;
        return report;
    }
    report.file = *file;
    const auto read = WidgetStore::readFile(*file);
    report.status = read.status;
    if (read.status != ReadStatus::ok) return report;
    auto reading = readPayload(read.bytes);
    report.problems = std::move(reading.problems);
    if (reading.payload) {
        report.payload = std::move(*reading.payload);
    } else {
        report.status = ReadStatus::decodeFailed;
    }
    return report;
}

nlohmann::ordered_json keysOf(const std::vector<std::string>& keys) {
    nlohmann::ordered_json out = nlohmann::ordered_json::array();
    for (const auto& key : keys) out.push_back(key);
    return out;
}

std::vector<std::string> enabledKeys(const WidgetPayload& payload) {
    std::vector<std::string> keys;
    for (const auto& tool : enabledTools(payload)) keys.push_back(toolKey(tool));
    return keys;
}

std::vector<std::string> accountKeys(const WidgetPayload& payload) {
    std::vector<std::string> keys;
    for (const auto& account : accountList(payload)) keys.push_back(accountKey(account));
    return keys;
}

void printJSONReport(const CheckReport& report) {
    nlohmann::ordered_json problems = nlohmann::ordered_json::array();
    for (const auto& p : report.problems)
        problems.push_back({{"pointer", p.pointer}, {"reason", p.reason}, {"effect", p.effect}});
    nlohmann::ordered_json leftOut = nlohmann::ordered_json::array();
    for (const auto& tool : leftOutTools(report.payload)) leftOut.push_back({{"key", tool.key}, {"reason", tool.reason}});
    printJSON({{"readStatus", std::string(rawValue(report.status))},
               {"problems", std::move(problems)},
               {"enabled", keysOf(enabledKeys(report.payload))},
               {"accounts", keysOf(accountKeys(report.payload))},
               {"leftOut", std::move(leftOut)}});
}

std::string listed(const std::vector<std::string>& keys) {
    if (keys.empty()) return "none";
    std::string text;
    for (const auto& key : keys) text += (text.empty() ? "" : ", ") + key;
    return text;
}

std::string statusText(ReadStatus status) {
    switch (status) {
        case ReadStatus::ok: return "ok";
        case ReadStatus::noContainer: return "noContainer (the shared container directory does not exist)";
        case ReadStatus::missing: return "missing (there is no payload file)";
        case ReadStatus::unreadable: return "unreadable (the file could not be read)";
        case ReadStatus::decodeFailed: return "decodeFailed (the file is not a JSON object)";
    }
    return {};
}

void printTextReport(const CheckReport& report) {
    auto& out = std::cout;
    if (!report.file.empty()) out << "File: " << report.file.string() << '\n';
    out << "Read status: " << statusText(report.status) << '\n';
    if (report.problems.empty()) {
        out << "Problems: none\n";
    } else {
        out << "Problems (" << report.problems.size() << "):\n";
        for (const auto& p : report.problems) {
            out << "  " << (p.pointer.empty() ? "(document)" : p.pointer) << ": " << p.reason << '\n'
                << "    so " << p.effect << '\n';
        }
    }
    out << "Enabled tools: " << listed(enabledKeys(report.payload)) << '\n';
    out << "Accounts shown: " << listed(accountKeys(report.payload)) << '\n';
    const auto leftOut = leftOutTools(report.payload);
    if (!leftOut.empty()) {
        out << "Left out:\n";
        for (const auto& tool : leftOut) out << "  " << tool.key << ": " << tool.reason << '\n';
    }
}

}  // namespace

void registerCheckCommands(CLI::App& app, const GlobalOptions& options) {
    auto* check = app.add_subcommand(
        "check", "Why a tool does not show: every payload key read as its default, with its JSON Pointer");
    auto args = std::make_shared<CheckArguments>();
    args->fileOption =
        check->add_option("FILE", args->file, "A payload file (default: the container's widget-payload.json)");
    check->add_flag("--json", args->json, "Print the report as JSON");
    check->callback([&options, args] {
        std::optional<std::filesystem::path> file;
        if (args->fileOption->count() > 0) {
            if (args->file.empty()) throw UsageError("check: FILE is empty");
            file = std::filesystem::path(args->file);
        } else if (const auto container = containerFrom(options)) {
            file = *container / kPayloadFileName;
        }
        const auto report = checkPayload(file);
        if (args->json) {
            printJSONReport(report);
        } else {
            printTextReport(report);
        }
        std::cout.flush();
        if (report.status != ReadStatus::ok || !report.problems.empty()) throw ExitStatus{1};
    });

    auto* schema = app.add_subcommand("schema", "The JSON Schema (draft 2020-12) of widget-payload.json");
    schema->callback([] { printJSON(payloadSchema()); });
}

}  // namespace mw::cli
