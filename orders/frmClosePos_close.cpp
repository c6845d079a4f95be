// Marking and closing in the close positions window.

#include <algorithm>
#include <cassert>
#include <charconv>

#include "accounts/account_texts.h"
#include "core/texts.h"
#include "orders/frmClosePos.h"
#include "orders/symbol_choice.h"

namespace tutti {
namespace {

constexpr std::string_view nothing_marked = "There is no selected or open postions for this symbol";
// Of the position text split at its blanks, behind the twelve of them.
constexpr std::size_t ticket_piece = 12;

}  // namespace

void frmClosePos::mark(Row& row, bool marked) {
  row.set_ground(Column::status, marked ? marked_ground : unmarked_ground);
}

std::vector<Row*> frmClosePos::positions_of(const Row& above) {
  std::vector<Row*> out;
  for (std::size_t at = MSH.index_of(above) + 1; at < MSH.size() && is_position(MSH.row(at)); ++at)
    out.push_back(&MSH.row(at));
  return out;
}

void frmClosePos::click(Row& row, std::size_t column) {
  if (is_position(row) && row.reads(column, "Close")) return close_single(row);
  toggle({&row});
}

void frmClosePos::toggle(const std::vector<Row*>& rows) {
  std::vector<Row*> positions;
  for (Row* row : rows) {
    if (is_position(*row)) {
      positions.push_back(row);
    } else {
      for (Row* below : positions_of(*row))
        positions.push_back(below);
    }
  }
  if (positions.empty()) return;
  const bool all = std::all_of(positions.begin(), positions.end(), [](const Row* p) { return marked(*p); });
  for (Row* position : positions)
    mark(*position, !all);
  // The box never says "all" where not all are.
  if (all) chkAllClients.set_checked(false);
}

void frmClosePos::check_all() {
  for (Row& row : MSH)
    if (is_position(row)) mark(row, chkAllClients.checked());
}

std::size_t frmClosePos::marked_count() const {
  return static_cast<std::size_t>(
      std::count_if(MSH.begin(), MSH.end(), [](const Row& row) { return is_position(row) && marked(row); }));
}

std::int64_t frmClosePos::ticket_of(const Row& row) {
  const std::string text = row.text(Column::status);
  const auto pieces = split(text, " ");
  std::int64_t ticket = 0;
  if (pieces.size() > ticket_piece && pieces[ticket_piece].starts_with('#')) {
    const std::string_view number = pieces[ticket_piece].substr(1);
    std::from_chars(number.data(), number.data() + number.size(), ticket);
  }
  assert(ticket == row.key().number());
  return ticket;
}

std::vector<frmTrade::Close> frmClosePos::marked_positions() const {
  std::vector<frmTrade::Close> out;
  std::int32_t number = 0;
  for (const Row& row : MSH) {
    if (!row.cell(Column::account).empty()) {
      number = static_cast<std::int32_t>(row.cell(Column::account).stored_number());
    } else if (!row.cell(Column::status).empty() && marked(row)) {
      out.push_back({ticket_of(row), row.cell(Column::amount).number(), number});
    }
  }
  return out;
}

void frmClosePos::close_postions() {
  if (CloseSymbols.text().empty()) return general_.message_box("No symbol is selected");
  if (!symbol_taken(general_, CloseSymbols)) return;
  const std::vector<frmTrade::Close> positions = marked_positions();
  if (positions.empty()) return general_.message_box(nothing_marked);
  question_box_.Show(
      marked_question,
      std::string{"Are you sure you want to close selected postion(s) at current market price(s)?"},
      trade_.about(positions));
}

void frmClosePos::closepos() {
  const std::vector<frmTrade::Close> positions = marked_positions();
  if (positions.empty()) return general_.message_box(nothing_marked);
  send(positions);
}

void frmClosePos::close_single(const Row& row) {
  const frmTrade::Close position{ticket_of(row), row.cell(Column::amount).number(), row.key().account()};
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
  mark(*row, true);
  send({{*ticket, row->cell(Column::amount).number(), row->key().account()}});
}

void frmClosePos::send(const std::vector<frmTrade::Close>& positions) {
  sent_.clear();
  settled_ = {};
  for (const frmTrade::Close& position : positions) {
    const RowKey key = ticket_key(position.ticket, position.account);
    answers_.erase(key);
    unsent_.erase(key);
    if (close_helper && close_helper(position)) {
      sent_.push_back(position);
    } else {
      unsent_.insert(key);
      settled_.count(OrderAnswer::refused);
    }
    if (Row* row = searchpos(position.ticket, position.account)) write_action(*row, waiting_text);
  }
}

const SentOrder* frmClosePos::close_request(RowKey position) const {
  const CClientAPIManager* session = accounts_list_.sessions().by_account(position.account());
  return session == nullptr ? nullptr : session->sent_request(RequestKind::close, position.number());
}

// A close on its way from another window is newer than the one that was not sent here.
bool frmClosePos::not_sent(RowKey position, const SentOrder* sent) const {
  return unsent_.contains(position) && (sent == nullptr || sent->settled());
}

OrderAnswer frmClosePos::answer_of(const Row& row) const {
  if (!is_position(row)) return OrderAnswer::none;
  const SentOrder* sent = close_request(row.key());
  if (not_sent(row.key(), sent)) return OrderAnswer::refused;
  return sent == nullptr ? OrderAnswer::none : answer_from(sent->outcome);
}

std::string_view frmClosePos::answer_text(const Row& row) const {
  if (!is_position(row)) return {};
  const SentOrder* sent = close_request(row.key());
  if (not_sent(row.key(), sent)) return "Not sent";
  if (sent == nullptr) return {};
  const OrderAnswer answer = answer_from(sent->outcome);
  if (answer != OrderAnswer::refused && answer != OrderAnswer::waiting) return {};
  if (sent->request_code != request::taken) return request::text(sent->request_code);
  const auto at = answers_.find(row.key());
  return at == answers_.end() ? std::string_view{} : at->second;
}

std::string frmClosePos::user_names(const Row& row) const {
  const auto number = is_position(row) ? row.key().account()
                                       : static_cast<std::int32_t>(row.cell(Column::account).stored_number());
  return tutti::user_names(accounts_list_.account_book(), number);
}

OrderAnswers frmClosePos::answers() {
  OrderAnswers open;
  std::erase_if(sent_, [&](const frmTrade::Close& position) {
    const SentOrder* sent = close_request(ticket_key(position.ticket, position.account));
    const OrderAnswer answer = sent == nullptr ? OrderAnswer::unknown : answer_from(sent->outcome);
    const bool settled = answer == OrderAnswer::accepted || answer == OrderAnswer::refused;
    (settled ? settled_ : open).count(answer);
    return settled;
  });
  open.accepted = settled_.accepted;
  open.refused = settled_.refused;
  return open;
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
    for (Row* position : positions_of(*above))
      mark(*position, true);
  }
  // The first of them is in sight, wherever the list stood before.
  const auto first = std::find_if(MSH.begin(), MSH.end(), [](const Row& row) { return marked(row); });
  if (first != MSH.end() && reveal) reveal(*first);
}

}  // namespace tutti
