#include "views/frmNetTrade.h"

#include <utility>

#include "views/ordered_row.h"
#include "views/total_row.h"

namespace tutti {
namespace {

constexpr int money_decimals = 2;
constexpr char symbol_prefix = 'S';

// Long, average, short, average, net and profit, from a column on.
void write_sum(Row& row, std::size_t first, const NetSum& sum, int digits) {
  row.set_number(first, sum.long_total());
  row.set_fixed_or_empty(first + 1, sum.average_long(), digits);
  row.set_number(first + 2, sum.short_total());
  row.set_fixed_or_empty(first + 3, sum.average_short(), digits);
  row.set_number(first + 4, sum.net());
  row.set_fixed(first + 5, sum.floating_total(), money_decimals);
}

}  // namespace

frmNetTrade::frmNetTrade(const CNetPos& book, const SymbolCollection& symbols)
    : book_(book), symbols_(symbols) {
  lvwNet.set_column_widths("14,10,11,14,11,14,11,15");
  lvwNetAccounts.set_column_widths("16,13,15,13,15,12,16");
  lvwNet.on_select = [this](const Row& row) { pick(row); };
  lvwNet.on_activate = [this](const Row& row) {
    pick(row);
    if (close && picked_ >= 0) close({{picked(), {}}});
  };
  lvwNetAccounts.on_activate = [this](const Row& row) {
    if (close) close({{picked(), {static_cast<std::int32_t>(row.key().number())}}});
  };
  close_accounts.on_click = [this] { close_selected(); };
}

std::string frmNetTrade::picked() const {
  return picked_ < 0 ? std::string{} : book_.symbols()[static_cast<std::size_t>(picked_)].name;
}

void frmNetTrade::pick(const Row& row) {
  const int place = is_total(row) ? -1 : static_cast<int>(row.key().number());
  if (place == picked_) return;
  picked_ = place;
  refill_ = true;
  // Those of another symbol must not stand beside this one's name.
  lvwNetAccounts.clear();
}

void frmNetTrade::refresh() {
  if (seen_ == book_.stamp() && !refill_) return;
  refresh_symbols();
  refresh_accounts();
  seen_ = book_.stamp();
}

void frmNetTrade::refresh_symbols() {
  for (std::size_t place = 0; place < book_.symbols().size(); ++place) {
    const CNetPos::OfSymbol& symbol = book_.symbols()[place];
    if (symbol.stamp <= seen_) continue;
    const RowKey key{symbol_prefix, static_cast<std::int64_t>(place)};
    if (symbol.sum.positions() == 0) {
      if (Row* row = lvwNet.find(key)) lvwNet.remove(*row);
      continue;
    }
    const auto before = [&](const Row& row) { return row.text(Column::symbol) < symbol.name; };
    write(ordered_row(lvwNet, key, before), symbol);
  }
  if (!lvwNet.empty()) write_total();
}

void frmNetTrade::write(Row& row, const CNetPos::OfSymbol& symbol) const {
  row.set_text(Column::symbol, symbol.name);
  row.set_number(Column::accounts, symbol.accounts);
  write_sum(row, Column::bought, symbol.sum, symbols_.digits(symbol.name));
}

void frmNetTrade::write_total() {
  Row& row = total_row(lvwNet);
  const NetSum total = book_.total();
  if (total.positions() == 0) return lvwNet.remove(row);
  row.set_number(Column::accounts, book_.accounts_in_market());
  write_sum(row, Column::bought, total, 0);
  // Prices of different symbols have no average.
  row.set_text(Column::bought_at, "");
  row.set_text(Column::sold_at, "");
}

void frmNetTrade::refresh_accounts() {
  const bool all = std::exchange(refill_, false);
  if (all) lvwNetAccounts.clear();
  if (picked_ < 0) return;
  const auto place = static_cast<std::size_t>(picked_);
  const int digits = symbols_.digits(picked());
  for (const CNetPos::OfAccount& account : book_.accounts()) {
    if (account.stamp <= seen_ && !all) continue;
    const NetSum& sum = book_.of(account, place);
    const RowKey key = client_key(account.number);
    if (sum.positions() == 0) {
      if (Row* row = lvwNetAccounts.find(key)) lvwNetAccounts.remove(*row);
      continue;
    }
    Row& row = ordered_row(lvwNetAccounts, key,
                           [&](const Row& other) { return other.key().number() < account.number; });
    row.set_number(AccountColumn::account, account.number);
    write_sum(row, AccountColumn::of_bought, sum, digits);
  }
}

void frmNetTrade::close_selected() const {
  if (!close || picked_ < 0) return;
  PositionBlock block{picked(), {}};
  for (const Row* row : lvwNetAccounts.selected())
    block.accounts.push_back(static_cast<std::int32_t>(row->key().number()));
  close({std::move(block)});
}

}  // namespace tutti
