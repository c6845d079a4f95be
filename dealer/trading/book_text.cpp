#include "dealer/trading/book_text.h"

#include <fmt/format.h>

#include "core/checksum.h"
#include "dealer/trading/book_words.h"
#include "dealer/trading/history_text.h"

namespace tutti::book_text {
namespace {

std::string line(const std::string& content) {
  return fmt::format("{}{}{}\n", content, checksum_mark, checksum(content));
}

std::int64_t milliseconds(TimePoint time) {
  return time.time_since_epoch().count();
}

// No name of a symbol has a character that needs more than the quotes.
std::string order_fields(std::int32_t account, Operation side, const std::string& symbol, double amount) {
  return fmt::format("account = {}, side = \"{}\", symbol = \"{}\", amount = {}", account,
                     word_of(side_words, side), symbol, amount);
}

template <class Order>
std::string price_fields(const Order& order) {
  std::string text = fmt::format(", price = {}, stop_loss = {}, take_profit = {}", order.price,
                                 order.stop_loss, order.take_profit);
  if (order.reference != 0) text += fmt::format(", reference = {}", order.reference);
  return text;
}

std::string fields(const BookState::Account& account) {
  return fmt::format("number = {}, balance = {}, credit = {}", account.number, account.balance,
                     account.credit);
}

std::string fields(std::int32_t account, const OpenPosition& position) {
  return fmt::format("ticket = {}, {}, open_price = {}, open_time_ms = {}, commission = {}, interest = {}",
                     position.ticket, order_fields(account, position.side, position.symbol, position.amount),
                     position.open_price, milliseconds(position.open_time), position.commission,
                     position.interest);
}

std::string fields(std::int32_t account, const PendingOrder& order) {
  return fmt::format("number = {}, kind = \"{}\", {}, time_ms = {}{}", order.order,
                     order_kind::text(order.kind),
                     order_fields(account, order.operation, order.symbol, order.amount),
                     milliseconds(order.time), price_fields(order));
}

std::string fields(const TradeRequest& request) {
  return fmt::format("number = {}, kind = \"{}\", stage = \"{}\", {}, due_ms = {}{}{}", request.number,
                     word_of(kind_words, request.kind), word_of(stage_words, request.stage),
                     order_fields(request.account, request.operation, request.symbol, request.amount),
                     milliseconds(request.due), price_fields(request),
                     request.id != 0 ? fmt::format(", id = {}", request.id) : "");
}

// Puts the parts of a list or table together, with commas between them.
class Parts {
 public:
  void add(std::string_view part) { text_.append(text_.empty() ? "" : ", ").append(part); }
  void add_table(const std::string& table) { add("{" + table + "}"); }
  void add_list(std::string_view key, const Parts& list) {
    if (!list.text_.empty()) add(fmt::format("{} = [{}]", key, list.text_));
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace

std::string book_head(std::int64_t generation, std::size_t entries) {
  return line(
      fmt::format("book = {{version = {}, generation = {}, entries = {}}}", version, generation, entries));
}

std::string log_head(std::int64_t generation) {
  return line(fmt::format("log = {{version = {}, generation = {}}}", version, generation));
}

std::string history_head(TimePoint since) {
  return line(fmt::format("requests = {{version = {}, fills_since_ms = {}}}", version, milliseconds(since)));
}

std::string entry(const BookEntry& entry, const BookPiece& piece) {
  Parts accounts, positions, orders, requests, told, fills, gone, all;
  for (const BookState::Account& account : entry.accounts) {
    accounts.add_table(fields(account));
    for (const OpenPosition& position : account.positions)
      positions.add_table(fields(account.number, position));
    for (const PendingOrder& order : account.orders)
      orders.add_table(fields(account.number, order));
  }
  for (const TradeRequest& request : entry.requests)
    requests.add_table(fields(request));
  for (const std::int64_t number : entry.gone)
    gone.add(std::to_string(number));
  if (piece.number != 0) all.add(fmt::format("piece = [{}, {}, {}]", piece.number, piece.line, piece.lines));
  for (const RequestRecord& record : entry.history.requests)
    told.add("\"" + history_text::of(record) + "\"");
  for (const Execution& fill : entry.history.fills)
    fills.add("\"" + history_text::of(fill) + "\"");
  if (entry.era != 0) all.add(fmt::format("era = \"{:016x}\"", entry.era));
  if (entry.next_number != 0) all.add(fmt::format("next_number = {}", entry.next_number));
  if (entry.next_rollover != TimePoint{})
    all.add(fmt::format("next_rollover_ms = {}", milliseconds(entry.next_rollover)));
  all.add_list("gone", gone);
  all.add_list("account", accounts);
  all.add_list("position", positions);
  all.add_list("order", orders);
  all.add_list("request", requests);
  all.add_list("told", told);
  all.add_list("fill", fills);
  return line("entry = {" + all.text() + "}");
}

std::string book(const BookState& state, std::int64_t generation) {
  std::string text =
      "# Book of the dealing server. Change it only while the server is not running, and take the checksum\n"
      "# off the end of a line that you change.\n" +
      book_head(generation, state.accounts.size() + state.requests.size() + 2);
  BookEntry common;
  common.era = state.era;
  common.history = state.history;
  common.next_number = state.next_number;
  common.next_rollover = state.next_rollover;
  text += entry(common);
  for (const BookState::Account& account : state.accounts) {
    BookEntry one;
    one.accounts = {account};
    text += entry(one);
  }
  for (const TradeRequest& request : state.requests) {
    BookEntry one;
    one.requests = {request};
    text += entry(one);
  }
  return text += entry({});
}

}  // namespace tutti::book_text
