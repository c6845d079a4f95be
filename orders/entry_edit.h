#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orders/price_conditions.h"
#include "views/frmPending.h"

namespace tutti {

// What the entry order window edits: an entry order that waits, or the SL/TP of a position.
struct EntryEdit {
  frmPending::EditRequest request;
  EntryType type = EntryType::none;  // that stands in the form meanwhile
  std::string_view side;             // of the position, "Buy" or "Sell"; empty for an order

  bool stops() const { return !side.empty(); }

  // What a request means by its type text: one of `types`, which are in the order of EntryType, or that of a
  // SL/TP order, in any letter case. Nothing for another text.
  static std::optional<EntryEdit> of(const frmPending::EditRequest& request,
                                     const std::vector<std::string>& types);
};

}  // namespace tutti
