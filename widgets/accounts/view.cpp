#include "widgets/accounts/view.hpp"

#include "model/accounts.hpp"
#include "widgets/accounts/board.hpp"
#include "widgets/accounts/content.hpp"
#include "widgets/chrome/chrome.hpp"

namespace mw {

render::View accountsWidgetView(const AccountsEntry& entry, WidgetFamily family) {
    if (auto panel = accountsPanel(entry)) return body(*panel);
    return body(AccountsBoard{accountList(entry.payload), family, entry.date, entry.payload.updatedAt,
                              entry.payload.showRemaining});
}

}  // namespace mw
