#include "config/intents.hpp"

#include <set>

namespace mw {
namespace {

template <class E>
std::vector<std::string_view> rawValuesOf() {
    std::vector<std::string_view> out;
    for (const auto& c : OptionTable<E>::cases) out.push_back(c.raw);
    return out;
}

std::string joined(const std::vector<std::string_view>& words) {
    std::string out;
    for (const auto& w : words) {
        if (!out.empty()) out += ", ";
        out += w;
    }
    return out;
}

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

}  // namespace

std::string_view typeName(IntentParameterType type) {
    switch (type) {
        case IntentParameterType::toolChoice: return "WidgetToolChoice";
        case IntentParameterType::providerChoice: return "WidgetProviderChoice";
        case IntentParameterType::limit: return "WidgetLimitChoice";
        case IntentParameterType::percent: return "WidgetPercentChoice";
        case IntentParameterType::order: return "WidgetOrderChoice";
        case IntentParameterType::detailStyle: return "WidgetDetailStyle";
    }
    return {};
}

std::string_view typeDisplayName(IntentParameterType type) {
    switch (type) {
        case IntentParameterType::toolChoice: return WidgetToolChoice::typeDisplayName;
        case IntentParameterType::providerChoice: return WidgetProviderChoice::typeDisplayName;
        case IntentParameterType::limit: return OptionTable<WidgetLimitChoice>::typeDisplayName;
        case IntentParameterType::percent: return OptionTable<WidgetPercentChoice>::typeDisplayName;
        case IntentParameterType::order: return OptionTable<WidgetOrderChoice>::typeDisplayName;
        case IntentParameterType::detailStyle: return OptionTable<WidgetDetailStyle>::typeDisplayName;
    }
    return {};
}

bool isEntity(IntentParameterType type) {
    return type == IntentParameterType::toolChoice || type == IntentParameterType::providerChoice;
}

std::vector<std::string_view> acceptedRawValues(IntentParameterType type) {
    switch (type) {
        case IntentParameterType::toolChoice:
        case IntentParameterType::providerChoice: return {};
        case IntentParameterType::limit: return rawValuesOf<WidgetLimitChoice>();
        case IntentParameterType::percent: return rawValuesOf<WidgetPercentChoice>();
        case IntentParameterType::order: return rawValuesOf<WidgetOrderChoice>();
        case IntentParameterType::detailStyle: return rawValuesOf<WidgetDetailStyle>();
    }
    return {};
}

ChoiceLists choiceLists(const WidgetPayload& payload) { return {toolChoices(payload), providerChoices(payload)}; }

std::optional<WidgetToolChoice> toolParameter(const IntentParameters& parameters, const ChoiceLists& lists) {
    const auto it = parameters.find("tool");
    if (it == parameters.end() || it->second.empty()) return std::nullopt;
    return toolChoiceForIdentifier(it->second, lists.tools);
}

std::optional<WidgetProviderChoice> providerParameter(const IntentParameters& parameters, const ChoiceLists& lists) {
    const auto it = parameters.find("provider");
    if (it == parameters.end() || it->second.empty()) return std::nullopt;
    return providerChoiceForIdentifier(it->second, lists.providers);
}

Result<IntentParameters> parseIntentParameters(const IntentDescription& intent,
                                               const std::vector<std::string>& assignments) {
    IntentParameters out;
    for (const auto& assignment : assignments) {
        const auto equals = assignment.find('=');
        if (equals == std::string::npos || equals == 0)
            return Failure{"expected NAME=VALUE, got " + inQuotes(assignment)};
        const std::string name = assignment.substr(0, equals);
        const std::string value = assignment.substr(equals + 1);

        const IntentParameter* parameter = nullptr;
        std::vector<std::string_view> names;
        for (const auto& p : intent.parameters) {
            names.push_back(p.name);
            if (p.name == name) parameter = &p;
        }
        if (parameter == nullptr)
            return Failure{"unknown option " + inQuotes(name) + " for " + std::string(intent.title) +
                           "; accepted: " + joined(names)};
        if (out.contains(name)) return Failure{"option " + inQuotes(name) + " is given more than once"};

        if (isEntity(parameter->type)) {
            if (value.empty())
                return Failure{"option " + inQuotes(name) + " needs a " +
                               std::string(typeDisplayName(parameter->type)) + " identifier, for example " +
                               inQuotes(parameter->type == IntentParameterType::toolChoice ? kHighestUsageID
                                                                                         : kAllProvidersID)};
        } else {
            const auto accepted = acceptedRawValues(parameter->type);
            bool known = false;
            for (const auto& raw : accepted) known = known || raw == value;
            if (!known)
                return Failure{"unknown value " + inQuotes(value) + " for " + inQuotes(name) +
                               "; accepted: " + joined(accepted)};
        }
        out.emplace(name, value);
    }
    return out;
}

}  // namespace mw
