#include "widgets/limit/view.hpp"

#include "config/choices.hpp"
#include "widgets/chrome/chrome.hpp"
#include "widgets/limit/board.hpp"
#include "widgets/limit/content.hpp"

namespace mw {

render::View accountsLimitView(const AccountsLimitEntry& entry, WidgetFamily family) {
    if (auto panel = accountsLimitPanel(entry)) return body(*panel);
    std::optional<std::string> providerName;
    if (!isAllProviders(entry.provider)) providerName = entry.provider.label;
    return body(AccountsLimitBoard{limitBoard(entry), entry.limit, entry.percent, providerName, family, entry.date,
                                   entry.payload.updatedAt});
}

}  // namespace mw
