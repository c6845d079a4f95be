// Marking and closing in the close positions window.

#include <algorithm>
#include <iterator>
#include <utility>

#include "accounts/account_texts.h"
#include "orders/frmClosePos.h"
#include "orders/symbol_choice.h"

namespace tutti {
namespace {

constexpr std::string_view nothing_marked = "There is no selected or open postions for this symbol";

}  // namespace

void frmClosePos::click(Row& row, std::size_t column) {
  if (is_position(row) && row.reads(column, "Close")) return close_single(row);
  toggle({&row});
}

void frmClosePos::toggle(const std::vector<Row*>& rows) {
  // The box never says "all" where not all are.
  if (rows_.toggle(rows)) chkAllClients.set_checked(false);
}

void frmClosePos::check_all() {
  for (Row& row : MSH)
    if (is_position(row)) CloseRows::mark(row, chkAllClients.checked());
}

void frmClosePos::close_postions() {
  if (CloseSymbols.text().empty()) return general_.message_box("No symbol is selected");
  if (!symbol_taken(general_, CloseSymbols)) return;
  const std::vector<frmTrade::Close> positions = rows_.marked_positions();
  if (positions.empty()) return general_.message_box(nothing_marked);
  question_box_.Show(
      marked_question,
      std::string{"Are you sure you want to close selected postion(s) at current market price(s)?"},
      trade_.about(positions));
}

void frmClosePos::closepos() {
  const std::vector<frmTrade::Close> positions = rows_.marked_positions();
  if (positions.empty()) return general_.message_box(nothing_marked);
  send(positions);
}

void frmClosePos::close_single(const Row& row) {
  const frmTrade::Close position{CloseRows::ticket_of(row), row.cell(Column::amount).number(),
                                 row.key().account()};
  question_box_.Show(single_question,
                     std::string{"Are you sure you want to close selected postion at current market price?"},
                     trade_.about({position}), position.ticket, std::int64_t{position.account});
}

void frmClosePos::closepos1() {
  // Events went on while the question stood.
  const auto* ticket = std::get_if<std::int64_t>(&question_box_.value(3));
  const auto* number = std::get_if<std::int64_t>(&question_box_.value(4));
  Row* row = ticket == nullptr || number == nullptr ? nullptr
                                                    : searchpos(*ticket, static_cast<std::int32_t>(*number));
  if (row == nullptr) return general_.message_box(nothing_marked);
  CloseRows::mark(*row, true);
  send({{*ticket, row->cell(Column::amount).number(), row->key().account()}});
}

void frmClosePos::send(const std::vector<frmTrade::Close>& positions) {
  round_.begin();
  const auto ask = [&] {
    for (const frmTrade::Close& position : positions) {
      round_.renew(position);
      round_.add(position, close_helper && close_helper(position));
      if (Row* row = searchpos(position.ticket, position.account)) rows_.write_action(*row, waiting_text);
    }
  };
  trade_.as_one_ticket(ask);
}

std::string frmClosePos::user_names(const Row& row) const {
  return tutti::user_names(accounts_, CloseRows::account_of(row));
}

void frmClosePos::take(std::vector<PositionBlock> blocks) {
  blocks_.assign(std::make_move_iterator(blocks.begin()), std::make_move_iterator(blocks.end()));
  take_block();
}

void frmClosePos::take_block() {
  if (blocks_.empty()) return;
  const PositionBlock block = std::move(blocks_.front());
  blocks_.pop_front();
  next_block.set_visible(!blocks_.empty());
  if (!blocks_.empty()) {
    next_block.set_text("Next symbol: " + blocks_.front().symbol +
                        (blocks_.size() > 1 ? " (" + std::to_string(blocks_.size()) + " left)" : ""));
  }
  if (show) show();
  refresh_symbols();
  // Choosing one that is not there empties the grid: nothing of another symbol stands marked.
  CloseSymbols.choose(block.symbol);
  if (CloseSymbols.text().empty()) {
    return general_.message_box(block.symbol + " is not visible for any of the connected accounts");
  }
  for (const std::int32_t number : block.accounts) {
    const Row* above = get_index(number);
    if (above == nullptr) continue;
    for (Row* position : rows_.positions_of(*above))
      CloseRows::mark(*position, true);
  }
  // The first of them is in sight, wherever the list stood before.
  const auto first = std::find_if(MSH.begin(), MSH.end(), [](const Row& row) { return marked(row); });
  if (first != MSH.end() && reveal) reveal(*first);
}

}  // namespace tutti
