#include "dealer/trading/book_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <utility>

#include "dealer/config/bounds.h"
#include "dealer/trading/book_lines.h"
#include "dealer/trading/book_words.h"
#include "dealer/trading/history_text.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int32_t largest_account = std::numeric_limits<std::int32_t>::max();
using bounds::highest_price;
using bounds::most_money;

void read_prices(TableReader& reader, double& price, double& stop_loss, double& take_profit) {
  reader.number("price", price, 0.0, highest_price);
  reader.number("stop_loss", stop_loss, 0.0, highest_price);
  reader.number("take_profit", take_profit, 0.0, highest_price);
}

void read_time(TableReader& reader, std::string_view key, TimePoint& time) {
  std::int64_t count = time.time_since_epoch().count();
  reader.integer(key, count, 0, 253'402'300'799'999);  // end of the year 9999
  time = TimePoint{std::chrono::milliseconds{count}};
}

template <class Record>
void put(std::vector<Record>& records, Record record, std::int64_t Record::*number) {
  const auto at = std::find_if(records.begin(), records.end(),
                               [&](const Record& other) { return other.*number == record.*number; });
  if (at == records.end())
    records.push_back(std::move(record));
  else
    *at = std::move(record);
}

template <class Record>
void take(std::vector<Record>& records, std::int64_t wanted, std::int64_t Record::*number) {
  std::erase_if(records, [&](const Record& record) { return record.*number == wanted; });
}

}  // namespace

BookReader::Outcome BookReader::read_book(std::string_view content) {
  // Books that were written before there was a log begin with their version.
  std::size_t start = 0;
  while (start < content.size() && (content[start] == '#' || content[start] == '\n'))
    start = std::min(content.find('\n', start), content.size() - 1) + 1;
  if (content.substr(start).starts_with("book")) return read_lines(content, "book", 0);
  if (const auto root = parse_toml(content, fault_)) read_whole(*root);
  return {.fault = fault_};
}

BookReader::Outcome BookReader::read_log(std::string_view content, std::int64_t generation) {
  changing_ = true;
  return read_lines(content, "log", generation);
}

BookReader::Outcome BookReader::read_lines(std::string_view content, std::string_view head,
                                           std::int64_t generation) {
  Outcome outcome;
  std::int64_t expected = -1;
  const std::vector<BookLine> lines = book_lines(content);
  const bool headed = !lines.empty() && lines.front().table;
  if (headed) {
    lines_before_ = lines.front().number - 1;
    read_head(*lines.front().table, head, outcome, expected);
    outcome.stale = outcome.generation < generation;
    if (!fault_ && head == "log" && outcome.generation > generation)
      fault_ =
          fmt::format("line {}: goes with another book than the one in this folder", lines.front().number);
  }
  const std::size_t last = lines.empty() ? 0 : lines.back().number;
  const auto whole = lines_that_count(lines);
  if (!fault_ && !outcome.stale && !whole) fault_ = whole.error();
  for (std::size_t i = 1; whole && i < *whole && !fault_ && !outcome.stale; ++i) {
    read_line(lines[i]);
    ++outcome.entries;
  }
  if (whole && *whole < lines.size() && !outcome.stale) {
    outcome.cut = lines[*whole].number;
    outcome.cut_end = last;
  }
  // A log without its head holds nothing; of a book nothing but its last line can be spared.
  if (lines.empty() && head == "log") outcome.cut = outcome.cut_end = 1;
  const auto found = static_cast<std::int64_t>(outcome.entries);
  if (!fault_ && !headed && head != "log") fault_ = fmt::format("line {}: {} is missing", last, head);
  if (!fault_ && head == "book" && found != expected) {
    if (outcome.cut == 0) outcome.cut = outcome.cut_end = last + 1;
    if (found + 1 != expected)
      fault_ = fmt::format("line {}: {} of {} entries are there", outcome.cut, found, expected);
  }
  outcome.fault = fault_;
  return outcome;
}

void BookReader::read_line(const BookLine& line) {
  lines_before_ = line.number - 1;
  TableReader reader(*line.table, fault_, lines_before_);
  const toml::table* entry = reader.table("entry");
  reader.require("entry");
  reader.finish();
  if (entry == nullptr) return;
  TableReader values(*entry, fault_, lines_before_);
  values.integers("piece");  // which one it is counts where lines are damaged only
  read_entry(values);
  values.finish();
}

void BookReader::read_head(const toml::table& table, std::string_view key, Outcome& outcome,
                           std::int64_t& entries) {
  TableReader reader(table, fault_, lines_before_);
  reader.require(key);
  const toml::table* head = reader.table(key);
  reader.finish();
  if (head == nullptr) return;
  TableReader values(*head, fault_, lines_before_);
  values.require("version");
  if (key == "requests")
    values.require("fills_since_ms");
  else
    values.require("generation");
  if (key == "book") values.require("entries");
  std::int64_t version = 0;
  values.integer("version", version, book_text::version, book_text::version);
  values.integer("generation", outcome.generation, 1, largest);
  values.integer("entries", entries, 0, largest);
  read_time(values, "fills_since_ms", outcome.since);
  values.finish();
}

void BookReader::read_whole(const toml::table& root) {
  TableReader reader(root, fault_);
  std::int64_t version = 0;
  reader.require("version");
  reader.integer("version", version, 1, 1);
  reader.require("next_number");
  read_entry(reader);
  reader.finish();
}

void BookReader::read_entry(TableReader& reader) {
  read_era(reader);
  read_history_texts(reader);
  reader.integer("next_number", state_.next_number, 1, largest);
  read_time(reader, "next_rollover_ms", state_.next_rollover);
  for (const std::int64_t number : reader.integers("gone"))
    remove(reader, number);
  for (const toml::table* table : reader.tables("account"))
    read_account(*table);
  for (const toml::table* table : reader.tables("position"))
    read_position(*table);
  for (const toml::table* table : reader.tables("order"))
    read_pending(*table);
  for (const toml::table* table : reader.tables("request"))
    read_request(*table);
}

void BookReader::read_era(TableReader& reader) {
  std::string era;
  reader.text("era", era);
  const auto [end, error] = std::from_chars(era.data(), era.data() + era.size(), state_.era, 16);
  const bool good = error == std::errc{} && end == era.data() + era.size() && state_.era != 0;
  if (reader.has("era") && !good) reader.complain("era", "must be a hexadecimal number");
}

void BookReader::read_history_texts(TableReader& reader) {
  std::vector<std::string> told, fills;
  reader.texts("told", told);
  reader.texts("fill", fills);
  for (const std::string& text : told)
    if (auto record = history_text::request(text))
      state_.history.requests.push_back(std::move(*record));
    else
      reader.complain("told", fmt::format("holds \"{}\", which is no request", text));
  for (const std::string& text : fills)
    if (auto fill = history_text::fill(text))
      state_.history.fills.push_back(std::move(*fill));
    else
      reader.complain("fill", fmt::format("holds \"{}\", which is no fill", text));
}

HistoryState BookReader::history_in(const BookLine& line) {
  BookReader reader;
  const toml::table* entry = line.table ? (*line.table)["entry"].as_table() : nullptr;
  if (entry == nullptr) return {};
  TableReader values(*entry, reader.fault_);
  reader.read_history_texts(values);
  return std::move(reader.state_.history);
}

void BookReader::read_account(const toml::table& table) {
  TableReader reader(table, fault_, lines_before_);
  BookState::Account read;
  for (const char* key : {"number", "balance", "credit"})
    reader.require(key);
  reader.integer("number", read.number, 1, largest_account);
  reader.number("balance", read.balance, -most_money, most_money);
  reader.number("credit", read.credit, -most_money, most_money);
  reader.finish();
  if (fault_) return;
  if (accounts_.emplace(read.number, state_.accounts.size()).second) {
    state_.accounts.push_back(std::move(read));
  } else if (changing_) {
    account(read.number).balance = read.balance;
    account(read.number).credit = read.credit;
  } else {
    reader.complain("number", "is given twice");
  }
}

void BookReader::read_position(const toml::table& table) {
  TableReader reader(table, fault_, lines_before_);
  OpenPosition position;
  for (const char* key : {"ticket", "open_price", "open_time_ms"})
    reader.require(key);
  read_order(reader, position.account, position.side, position.symbol, position.amount);
  if (position.side != operation::buy && position.side != operation::sell)
    reader.complain("side", "must be \"buy\" or \"sell\"");
  reader.integer("ticket", position.ticket, 1, largest);
  reader.number("open_price", position.open_price, 0.0, highest_price);
  reader.number("commission", position.commission, -most_money, most_money);
  reader.number("interest", position.interest, -most_money, most_money);
  read_time(reader, "open_time_ms", position.open_time);
  reader.finish();
  if (!give(reader, "ticket", position.ticket, {Thing::position, position.account})) return;
  auto& positions = account(position.account).positions;
  put(positions, std::move(position), &OpenPosition::ticket);
}

void BookReader::read_pending(const toml::table& table) {
  TableReader reader(table, fault_, lines_before_);
  PendingOrder order;
  for (const char* key : {"number", "kind", "price", "time_ms"})
    reader.require(key);
  read_order(reader, order.account, order.operation, order.symbol, order.amount);
  reader.integer("number", order.order, 1, largest);
  std::string kind;
  reader.text("kind", kind);
  order.kind = order_kind::of_text(kind);
  if (order.kind != OrderKind::entry && order.kind != OrderKind::stops)
    reader.complain("kind", "must be \"LO\" or \"ST\"");
  reader.integer("reference", order.reference, 1, largest);
  read_prices(reader, order.price, order.stop_loss, order.take_profit);
  read_time(reader, "time_ms", order.time);
  reader.finish();
  check_waiting(reader, order);
  if (!give(reader, "number", order.order, {Thing::order, order.account})) return;
  auto& orders = account(order.account).orders;
  put(orders, std::move(order), &PendingOrder::order);
}

void BookReader::read_request(const toml::table& table) {
  TableReader reader(table, fault_, lines_before_);
  TradeRequest request;
  reader.require("number");
  read_order(reader, request.account, request.operation, request.symbol, request.amount);
  reader.integer("number", request.number, 1, largest);
  request.kind = read_word(reader, "kind", kind_words, TradeKind::open);
  request.stage = read_word(reader, "stage", stage_words, TradeRequest::Stage::sent);
  if (request.kind != TradeKind::open && request.kind != TradeKind::entry) reader.require("reference");
  reader.integer("reference", request.reference, 1, largest);
  reader.integer("id", request.id, 1, largest);
  read_prices(reader, request.price, request.stop_loss, request.take_profit);
  read_time(reader, "due_ms", request.due);
  reader.finish();
  const bool entry = request.kind == TradeKind::entry || request.kind == TradeKind::update_entry;
  if (entry && request.price <= 0.0) reader.complain("price", "must be above 0");
  if (give(reader, "number", request.number, {Thing::request, request.account}))
    put(state_.requests, std::move(request), &TradeRequest::number);
}

// The four values that positions, orders and requests have in common.
void BookReader::read_order(TableReader& reader, std::int32_t& account, Operation& side, std::string& symbol,
                            double& amount) {
  for (const char* key : {"account", "side", "symbol", "amount"})
    reader.require(key);
  reader.integer("account", account, 1, largest_account);
  side = read_word(reader, "side", side_words, operation::buy);
  reader.text("symbol", symbol);
  reader.number("amount", amount, bounds::smallest_lots, bounds::most_lots);
  if (!accounts_.contains(account)) reader.complain("account", "has no [[account]] in this file");
}

// An order that would close another thing than it belongs to, or be set off by any price, must not wait.
void BookReader::check_waiting(TableReader& reader, const PendingOrder& order) {
  if (order.kind == OrderKind::entry && order.price <= 0.0) reader.complain("price", "must be above 0");
  if (order.kind != OrderKind::stops) return;
  reader.require("reference");
  if (fault_) return;
  for (const OpenPosition& position : account(order.account).positions) {
    if (position.ticket != order.reference) continue;
    if (position.symbol != order.symbol) reader.complain("symbol", "is not that of the position");
    if (buys(position.side) == buys(order.operation)) reader.complain("side", "does not close the position");
  }
}

// Numbers that come again would let two orders be taken for one.
bool BookReader::give(TableReader& reader, std::string_view key, std::int64_t number, Place place) {
  if (number >= state_.next_number) reader.complain(key, "must be below next_number");
  const auto [at, added] = numbers_.emplace(number, place);
  const bool same = at->second.thing == place.thing && at->second.account == place.account;
  if (!added && !(changing_ && same)) reader.complain(key, "is given twice");
  return !fault_;
}

void BookReader::remove(TableReader& reader, std::int64_t number) {
  const auto at = numbers_.find(number);
  if (at == numbers_.end())
    return reader.complain("gone", fmt::format("names {}, which is not there", number));
  const Place place = at->second;
  numbers_.erase(at);
  if (place.thing == Thing::position)
    take(account(place.account).positions, number, &OpenPosition::ticket);
  else if (place.thing == Thing::order)
    take(account(place.account).orders, number, &PendingOrder::order);
  else
    take(state_.requests, number, &TradeRequest::number);
}

}  // namespace tutti
