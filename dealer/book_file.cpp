#include "dealer/book_file.h"

#include <fmt/format.h>

#include <cstdlib>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "dealer/table_reader.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

constexpr std::int64_t version = 1;
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int32_t largest_account = std::numeric_limits<std::int32_t>::max();
// Bounds that no honest book comes near, and within which sums stay finite.
constexpr double most_money = 1e15;
constexpr double most_lots = 1e9;
constexpr double highest_price = 1e9;

constexpr Word<TradeKind> kind_words[] = {
    {"open", TradeKind::open},
    {"close", TradeKind::close},
    {"entry", TradeKind::entry},
    {"update_entry", TradeKind::update_entry},
    {"set_stops", TradeKind::set_stops},
    {"cancel_entry", TradeKind::cancel_entry},
    {"cancel_stops", TradeKind::cancel_stops},
};
constexpr Word<TradeRequest::Stage> stage_words[] = {
    {"sent", TradeRequest::Stage::sent},
    {"dealing", TradeRequest::Stage::dealing},
    {"accepted", TradeRequest::Stage::accepted},
    {"rejected", TradeRequest::Stage::rejected},
};

// Reads the tables of one book in turn; the first fault ends all.
class BookReader {
 public:
  explicit BookReader(const toml::table& root) : root_(root) {}

  tl::expected<BookState, std::string> read() {
    TableReader reader(root_, fault_);
    std::int64_t found = 0;
    reader.require("version");
    reader.integer("version", found, version, version);
    reader.require("next_number");
    reader.integer("next_number", book_.next_number, 1, largest);
    read_time(reader, "next_rollover_ms", book_.next_rollover);
    for (const toml::table* table : reader.tables("account"))
      read_account(*table);
    for (const toml::table* table : reader.tables("position"))
      read_position(*table);
    for (const toml::table* table : reader.tables("order"))
      read_pending(*table);
    for (const toml::table* table : reader.tables("request"))
      read_request(*table);
    reader.finish();
    if (fault_) return tl::unexpected(*fault_);
    return std::move(book_);
  }

 private:
  void read_account(const toml::table& table) {
    TableReader reader(table, fault_);
    BookState::Account account;
    for (const char* key : {"number", "balance", "credit"})
      reader.require(key);
    reader.integer("number", account.number, 1, largest_account);
    reader.number("balance", account.balance, -most_money, most_money);
    reader.number("credit", account.credit, -most_money, most_money);
    reader.finish();
    if (!fault_ && !places_.emplace(account.number, book_.accounts.size()).second)
      reader.complain("number", "is given twice");
    book_.accounts.push_back(std::move(account));
  }

  void read_position(const toml::table& table) {
    TableReader reader(table, fault_);
    OpenPosition position;
    for (const char* key : {"ticket", "open_price", "open_time_ms"})
      reader.require(key);
    read_order(reader, position.account, position.side, position.symbol, position.amount);
    if (std::abs(position.side) != operation::buy) reader.complain("side", "must be \"buy\" or \"sell\"");
    reader.integer("ticket", position.ticket, 1, largest);
    reader.number("open_price", position.open_price, 0.0, highest_price);
    reader.number("commission", position.commission, -most_money, most_money);
    reader.number("interest", position.interest, -most_money, most_money);
    read_time(reader, "open_time_ms", position.open_time);
    reader.finish();
    check_number(reader, "ticket", position.ticket);
    if (!fault_) book_.accounts[places_[position.account]].positions.push_back(std::move(position));
  }

  void read_pending(const toml::table& table) {
    TableReader reader(table, fault_);
    PendingOrder order;
    for (const char* key : {"number", "kind", "price", "time_ms"})
      reader.require(key);
    read_order(reader, order.account, order.operation, order.symbol, order.amount);
    reader.integer("number", order.order, 1, largest);
    reader.text("kind", order.kind);
    if (order.kind != "LO" && order.kind != "ST") reader.complain("kind", "must be \"LO\" or \"ST\"");
    reader.integer("reference", order.reference, 1, largest);
    read_prices(reader, order.price, order.stop_loss, order.take_profit);
    read_time(reader, "time_ms", order.time);
    reader.finish();
    check_number(reader, "number", order.order);
    check_waiting(reader, order);
    if (!fault_) book_.accounts[places_[order.account]].orders.push_back(std::move(order));
  }

  void read_request(const toml::table& table) {
    TableReader reader(table, fault_);
    TradeRequest request;
    reader.require("number");
    read_order(reader, request.account, request.operation, request.symbol, request.amount);
    reader.integer("number", request.number, 1, largest);
    request.kind = read_word(reader, "kind", kind_words, TradeKind::open);
    request.stage = read_word(reader, "stage", stage_words, TradeRequest::Stage::sent);
    if (request.kind != TradeKind::open && request.kind != TradeKind::entry) reader.require("reference");
    reader.integer("reference", request.reference, 1, largest);
    read_prices(reader, request.price, request.stop_loss, request.take_profit);
    reader.finish();
    check_number(reader, "number", request.number);
    const bool entry = request.kind == TradeKind::entry || request.kind == TradeKind::update_entry;
    if (entry && request.price <= 0.0) reader.complain("price", "must be above 0");
    book_.requests.push_back(std::move(request));
  }

  static void read_prices(TableReader& reader, double& price, double& stop_loss, double& take_profit) {
    reader.number("price", price, 0.0, highest_price);
    reader.number("stop_loss", stop_loss, 0.0, highest_price);
    reader.number("take_profit", take_profit, 0.0, highest_price);
  }

  static void read_time(TableReader& reader, std::string_view key, TimePoint& time) {
    std::int64_t count = time.time_since_epoch().count();
    reader.integer(key, count, 0, 253'402'300'799'999);  // end of the year 9999
    time = TimePoint{std::chrono::milliseconds{count}};
  }

  // The four values that positions, orders and requests have in common.
  void read_order(TableReader& reader, std::int32_t& account, std::int32_t& side, std::string& symbol,
                  double& amount) {
    for (const char* key : {"account", "side", "symbol", "amount"})
      reader.require(key);
    reader.integer("account", account, 1, largest_account);
    side = read_word(reader, "side", side_words, operation::buy);
    reader.text("symbol", symbol);
    reader.number("amount", amount, 1e-8, most_lots);
    if (!places_.contains(account)) reader.complain("account", "has no [[account]] in this file");
  }

  // An order that would close another thing than it belongs to, or be set off by any price, must not wait.
  void check_waiting(TableReader& reader, const PendingOrder& order) {
    if (order.kind == "LO" && order.price <= 0.0) reader.complain("price", "must be above 0");
    if (order.kind != "ST") return;
    reader.require("reference");
    if (fault_) return;
    for (const OpenPosition& position : book_.accounts[places_[order.account]].positions) {
      if (position.ticket != order.reference) continue;
      if (position.symbol != order.symbol) reader.complain("symbol", "is not that of the position");
      if ((position.side > 0) == (order.operation > 0))
        reader.complain("side", "does not close the position");
    }
  }

  // Numbers that come again would let two orders be taken for one.
  void check_number(TableReader& reader, std::string_view key, std::int64_t number) {
    if (number >= book_.next_number) reader.complain(key, "must be below next_number");
    if (!numbers_.insert(number).second) reader.complain(key, "is given twice");
  }

  const toml::table& root_;
  std::optional<std::string> fault_;
  BookState book_;
  std::map<std::int32_t, std::size_t> places_;
  std::set<std::int64_t> numbers_;
};

template <class Value, std::size_t count>
std::string_view word_of(const Word<Value> (&words)[count], Value value) {
  for (const Word<Value>& word : words)
    if (word.value == value) return word.text;
  return {};
}

}  // namespace

tl::expected<BookState, FileError> read_book(const std::filesystem::path& file) {
  auto content = read_file(file);
  if (!content) return tl::unexpected(content.error());
  std::optional<std::string> fault;
  const auto root = parse_toml(*content, fault);
  if (!root) return tl::unexpected(FileError{file, *fault});
  auto book = BookReader(*root).read();
  if (!book) return tl::unexpected(FileError{file, book.error()});
  return std::move(*book);
}

std::string book_text(const BookState& book) {
  std::string text = "# Book of the dealing server. Change it only while the server is not running.\n";
  auto out = std::back_inserter(text);
  fmt::format_to(out, "version = {}\nnext_number = {}\nnext_rollover_ms = {}\n", version, book.next_number,
                 book.next_rollover.time_since_epoch().count());
  for (const BookState::Account& account : book.accounts)
    fmt::format_to(out, "\n[[account]]\nnumber = {}\nbalance = {}\ncredit = {}\n", account.number,
                   account.balance, account.credit);
  for (const BookState::Account& account : book.accounts)
    for (const OpenPosition& position : account.positions)
      fmt::format_to(
          out,
          "\n[[position]]\naccount = {}\nticket = {}\nside = \"{}\"\nsymbol = \"{}\"\namount = {}\n"
          "open_price = {}\nopen_time_ms = {}\ncommission = {}\ninterest = {}\n",
          account.number, position.ticket, word_of(side_words, position.side), position.symbol,
          position.amount, position.open_price, position.open_time.time_since_epoch().count(),
          position.commission, position.interest);
  for (const BookState::Account& account : book.accounts)
    for (const PendingOrder& order : account.orders) {
      fmt::format_to(out,
                     "\n[[order]]\naccount = {}\nnumber = {}\nkind = \"{}\"\nside = \"{}\"\nsymbol = \"{}\"\n"
                     "amount = {}\nprice = {}\nstop_loss = {}\ntake_profit = {}\ntime_ms = {}\n",
                     account.number, order.order, order.kind, word_of(side_words, order.operation),
                     order.symbol, order.amount, order.price, order.stop_loss, order.take_profit,
                     order.time.time_since_epoch().count());
      if (order.reference != 0) fmt::format_to(out, "reference = {}\n", order.reference);
    }
  for (const TradeRequest& request : book.requests) {
    fmt::format_to(out,
                   "\n[[request]]\naccount = {}\nnumber = {}\nkind = \"{}\"\nstage = \"{}\"\nside = \"{}\"\n"
                   "symbol = \"{}\"\namount = {}\nprice = {}\nstop_loss = {}\ntake_profit = {}\n",
                   request.account, request.number, word_of(kind_words, request.kind),
                   word_of(stage_words, request.stage), word_of(side_words, request.operation),
                   request.symbol, request.amount, request.price, request.stop_loss, request.take_profit);
    if (request.reference != 0) fmt::format_to(out, "reference = {}\n", request.reference);
  }
  return text;
}

}  // namespace tutti
