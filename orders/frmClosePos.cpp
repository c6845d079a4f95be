// The grid of the close positions window: which rows there are, and what they show.

#include "orders/frmClosePos.h"

#include <tsl/robin_map.h>
#include <algorithm>
#include <utility>

namespace tutti {
namespace {

constexpr std::string_view column_widths = "12,38,10,40";

RowKey key_of(const OpenPosition& position) {
  return ticket_key(position.ticket, position.account);
}

}  // namespace

frmClosePos::frmClosePos(MGeneral& general, CQuestionBox& question_box, const CClientAPIManagers& sessions,
                         const AccountBook& accounts, const frmTrade& trade, const PositionBook& book,
                         const SymbolCollection& symbols)
    : general_(general),
      question_box_(question_box),
      sessions_(sessions),
      accounts_(accounts),
      trade_(trade),
      book_(book),
      symbols_(symbols) {
  CloseSymbols.on_choose = [this] { CloseSymbols_Click(); };
  chkAllClients.on_click = [this] { check_all(); };
  LblCheck.on_click = [this] { close_postions(); };
  next_block.on_click = [this] { take_block(); };
  next_block.set_visible(false);
  refresh_symbols();
}

void frmClosePos::prepare(const std::vector<std::string>& headers, AccountState logged_out) {
  headers_ = headers;
  logged_out_state_ = logged_out;
  rebuild();
  MSH.set_column_widths(column_widths);
}

void frmClosePos::Displayed(bool displayed) {
  if (displayed_ == displayed) return;
  displayed_ = displayed;
  if (!displayed || renew()) return;
  const std::vector<frmTrade::Close> marks = rows_.marked_positions();
  rebuild();
  for (const frmTrade::Close& position : marks) {
    if (Row* row = searchpos(position.ticket, position.account)) CloseRows::mark(*row, true);
  }
  // Positions that came meanwhile are not marked.
  const auto positions = std::count_if(MSH.begin(), MSH.end(), is_position);
  if (static_cast<std::size_t>(positions) != marked_count()) chkAllClients.set_checked(false);
}

void frmClosePos::CloseSymbols_Click() {
  chkAllClients.set_checked(false);
  rebuild();
}

void frmClosePos::rebuild() {
  MSH.clear();
  MSH.set_headers(headers_);
  symbol_name_ = CloseSymbols.text();
  symbol_ = symbols_.find(symbol_name_);
  rows_.forget_prices();
  for (const Wanted& each : wanted()) {
    if (each.open == nullptr) {
      add_client(static_cast<std::int32_t>(each.key.number()));
    } else {
      rows_.write(*MSH.add(each.key), *each.open);
    }
  }
}

// Rows that are made anew lose the operator's place among them.
bool frmClosePos::renew() {
  const std::vector<Wanted> rows = wanted();
  const auto same = [](const Row& row, const Wanted& each) { return row.key() == each.key; };
  if (!std::equal(MSH.begin(), MSH.end(), rows.begin(), rows.end(), same)) return false;
  symbol_ = symbols_.find(symbol_name_);
  rows_.forget_prices();
  for (std::size_t at = 0; at < rows.size(); ++at) {
    Row& row = MSH.row(at);
    if (rows[at].open == nullptr) {
      CloseRows::show_state(row, AccountState::connected);
    } else {
      rows_.write(row, *rows[at].open);
      rows_.write_no_price(row);
    }
  }
  return true;
}

std::vector<frmClosePos::Wanted> frmClosePos::wanted() const {
  std::vector<Wanted> out;
  if (symbol_name_.empty()) return out;
  // Grouped first, since putting rows into the middle of a grid is slow.
  struct Group {
    std::int32_t account;
    std::vector<const Record*> positions;
  };
  std::vector<Group> groups;
  tsl::robin_map<std::int32_t, std::size_t> group_of;
  for (const Record* open : book_.of_symbol(symbol_name_)) {
    const auto [at, is_new] = group_of.emplace(open->account, groups.size());
    if (is_new) groups.push_back({open->account, {}});
    groups[at->second].positions.push_back(open);
  }
  for (const Group& group : groups) {
    if (!connected(group.account)) continue;
    out.push_back({client_key(group.account), nullptr});
    for (auto open = group.positions.rbegin(); open != group.positions.rend(); ++open)
      out.push_back({key_of(**open), *open});
  }
  return out;
}

void frmClosePos::Add(const Record& position) {
  if (!displayed_ || position.symbol != symbol_name_) return;
  Row* row = MSH.find(key_of(position));
  if (row == nullptr) {
    if (!connected(position.account)) return;
    row = MSH.insert(MSH.index_of(add_client(position.account)) + 1, key_of(position));
    chkAllClients.set_checked(false);
  }
  rows_.write(*row, position);
}

void frmClosePos::prices(SymbolHandle handle, const Symbol& symbol) {
  if (!displayed_ || handle != symbol_) return;
  // Every account of the symbol tells of the same price, which is no change after the first of them.
  if (!rows_.shows_prices(symbol.ask, symbol.bid)) RefreshPrice(symbol.ask, symbol.bid);
}

void frmClosePos::removed(const Record& position) {
  round_.forget(key_of(position));
  if (displayed_) Remove(position.ticket, position.account);
}

void frmClosePos::Remove(std::int64_t ticket, std::int32_t account) {
  Row* row = searchpos(ticket, account);
  if (row == nullptr) return;
  Row* above = get_index(account);
  MSH.remove(*row);
  if (above != nullptr) rows_.remove_if_empty(*above);
}

void frmClosePos::add_account(std::int32_t account) {
  if (!displayed_ || symbol_name_.empty()) return;
  for (const Record* open : book_.of_account(account))
    Add(*open);
  if (Row* row = get_index(account)) rows_.remove_if_empty(*row);
}

void frmClosePos::remove_account(std::int32_t account) {
  Row* above = displayed_ ? get_index(account) : nullptr;
  if (above == nullptr) return;
  for (Row* position : rows_.positions_of(*above)) {
    if (book_.find(position->key().number(), account) == nullptr) MSH.remove(*position);
  }
  // Another session may have the account connected.
  if (connected(account)) return rows_.remove_if_empty(*above);
  CloseRows::show_state(*above, logged_out_state_);
  // One that has left the accounts list leaves this one, too.
  if (sessions_.by_account(account) == nullptr) rows_.take_out(*above);
}

void frmClosePos::account_state(std::int32_t account, AccountState state) {
  Row* row = displayed_ ? get_index(account) : nullptr;
  // Another session may have the account connected.
  if (row == nullptr || (state != AccountState::connected && connected(account))) return;
  if (state == AccountState::invalid) {
    rows_.take_out(*row);
  } else {
    CloseRows::show_state(*row, state);
  }
}

void frmClosePos::refresh_symbols() {
  if (names_stamp_ == symbols_.names_stamp()) return;
  names_stamp_ = symbols_.names_stamp();
  const bool chosen = !CloseSymbols.text().empty();
  CloseSymbols.set_items(symbols_.names());
  if (chosen && CloseSymbols.text().empty()) CloseSymbols_Click();
}

void frmClosePos::result(std::int64_t ticket, std::int32_t account, std::string_view text) {
  round_.result(ticket_key(ticket, account), text);
  if (Row* row = searchpos(ticket, account)) rows_.write_action(*row, text);
}

}  // namespace tutti
