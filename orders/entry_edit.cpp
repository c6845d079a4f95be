#include "orders/entry_edit.h"

#include <cstddef>

#include "core/texts.h"

namespace tutti {

std::optional<EntryEdit> EntryEdit::of(const frmPending::EditRequest& request,
                                       const std::vector<std::string>& types) {
  const std::string wanted = upper(request.type_text);
  // What is managed by a sale was bought.
  if (wanted == "SELL(MANAGE)") return EntryEdit{request, EntryType::buy_limit, "Buy"};
  if (wanted == "BUY(MANAGE)") return EntryEdit{request, EntryType::sell_limit, "Sell"};
  for (std::size_t i = 0; i < types.size(); ++i) {
    if (upper(types[i]) == wanted) return EntryEdit{request, static_cast<EntryType>(i), {}};
  }
  return std::nullopt;
}

}  // namespace tutti
