#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "books/symbol_collection.h"
#include "core/label.h"
#include "core/row_list.h"
#include "views/CNetPos.h"
#include "views/position_block.h"

namespace tutti {

// Net positions window: every symbol with positions and what they add up to over all accounts, a total row at
// the end, and the accounts behind the symbol that is picked.
class frmNetTrade final {
 public:
  // Lots, average open prices, account currency. Net is long less short.
  enum Column : std::size_t { symbol, accounts, bought, bought_at, sold, sold_at, net, floating };
  enum AccountColumn : std::size_t {
    account,
    of_bought,
    of_bought_at,
    of_sold,
    of_sold_at,
    of_net,
    of_floating
  };

  frmNetTrade(const CNetPos& book, const SymbolCollection& symbols);

  // Ordered by name, keyed "S" and the symbol's place; the total row has no key.
  RowList lvwNet{{"Symbol", "Accounts", "Long", "Avg Long", "Short", "Avg Short", "Net", "P/L"}};
  // Of the symbol that is selected, ordered by number, keyed "C" and the account number.
  RowList lvwNetAccounts{{"Account", "Long", "Avg Long", "Short", "Avg Short", "Net", "P/L"}};
  Label close_accounts{"Close..."};

  // Brings both lists up to date; to be called before they are shown, once a frame at most.
  void refresh();
  // Name of the symbol whose accounts are listed; empty while none is picked.
  std::string picked() const;

  // Whether any account is listed that could be handed over.
  bool can_close() const { return !lvwNetAccounts.empty(); }
  // Hands the picked symbol over to be closed, with the positions of the selected accounts. Where none is
  // selected no account is meant: the one that was may have gone a moment ago.
  void close_selected() const;
  // Takes what is to be closed; set by start-up.
  std::function<void(std::vector<PositionBlock>)> close;

  static bool is_total(const Row& row) { return row.key().empty(); }

 private:
  void pick(const Row& row);
  void refresh_symbols();
  void refresh_accounts();
  void write(Row& row, const CNetPos::OfSymbol& symbol) const;
  void write_total();

  const CNetPos& book_;
  const SymbolCollection& symbols_;
  int picked_ = -1;         // place of the symbol, -1 when none
  std::uint64_t seen_ = 0;  // stamp of the book that the lists show
  bool refill_ = false;     // the accounts shown are another symbol's
};

}  // namespace tutti
