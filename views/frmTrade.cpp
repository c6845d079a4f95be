#include "views/frmTrade.h"

#include <utility>

#include "views/lot_sums.h"

namespace tutti {
namespace {

constexpr int money_decimals = 2;

}  // namespace

frmTrade::frmTrade(MGeneral& general, CQuestionBox& question_box, Desk& desk, const SymbolCollection& symbols)
    : general_(general), question_box_(question_box), desk_(desk), symbols_(symbols) {
  ColumnWidthsPer("9,9,12,4,8,8,6,8,6,6,6,5,9");
  lvwOpenPos.set_column_tip(Column::time, server_time_tip);
  lbbClose.on_click = [this] { lbbClose_Click(); };
  chkAll.on_click = [this] { chkAll_Click(); };
  lvwOpenPos.on_activate = [this](const Row& row) { edit(row); };
}

void frmTrade::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  general_.column_widths(lvwOpenPos, column_widths_);
}

void frmTrade::AddPosition(const OpenPosition& position) {
  const RowKey key = ticket_key(position.ticket, position.account);
  Row* row = lvwOpenPos.find(key);
  if (row == nullptr) row = lvwOpenPos.add(key);
  const int decimals = symbols_.digits(position.symbol);
  row->set_whole(Column::ticket, position.ticket);
  row->set_number(Column::account, position.account);
  row->set_text(Column::time, general_.full_time_text(position.open_time));
  row->set_text(Column::type, position.side > 0 ? "Buy" : "Sell");
  row->set_number(Column::amount, position.amount);
  row->set_text(Column::symbol, position.symbol);
  row->set_fixed(Column::open_price, position.open_price, decimals);
  row->set_fixed(Column::current_price, position.current_price, decimals);
  row->set_fixed_or_empty(Column::stop_loss, position.stop_loss, decimals);
  row->set_fixed_or_empty(Column::take_profit, position.take_profit, decimals);
  floating_changed(position);
  desk_.net->position_added(position);
}

void frmTrade::floating_changed(const OpenPosition& position) {
  Row* row = lvwOpenPos.find(ticket_key(position.ticket, position.account));
  if (row == nullptr) return;
  Cell* cells = row->edit_from(0, row->columns());
  cells[Column::current_price].set_number(position.current_price, NumberFormat::fixed);
  cells[Column::commission].set_fixed(position.commission, money_decimals);
  cells[Column::interest].set_fixed(position.interest, money_decimals);
  cells[Column::profit].set_fixed(position.floating_pl, money_decimals);
}

void frmTrade::RemovePosition(std::int64_t number, std::int32_t of_account) {
  if (Row* row = lvwOpenPos.find(ticket_key(number, of_account))) lvwOpenPos.remove(*row);
  desk_.net->remove_position(number, of_account);
}

void frmTrade::RemovePending(std::int32_t number, const Numbers& kept) {
  lvwOpenPos.remove_if(
      [&](const Row& row) { return row.key().account() == number && !kept.contains(row.key().number()); });
  desk_.net->remove_account(number, kept);
}

void frmTrade::chkAll_Click() {
  for (Row& row : lvwOpenPos)
    row.set_checked(chkAll.checked());
}

frmTrade::Close frmTrade::close_of(const Row& row) {
  return {row.key().number(), row.cell(Column::amount).number(),
          static_cast<std::int32_t>(row.cell(Column::account).stored_number())};
}

const Row* frmTrade::row_of(const Close& position) const {
  return lvwOpenPos.find(ticket_key(position.ticket, position.account));
}

std::vector<frmTrade::Close> frmTrade::ticked() const {
  std::vector<Close> out;
  for (const Row& row : lvwOpenPos)
    if (row.checked()) out.push_back(close_of(row));
  return out;
}

std::string frmTrade::about(const std::vector<Close>& positions) const {
  LotSums sums{"position"};
  for (const Close& position : positions) {
    const Row* row = row_of(position);
    if (row == nullptr) continue;
    sums.add(row->text(Column::symbol), position.amount);
    sums.add_profit(row->cell(Column::profit).stored_number());
  }
  std::string which;
  if (positions.size() == 1) {
    which = "#" + std::to_string(positions[0].ticket) + " of account " +
            std::to_string(positions[0].account) + "\n";
  }
  return which + sums.text();
}

void frmTrade::edit(const Row& row) const {
  if (!EdirMode) return;
  // The side of an SL/TP order is that of the close it will be: a bought position is managed by a sale.
  EdirMode({.mode = "SLTP ",
            .type_text = row.reads(Column::type, "Buy") ? "Sell(Manage)" : "Buy(Manage)",
            .symbol = row.text(Column::symbol),
            .account = static_cast<std::int32_t>(row.cell(Column::account).stored_number()),
            .number = row.key().number(),
            .amount = row.cell(Column::amount).number(),
            .price = row.cell(Column::open_price).number(),
            .stop_loss = row.cell(Column::stop_loss).number(),
            .take_profit = row.cell(Column::take_profit).number()});
}

void frmTrade::lbbClose_Click() {
  if (ticked().empty()) return general_.message_box("No selected positions");
  question_box_.Show(
      close_question,
      std::string{"Are you sure you want to close selected postion(s) at current market price(s)?"},
      about(ticked()));
}

void frmTrade::close_one(const Row& row) {
  const Close meant = close_of(row);
  constexpr int yes = 1;
  if (general_.msg_box.GeneralQuestionMsg(
          "Are you sure you want to close selected postion at current market price?", about({meant})) != yes)
    return;
  // Events went on while the question stood.
  const Row* now = row_of(meant);
  if (now == nullptr) {
    return general_.message_box("Position " + std::to_string(meant.ticket) + " is no longer open");
  }
  close_helper(close_of(*now));
}

void frmTrade::closeAllse() {
  // Events went on while the question stood: what is ticked is read again, all of it before anything is sent.
  for (const Close& close : ticked())
    close_helper(close);
}

}  // namespace tutti
