// The `--set NAME=VALUE` parser on arbitrary assignments (one per line; the
// first byte picks one of the bundle's intents): it accepts or explains, never both,
// and what it accepts names only the intent's own parameters.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bundle/bundle.hpp"
#include "fuzz/fuzz.hpp"

namespace {

const mw::IntentDescription& pick(std::uint8_t byte) {
    static const auto intents = [] {
        std::vector<const mw::IntentDescription*> out;
        for (const auto& widget : mw::widgetDeclarations())
            if (widget.intent != nullptr) out.push_back(widget.intent);
        return out;
    }();
    return *intents[byte % intents.size()];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const auto& intent = pick(data[0]);
    std::vector<std::string> assignments;
    std::string current;
    for (std::size_t i = 1; i < size; ++i) {
        if (data[i] == '\n') {
            assignments.push_back(current);
            current.clear();
        } else {
            current += static_cast<char>(data[i]);
        }
    }
    if (!current.empty()) assignments.push_back(current);

    const auto parsed = mw::parseIntentParameters(intent, assignments);
    MW_FUZZ_CHECK(parsed.ok() == parsed.error().empty());
    if (!parsed) return 0;
    MW_FUZZ_CHECK(parsed->size() == assignments.size());
    for (const auto& assignment : *parsed) {
        const auto& name = assignment.first;
        const bool known = std::any_of(intent.parameters.begin(), intent.parameters.end(),
                                       [&](const mw::IntentParameter& p) { return p.name == name; });
        MW_FUZZ_CHECK(known);
    }
    return 0;
}
