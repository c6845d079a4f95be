#include "views/frmTrade.h"

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "core/time_texts.h"
#include "views/lot_sums.h"

namespace tutti {
namespace {

constexpr int money_decimals = 2;

}  // namespace

frmTrade::frmTrade(MGeneral& general, CQuestionBox& question_box, const PositionBook& book, CNetPos& net)
    : general_(general), question_box_(question_box), book_(book), net_(net) {
  ColumnWidthsPer("9,9,12,4,8,8,6,8,6,6,6,5,9");
  lvwOpenPos.set_column_tip(Column::time, server_time_tip);
  lvwOpenPos.set_make_cells([this](Row& row) { make_cells(row); }, Column::current_price);
  lbbClose.on_click = [this] { lbbClose_Click(); };
  chkAll.on_click = [this] { chkAll_Click(); };
  lvwOpenPos.on_activate = [this](const Row& row) { edit(row); };
}

void frmTrade::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  lvwOpenPos.set_column_widths(column_widths_);
}

void frmTrade::AddPosition(const Record& position) {
  if (rows_.of(position.slot) == nullptr) {
    rows_.put(position.slot, *lvwOpenPos.add(ticket_key(position.ticket, position.account)));
    written_.resize(std::max(written_.size(), position.slot + std::size_t{1}));
  }
  rows_.outdate(position.slot);
  net_.position_added(position);
}

void frmTrade::make_cells(Row& row) {
  const Record* position = record_of(row);
  if (position == nullptr) return;
  if (std::exchange(written_[position->slot], position->written) != position->written) {
    row.set_whole(Column::ticket, position->ticket);
    row.set_number(Column::account, position->account);
    row.set_text(Column::time, full_time_text(position->open_time));
    row.set_text(Column::type, type_text(*position));
    row.set_number(Column::amount, position->amount);
    row.set_text(Column::symbol, position->symbol);
    row.set_fixed(Column::open_price, position->open_price, position->digits);
    row.set_fixed_or_empty(Column::stop_loss, position->stop_loss, position->digits);
    row.set_fixed_or_empty(Column::take_profit, position->take_profit, position->digits);
    row.standing_changed();
  }
  row.set_fixed(Column::current_price, position->current_price, position->digits);
  row.set_fixed(Column::commission, position->commission, money_decimals);
  row.set_fixed(Column::interest, position->interest, money_decimals);
  row.set_fixed(Column::profit, position->floating_pl, money_decimals);
  rows_.made(position->slot);
}

void frmTrade::RemovePosition(const Record& position) {
  lvwOpenPos.remove(rows_.take(position.slot));
  net_.remove_position(position);
}

void frmTrade::RemovePending(std::span<const Record> gone) {
  for (const Record& position : gone)
    RemovePosition(position);
}

void frmTrade::chkAll_Click() {
  for (Row& row : lvwOpenPos)
    row.set_checked(chkAll.checked());
}

frmTrade::Close frmTrade::close_of(const Record& position) {
  return {position.ticket, as_text_reads(position.amount), position.account};
}

std::vector<frmTrade::Close> frmTrade::ticked() const {
  std::vector<Close> out;
  for (const Row& row : lvwOpenPos)
    if (row.checked()) out.push_back(close_of(*record_of(row)));
  return out;
}

std::string frmTrade::about(const std::vector<Close>& positions) const {
  LotSums sums{"position"};
  int held_back = 0;
  for (const Close& position : positions) {
    const Record* open = book_.find(position.ticket, position.account);
    if (open == nullptr) continue;
    sums.add(open->symbol, position.amount);
    sums.add_profit(open->floating_pl);
    if (awaited(position)) ++held_back;
  }
  std::string which;
  if (positions.size() == 1) {
    which = "#" + std::to_string(positions[0].ticket) + " of account " +
            std::to_string(positions[0].account) + "\n";
  }
  const std::string held = "\nNot sent again, since an answer is awaited: " + std::to_string(held_back);
  return which + sums.text() + (held_back > 0 ? held : "");
}

void frmTrade::edit(const Row& row) const {
  const Record* position = record_of(row);
  if (!EdirMode || position == nullptr) return;
  const auto price = [&](double value) { return as_fixed_reads(value, position->digits); };
  // The side of an SL/TP order is that of the close it will be: a bought position is managed by a sale.
  EdirMode({.mode = "SLTP ",
            .type_text = buys(position->side) ? "Sell(Manage)" : "Buy(Manage)",
            .symbol = position->symbol,
            .account = position->account,
            .number = position->ticket,
            .amount = as_text_reads(position->amount),
            .price = price(position->open_price),
            .stop_loss = price(position->stop_loss),
            .take_profit = price(position->take_profit)});
}

void frmTrade::lbbClose_Click() {
  if (ticked().empty()) return general_.message_box("No selected positions");
  question_box_.Show(
      close_question,
      std::string{"Are you sure you want to close selected postion(s) at current market price(s)?"},
      about(ticked()));
}

void frmTrade::close_one(const Row& row) {
  const Close meant = close_of(*record_of(row));
  constexpr int yes = 1;
  if (general_.msg_box.GeneralQuestionMsg(
          "Are you sure you want to close selected postion at current market price?", about({meant})) != yes)
    return;
  // Events went on while the question stood.
  const Record* now = book_.find(meant.ticket, meant.account);
  if (now == nullptr) {
    return general_.message_box("Position " + std::to_string(meant.ticket) + " is no longer open");
  }
  close_helper(close_of(*now));
}

void frmTrade::closeAllse() {
  // Events went on while the question stood: what is ticked is read again, all of it before anything is sent.
  as_one_ticket([this] {
    for (const Close& close : ticked())
      close_helper(close);
  });
}

}  // namespace tutti
