#include "payload/records.hpp"

#include <unordered_set>

namespace mw {

const WidgetPayload& emptyPayload() {
    static const WidgetPayload empty{};  // thread-safe one-time initialisation
    return empty;
}

std::string toolKey(const WidgetToolSnapshot& snapshot) {
    return snapshot.accountSlug ? snapshot.toolID + ":" + *snapshot.accountSlug : snapshot.toolID;
}

std::vector<WidgetToolSnapshot> enabledTools(const WidgetPayload& payload) {
    const std::unordered_set<std::string> enabled(payload.enabledToolIDs.begin(), payload.enabledToolIDs.end());
    std::vector<WidgetToolSnapshot> result;
    for (const auto& tool : payload.tools) {
        if (enabled.contains(toolKey(tool))) result.push_back(tool);
    }
    return result;
}

}  // namespace mw
