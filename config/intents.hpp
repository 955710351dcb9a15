#pragma once
// What every widget's configuration intent is built from: its description as
// data (title, parameters with titles, types and defaults, for edit sheets and
// listings), its stored form, and the strict and lenient parsing of both.
// Each configurable widget declares its typed intent in its own folder
// (widgets/<kind>/intent.hpp). An intent is only a record of the user's
// choices; a parameter left unset keeps its documented meaning.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/choices.hpp"
#include "config/options.hpp"
#include "platform/result.hpp"

namespace mw {

enum class IntentParameterType { toolChoice, providerChoice, limit, percent, order, detailStyle };

// "WidgetToolChoice", "WidgetLimitChoice", …
std::string_view typeName(IntentParameterType type);
// "Tool", "Provider", "Limit", "Show", "Order", "Style".
std::string_view typeDisplayName(IntentParameterType type);
// Whether values are entity identifiers rather than enumeration raw values.
bool isEntity(IntentParameterType type);
// The raw values an enumeration parameter takes, in case order; empty for entities.
std::vector<std::string_view> acceptedRawValues(IntentParameterType type);

struct IntentParameter {
    std::string_view name;   // the stored parameter name: "tool", "style", …
    std::string_view title;  // shown in the edit sheet
    IntentParameterType type;
    bool optional = false;                      // may be left unset
    std::optional<std::string_view> defaultValue;  // raw value on creation; nothing: unset
    std::string_view unsetMeans;                // what an unset value is taken as; empty if never unset
    bool operator==(const IntentParameter&) const = default;
};

struct IntentDescription {
    std::string_view typeName;  // persistent identity: "FocusWidgetIntent"
    std::string_view title;
    std::vector<IntentParameter> parameters;  // in edit-sheet order
    bool operator==(const IntentDescription&) const = default;
};

// An intent's stored form: parameter name to raw value or entity identifier.
// Parameters that are not there are unset.
using IntentParameters = std::map<std::string, std::string>;

// The current choice lists, from which stored entity identifiers are answered
// (an identifier no longer listed still gets a choice; see choices.hpp).
struct ChoiceLists {
    std::vector<WidgetToolChoice> tools;
    std::vector<WidgetProviderChoice> providers;
    bool operator==(const ChoiceLists&) const = default;
};
ChoiceLists choiceLists(const WidgetPayload& payload);

// Typed intents from stored parameters. Lenient, as a host's store may hold
// values an older build wrote: unknown names and raw values are left unset.
// Each intent type reads its own parameters in `Intent::fromParameters`.
template <class Intent>
Intent intentFromParameters(const IntentParameters& parameters, const ChoiceLists& lists) {
    return Intent::fromParameters(parameters, lists);
}

// The lenient reads of one stored parameter those functions are built from:
// nothing when it is unset, empty or (for an option) not one of its raw values.
std::optional<WidgetToolChoice> toolParameter(const IntentParameters& parameters, const ChoiceLists& lists);
std::optional<WidgetProviderChoice> providerParameter(const IntentParameters& parameters, const ChoiceLists& lists);
template <class E>
std::optional<E> optionParameter(const IntentParameters& parameters, const std::string& name) {
    const auto it = parameters.find(name);
    return it == parameters.end() ? std::nullopt : fromRaw<E>(it->second);
}

// Strictly parses "NAME=VALUE" assignments against an intent: every name must
// be one of its parameters (given once), every enumeration value one of its
// raw values, every entity identifier non-empty. A refusal says what went
// wrong and what is accepted.
Result<IntentParameters> parseIntentParameters(const IntentDescription& intent,
                                               const std::vector<std::string>& assignments);

template <class Intent>
Result<Intent> parseIntent(const std::vector<std::string>& assignments, const ChoiceLists& lists) {
    const auto parameters = parseIntentParameters(Intent::description(), assignments);
    if (!parameters) return Failure{parameters.error()};
    return intentFromParameters<Intent>(*parameters, lists);
}

}  // namespace mw
