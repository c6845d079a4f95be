#include "dealer/book_file.h"

#include <fmt/format.h>

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
    for (const toml::table* table : reader.tables("account"))
      read_account(*table);
    for (const toml::table* table : reader.tables("position"))
      read_position(*table);
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
    std::int64_t opened = 0;
    for (const char* key : {"ticket", "open_price", "open_time_ms"})
      reader.require(key);
    read_order(reader, position.account, position.side, position.symbol, position.amount);
    reader.integer("ticket", position.ticket, 1, largest);
    reader.number("open_price", position.open_price, 0.0, highest_price);
    reader.number("commission", position.commission, -most_money, most_money);
    reader.number("interest", position.interest, -most_money, most_money);
    reader.integer("open_time_ms", opened, 0, 253'402'300'799'999);  // end of the year 9999
    reader.finish();
    position.open_time = TimePoint{std::chrono::milliseconds{opened}};
    check_number(reader, "ticket", position.ticket);
    if (!fault_) book_.accounts[places_[position.account]].positions.push_back(std::move(position));
  }

  void read_request(const toml::table& table) {
    TableReader reader(table, fault_);
    MarketRequest request;
    reader.require("number");
    read_order(reader, request.account, request.side, request.symbol, request.amount);
    reader.integer("number", request.number, 1, largest);
    reader.integer("ticket", request.ticket, 1, largest);
    reader.finish();
    check_number(reader, "number", request.number);
    book_.requests.push_back(std::move(request));
  }

  // The five values that positions and requests have in common.
  void read_order(TableReader& reader, std::int32_t& account, std::int32_t& side, std::string& symbol,
                  double& amount) {
    std::string word;
    for (const char* key : {"account", "side", "symbol", "amount"})
      reader.require(key);
    reader.integer("account", account, 1, largest_account);
    reader.text("side", word);
    reader.text("symbol", symbol);
    reader.number("amount", amount, 1e-8, most_lots);
    side = word == "sell" ? operation::sell : operation::buy;
    if (word != "buy" && word != "sell") reader.complain("side", "must be \"buy\" or \"sell\"");
    if (!places_.contains(account)) reader.complain("account", "has no [[account]] in this file");
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

std::string_view side_word(std::int32_t side) {
  return side == operation::sell ? "sell" : "buy";
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
  fmt::format_to(out, "version = {}\nnext_number = {}\n", version, book.next_number);
  for (const BookState::Account& account : book.accounts)
    fmt::format_to(out, "\n[[account]]\nnumber = {}\nbalance = {}\ncredit = {}\n", account.number,
                   account.balance, account.credit);
  for (const BookState::Account& account : book.accounts)
    for (const OpenPosition& position : account.positions)
      fmt::format_to(
          out,
          "\n[[position]]\naccount = {}\nticket = {}\nside = \"{}\"\nsymbol = \"{}\"\namount = {}\n"
          "open_price = {}\nopen_time_ms = {}\ncommission = {}\ninterest = {}\n",
          account.number, position.ticket, side_word(position.side), position.symbol, position.amount,
          position.open_price, position.open_time.time_since_epoch().count(), position.commission,
          position.interest);
  for (const MarketRequest& request : book.requests) {
    fmt::format_to(out,
                   "\n[[request]]\naccount = {}\nnumber = {}\nside = \"{}\"\nsymbol = \"{}\"\namount = {}\n",
                   request.account, request.number, side_word(request.side), request.symbol, request.amount);
    if (request.closes()) fmt::format_to(out, "ticket = {}\n", request.ticket);
  }
  return text;
}

}  // namespace tutti
