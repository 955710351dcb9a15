#pragma once
// The tool and provider choices of the edit sheet: built on demand from the
// enabled tools of the payload, each list headed by a special entry that pins
// nothing ("Highest Usage", "All providers").

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "model/limit_board.hpp"  // kAllProvidersID: the board filters by the same reserved id
#include "payload/records.hpp"

namespace mw {

inline constexpr std::string_view kHighestUsageID = "highest";

// A tool (one account of one AI tool) the single-tool widgets can show. The
// host persists it by `id`, the tool key.
struct WidgetToolChoice {
    std::string id;
    std::string label;
    std::string compactLabel;

    static constexpr std::string_view typeDisplayName = "Tool";
    bool operator==(const WidgetToolChoice&) const = default;
};

// A provider (every account of one toolID) for the Accounts by Limit widget.
struct WidgetProviderChoice {
    std::string id;
    std::string label;

    static constexpr std::string_view typeDisplayName = "Provider";
    bool operator==(const WidgetProviderChoice&) const = default;
};

// {"id", "label", "compactLabel"} and {"id", "label"}: how entries and the
// choice listings write a choice.
nlohmann::ordered_json toJSON(const WidgetToolChoice& choice);
nlohmann::ordered_json toJSON(const WidgetProviderChoice& choice);

// "highest" / "Highest Usage" / "Highest": whichever enabled tool is used most.
WidgetToolChoice highestUsageChoice();
// "all" / "All providers".
WidgetProviderChoice allProvidersChoice();

// Exact, case-sensitive comparisons with the reserved ids.
inline bool isHighestUsage(const WidgetToolChoice& choice) { return choice.id == kHighestUsageID; }
inline bool isAllProviders(const WidgetProviderChoice& choice) { return choice.id == kAllProvidersID; }

// "Highest Usage", then one choice per enabled tool in payload order.
std::vector<WidgetToolChoice> toolChoices(const WidgetPayload& payload);

// "All providers", then one choice per toolID among the enabled tools (first
// account wins), skipping tools that say they have no quota headline. The
// label is the display name up to the first " · ".
std::vector<WidgetProviderChoice> providerChoices(const WidgetPayload& payload);

// The label a stored identifier gets once it is no longer listed: the
// identifier (for a tool, its part before the first ":") with its first
// ASCII letter upper-cased, the rest as written.
std::string labelForToolIdentifier(std::string_view identifier);
std::string labelForProviderIdentifier(std::string_view identifier);

// Entities for stored identifiers, in the order given: the listed choice when
// its id is there, else the special entry for the reserved id, else a choice
// made from the identifier itself, so a placed widget keeps its choice while
// the tool is disabled or the payload is missing.
WidgetToolChoice toolChoiceForIdentifier(std::string_view identifier, const std::vector<WidgetToolChoice>& listed);
WidgetProviderChoice providerChoiceForIdentifier(std::string_view identifier,
                                                 const std::vector<WidgetProviderChoice>& listed);
std::vector<WidgetToolChoice> toolChoicesForIdentifiers(const std::vector<std::string>& identifiers,
                                                        const std::vector<WidgetToolChoice>& listed);
std::vector<WidgetProviderChoice> providerChoicesForIdentifiers(const std::vector<std::string>& identifiers,
                                                                const std::vector<WidgetProviderChoice>& listed);

// The queries the edit sheet calls. Each loads the payload afresh, from the
// given container (nothing: no container) or from the environment's.
namespace WidgetToolChoiceQuery {
std::vector<WidgetToolChoice> suggestedEntities();
std::vector<WidgetToolChoice> suggestedEntities(const std::optional<std::filesystem::path>& container);
std::vector<WidgetToolChoice> entities(const std::vector<std::string>& identifiers);
std::vector<WidgetToolChoice> entities(const std::vector<std::string>& identifiers,
                                       const std::optional<std::filesystem::path>& container);
inline WidgetToolChoice defaultResult() { return highestUsageChoice(); }
}  // namespace WidgetToolChoiceQuery

namespace WidgetProviderChoiceQuery {
std::vector<WidgetProviderChoice> suggestedEntities();
std::vector<WidgetProviderChoice> suggestedEntities(const std::optional<std::filesystem::path>& container);
std::vector<WidgetProviderChoice> entities(const std::vector<std::string>& identifiers);
std::vector<WidgetProviderChoice> entities(const std::vector<std::string>& identifiers,
                                           const std::optional<std::filesystem::path>& container);
inline WidgetProviderChoice defaultResult() { return allProvidersChoice(); }
}  // namespace WidgetProviderChoiceQuery

}  // namespace mw
