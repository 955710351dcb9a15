#pragma once
// A widget kind is one folder under widgets/ plus its line in the kind table
// (bundle/bundle.hpp). The folder holds the kind's entry (entry.hpp), its
// intent (intent.hpp; a kind without options uses `NoIntent`), its content
// decisions and views, and its one record, `WidgetKind<Entry>` (kind.hpp),
// which the bundle and the provider read:
//
//   widgetType, kind, displayName, description   identity and gallery texts
//   families             the sizes it comes in, the first the default
//   Intent, kindWord, lookAhead, make, resolvedTool
//                        what the provider reads (timeline/providers.hpp)
//   panel(entry)         the panel shown at the entry's date; nothing: content
//   options(entry)       the entry's resolved options as JSON members
//   tapURL(entry)        where a click on the widget goes
//   view(entry, family)  the widget's content, without margins or surface
//
// This header is what every kind.hpp includes: the record's declaration, the
// types its members name, and what the one-tool kinds share. It stays light,
// as the kind table pulls every kind.hpp into the bundle's header.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "config/family.hpp"
#include "payload/store.hpp"
#include "platform/url.hpp"
#include "timeline/empty_state.hpp"
#include "timeline/providers.hpp"

namespace mw::render {
class View;
}  // namespace mw::render

namespace mw {

// What the kinds that show one chosen tool share: the resolved tool names it,
// and a click opens that tool.
template <OneToolEntry Entry>
struct OneToolKind {
    static std::optional<std::string> resolvedTool(const Entry& e) { return resolvedToolKey(e); }
    static std::string tapURL(const Entry& e) { return toolURL(resolvedToolKey(e).value_or("")); }
};

}  // namespace mw
