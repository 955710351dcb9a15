#include "config/choices.hpp"

#include <algorithm>
#include <set>

#include <nlohmann/json.hpp>

#include "payload/store.hpp"
#include "platform/text.hpp"

namespace mw {
namespace {

constexpr std::string_view kNameSeparator = " \u00B7 ";

std::string_view beforeFirst(std::string_view text, std::string_view separator) {
    const auto at = text.find(separator);
    return at == std::string_view::npos ? text : text.substr(0, at);
}

template <class Choice>
const Choice* findListed(std::string_view identifier, const std::vector<Choice>& listed) {
    const auto it = std::find_if(listed.begin(), listed.end(), [&](const Choice& c) { return c.id == identifier; });
    return it == listed.end() ? nullptr : &*it;
}

}  // namespace

nlohmann::ordered_json toJSON(const WidgetToolChoice& choice) {
    return {{"id", choice.id}, {"label", choice.label}, {"compactLabel", choice.compactLabel}};
}

nlohmann::ordered_json toJSON(const WidgetProviderChoice& choice) { return {{"id", choice.id}, {"label", choice.label}}; }

WidgetToolChoice highestUsageChoice() { return {std::string(kHighestUsageID), "Highest Usage", "Highest"}; }

WidgetProviderChoice allProvidersChoice() { return {std::string(kAllProvidersID), "All providers"}; }

std::vector<WidgetToolChoice> toolChoices(const WidgetPayload& payload) {
    std::vector<WidgetToolChoice> choices{highestUsageChoice()};
    for (const auto& tool : enabledTools(payload))
        choices.push_back({toolKey(tool), tool.displayName, tool.compactLabel});
    return choices;
}

std::vector<WidgetProviderChoice> providerChoices(const WidgetPayload& payload) {
    std::vector<WidgetProviderChoice> choices{allProvidersChoice()};
    std::set<std::string> taken;
    for (const auto& tool : enabledTools(payload)) {
        if (tool.hasQuotaHeadline == false) continue;  // nothing to rank it by
        if (!taken.insert(tool.toolID).second) continue;
        choices.push_back({tool.toolID, std::string(beforeFirst(tool.displayName, kNameSeparator))});
    }
    return choices;
}

std::string labelForToolIdentifier(std::string_view identifier) {
    return capitalisedFirst(beforeFirst(identifier, ":"));
}

std::string labelForProviderIdentifier(std::string_view identifier) { return capitalisedFirst(identifier); }

WidgetToolChoice toolChoiceForIdentifier(std::string_view identifier, const std::vector<WidgetToolChoice>& listed) {
    if (const auto* choice = findListed(identifier, listed)) return *choice;
    if (identifier == kHighestUsageID) return highestUsageChoice();
    const auto label = labelForToolIdentifier(identifier);
    return {std::string(identifier), label, label};
}

WidgetProviderChoice providerChoiceForIdentifier(std::string_view identifier,
                                                 const std::vector<WidgetProviderChoice>& listed) {
    if (const auto* choice = findListed(identifier, listed)) return *choice;
    if (identifier == kAllProvidersID) return allProvidersChoice();
    return {std::string(identifier), labelForProviderIdentifier(identifier)};
}

std::vector<WidgetToolChoice> toolChoicesForIdentifiers(const std::vector<std::string>& identifiers,
                                                        const std::vector<WidgetToolChoice>& listed) {
    std::vector<WidgetToolChoice> out;
    out.reserve(identifiers.size());
    for (const auto& id : identifiers) out.push_back(toolChoiceForIdentifier(id, listed));
    return out;
}

std::vector<WidgetProviderChoice> providerChoicesForIdentifiers(const std::vector<std::string>& identifiers,
                                                                const std::vector<WidgetProviderChoice>& listed) {
    std::vector<WidgetProviderChoice> out;
    out.reserve(identifiers.size());
    for (const auto& id : identifiers) out.push_back(providerChoiceForIdentifier(id, listed));
    return out;
}

namespace WidgetToolChoiceQuery {
std::vector<WidgetToolChoice> suggestedEntities() { return toolChoices(WidgetStore::load().payload); }
std::vector<WidgetToolChoice> suggestedEntities(const std::optional<std::filesystem::path>& container) {
    return toolChoices(WidgetStore::load(container).payload);
}
std::vector<WidgetToolChoice> entities(const std::vector<std::string>& identifiers) {
    return toolChoicesForIdentifiers(identifiers, suggestedEntities());
}
std::vector<WidgetToolChoice> entities(const std::vector<std::string>& identifiers,
                                       const std::optional<std::filesystem::path>& container) {
    return toolChoicesForIdentifiers(identifiers, suggestedEntities(container));
}
}  // namespace WidgetToolChoiceQuery

namespace WidgetProviderChoiceQuery {
std::vector<WidgetProviderChoice> suggestedEntities() { return providerChoices(WidgetStore::load().payload); }
std::vector<WidgetProviderChoice> suggestedEntities(const std::optional<std::filesystem::path>& container) {
    return providerChoices(WidgetStore::load(container).payload);
}
std::vector<WidgetProviderChoice> entities(const std::vector<std::string>& identifiers) {
    return providerChoicesForIdentifiers(identifiers, suggestedEntities());
}
std::vector<WidgetProviderChoice> entities(const std::vector<std::string>& identifiers,
                                           const std::optional<std::filesystem::path>& container) {
    return providerChoicesForIdentifiers(identifiers, suggestedEntities(container));
}
}  // namespace WidgetProviderChoiceQuery

}  // namespace mw
