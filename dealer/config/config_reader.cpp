#include "dealer/config/config_reader.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include "core/numbers.h"
#include "core/table_reader.h"
#include "core/texts.h"
#include "dealer/config/bounds.h"
#include "dealer/config/fault_reader.h"
#include "dealer/config/side_words.h"

namespace tutti {
namespace {

using bounds::highest_price;
using bounds::lowest_price;
using bounds::smallest_lots;
constexpr std::int64_t longest_wait = 3'600'000;  // milliseconds
constexpr std::int64_t most_accounts = 100'000;
constexpr double most_lots = 1e6;
constexpr double most_money = 1e12;
constexpr double most_points = 1e9;
constexpr std::int32_t largest_number = std::numeric_limits<std::int32_t>::max();
constexpr double longest_dealing = 3'600.0;  // seconds

constexpr Word<Trading> trading_words[] = {
    {"open", Trading::open},
    {"closed", Trading::closed},
    {"halted", Trading::halted},
};

// Reads the tables of one configuration in turn; the first fault ends all.
class ConfigReader {
 public:
  explicit ConfigReader(const toml::table& root) : root_(root) {}

  // The replay file is named in `replay`, not read.
  tl::expected<DealerConfig, std::string> read(std::string& replay) {
    TableReader reader(root_, fault_);
    const auto symbols = reader.tables("symbol");
    const auto accounts = reader.tables("account");
    bool sample_symbols = true;
    std::int64_t sample_accounts = accounts.empty() ? 12 : 0;
    reader.flag("sample_symbols", sample_symbols);
    reader.integer("sample_accounts", sample_accounts, 0, most_accounts);
    config_ = DealerConfig::sample(static_cast<int>(sample_accounts));
    if (!sample_symbols) config_.symbols.clear();
    read_general(reader);
    reader.text("replay", replay);
    for (const toml::table* table : symbols)
      read_symbol(*table);
    for (const toml::table* table : accounts)
      read_account(*table);
    for (const toml::table* table : reader.tables("entry_order"))
      read_entry_order(*table);
    for (const toml::table* table : reader.tables("fault"))
      config_.faults.push_back(read_fault(*table, config_.accounts, fault_));
    reader.finish();
    if (fault_) return tl::unexpected(*fault_);
    return std::move(config_);
  }

 private:
  void read_general(TableReader& reader) {
    auto seed = static_cast<std::int64_t>(config_.seed);
    reader.integer("seed", seed, 0, std::numeric_limits<std::int64_t>::max());
    config_.seed = static_cast<std::uint64_t>(seed);
    reader.number("minimum_lot", config_.min_lot, smallest_lots, most_lots);
    reader.number("maximum_lot", config_.max_lot, smallest_lots, most_lots);
    reader.number("lot_step", config_.lot_step, 0.0, most_lots);
    reader.integer("first_number", config_.first_number, 1, std::numeric_limits<std::int64_t>::max() / 2);
    read_wait(reader, "login_latency_ms", config_.login_latency, 0);
    read_wait(reader, "order_latency_ms", config_.order_latency, 0);
    read_wait(reader, "unreachable_after_ms", config_.unreachable_after, 0);
    read_wait(reader, "tick_interval_ms", config_.tick_interval, 1);
    read_endpoint(reader);
  }

  void read_wait(TableReader& reader, std::string_view key, std::chrono::milliseconds& wait,
                 std::int64_t shortest) {
    std::int64_t count = wait.count();
    reader.integer(key, count, shortest, longest_wait);
    wait = std::chrono::milliseconds{count};
  }

  void read_endpoint(TableReader& reader) {
    std::string text;
    reader.text("endpoint", text);
    if (text.empty()) return;
    const auto parts = split(text, ":");
    const auto port = parts.size() == 2 ? parse_int32(parts[1]) : std::nullopt;
    if (!port || *port < 1 || *port > 65535 || parts[0].empty())
      return reader.complain("endpoint", "must be written as \"ADDRESS:PORT\"");
    config_.endpoint = {std::string{parts[0]}, *port};
  }

  void read_symbol(const toml::table& table) {
    TableReader reader(table, fault_);
    SymbolConfig read;
    reader.require("name");
    reader.text("name", read.name);
    const auto at = std::find_if(config_.symbols.begin(), config_.symbols.end(),
                                 [&](const SymbolConfig& symbol) { return symbol.name == read.name; });
    const bool known = at != config_.symbols.end();
    if (known) read = *at;
    if (!names_.insert(read.name).second) reader.complain("name", "is given twice");
    if (!known)
      for (const char* key : {"base", "profit"})
        reader.require(key);
    reader.integer("digits", read.digits, 0, 8);
    reader.number("contract_size", read.contract_size, 1e-6, 1e9);
    reader.number("bid", read.bid, 0.0, highest_price);
    reader.number("spread", read.spread, 0.0, most_points);
    reader.number("limit_distance", read.limit_distance, 0.0, most_points);
    reader.number("stop_distance", read.stop_distance, 0.0, most_points);
    reader.number("volatility", read.volatility, 0.0, most_points);
    reader.text("base", read.base);
    reader.text("profit", read.profit);
    reader.number("swap_long", read.swap_long, -most_points, most_points);
    reader.number("swap_short", read.swap_short, -most_points, most_points);
    reader.number("commission", read.commission, 0.0, most_money);
    reader.number("margin_rate", read.margin_rate, 1e-6, 1e6);
    read.trading = read_word(reader, "trading", trading_words, read.trading);
    reader.seconds("dealing_seconds", read.dealing, 0.0, longest_dealing);
    reader.finish();
    if (known)
      *at = std::move(read);
    else
      config_.symbols.push_back(std::move(read));
  }

  void read_account(const toml::table& table) {
    TableReader reader(table, fault_);
    std::int32_t number = 0;
    reader.require("number");
    reader.integer("number", number, 1, largest_number);
    const auto at = std::find_if(config_.accounts.begin(), config_.accounts.end(),
                                 [&](const AccountConfig& account) { return account.number == number; });
    const bool known = at != config_.accounts.end();
    AccountConfig read = known ? *at : AccountConfig{};
    read.number = number;
    if (!numbers_.insert(number).second) reader.complain("number", "is given twice");
    if (!known)
      for (const char* key : {"user", "password"})
        reader.require(key);
    reader.text("user", read.user);
    reader.text("password", read.password);
    reader.text("name", read.name);
    reader.text("currency", read.currency);
    reader.number("balance", read.balance, -most_money, most_money);
    reader.number("credit", read.credit, -most_money, most_money);
    reader.number("leverage", read.leverage, 0.01, 1e6);
    reader.texts("hidden_symbols", read.hidden_symbols);
    reader.flag("privilege", read.privilege);
    reader.flag("hedging", read.hedging);
    read_distance(reader, "limit_distance", read.limit_distance);
    read_distance(reader, "stop_distance", read.stop_distance);
    read_code(reader, "reply_request", read.reply_request);
    read_code(reader, "reply_result", read.reply_result);
    read_code(reader, "reply_close_request", read.reply_close_request);
    read_code(reader, "reply_close_result", read.reply_close_result);
    reader.seconds("dealing_seconds", read.dealing, 0.0, longest_dealing);
    reader.finish();
    if (known)
      *at = std::move(read);
    else
      config_.accounts.push_back(std::move(read));
  }

  // A code of the contract, one that it does not name included.
  static void read_code(TableReader& reader, std::string_view key, ContractCode auto& value) {
    std::int32_t number = format_as(value);
    reader.integer(key, number, 0, 1000);
    value = std::remove_cvref_t<decltype(value)>{number};
  }

  static void read_distance(TableReader& reader, std::string_view key, std::optional<double>& distance) {
    double points = 0.0;
    reader.number(key, points, 0.0, most_points);
    if (reader.has(key)) distance = points;
  }

  void read_entry_order(const toml::table& table) {
    TableReader reader(table, fault_);
    EntryOrderConfig read;
    for (const char* key : {"account", "side", "symbol", "amount"})
      reader.require(key);
    reader.integer("account", read.account, 1, largest_number);
    read.operation = read_word(reader, "side", side_words, operation::buy);
    reader.text("symbol", read.symbol);
    reader.number("amount", read.amount, smallest_lots, most_lots);
    reader.integer("ticket", read.ticket, 1, std::numeric_limits<std::int64_t>::max());
    if (read.ticket == 0) reader.require("price");
    reader.number("price", read.price, read.ticket == 0 ? lowest_price : 0.0, highest_price);
    reader.number("stop_loss", read.stop_loss, 0.0, highest_price);
    reader.number("take_profit", read.take_profit, 0.0, highest_price);
    reader.finish();
    if (!known(config_.accounts, &AccountConfig::number, read.account))
      reader.complain("account", "is not configured");
    if (!known(config_.symbols, &SymbolConfig::name, read.symbol))
      reader.complain("symbol", "is not configured");
    config_.entry_orders.push_back(std::move(read));
  }

  template <class Entry, class Value>
  static bool known(const std::vector<Entry>& entries, Value Entry::*key, const Value& value) {
    return std::any_of(entries.begin(), entries.end(),
                       [&](const Entry& entry) { return entry.*key == value; });
  }

  const toml::table& root_;
  std::optional<std::string> fault_;
  DealerConfig config_;
  std::set<std::string> names_;
  std::set<std::int32_t> numbers_;
};

void wipe_passwords(toml::table& root) {
  toml::array* accounts = root["account"].as_array();
  if (accounts == nullptr) return;
  for (toml::node& account : *accounts) {
    if (toml::table* table = account.as_table())
      if (auto* password = (*table)["password"].as_string()) wipe(password->get());
  }
}

}  // namespace

tl::expected<DealerConfig, FileError> load_dealer_config(const std::filesystem::path& file) {
  const auto content = read_secret_file(file);
  if (!content) return tl::unexpected(content.error());
  std::optional<std::string> fault;
  auto root = parse_toml(content->reveal(), fault);
  if (!root) return tl::unexpected(FileError{file, *fault});
  std::string replay;
  auto config = ConfigReader(*root).read(replay);
  wipe_passwords(*root);
  if (!config) return tl::unexpected(FileError{file, config.error()});
  if (!replay.empty()) {
    auto ticks = load_ticks(file.parent_path() / replay);
    if (!ticks) return tl::unexpected(ticks.error());
    config->ticks = std::move(*ticks);
  }
  if (const auto wrong = config->fault()) return tl::unexpected(FileError{file, *wrong});
  return std::move(*config);
}

}  // namespace tutti
