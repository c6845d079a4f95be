#include "dealer/config/dealer_config.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "pricing/rate_table.h"

namespace tutti {
namespace {

struct SampleClient {
  std::string_view user;
  std::string_view password;
  std::string_view holder;
  double balance;
  double leverage;
};

constexpr std::array<SampleClient, 12> sample_clients = {{
    {"ALDER", "ALDER01", "Anna Alder", 50'000.0, 100.0},
    {"ASPEN", "ASPEN02", "Paul Aspen", 25'000.0, 100.0},
    {"BEECH", "BEECH03", "Beech Holding", 250'000.0, 50.0},
    {"BIRCH", "BIRCH04", "Maria Birch", 18'500.0, 200.0},
    {"CEDAR", "CEDAR05", "Cedar & Sons", 120'000.0, 100.0},
    {"HAZEL", "HAZEL06", "Hazel Grove", 32'750.5, 100.0},
    {"LARCH", "LARCH07", "Tom Larch", 12'000.0, 100.0},
    {"LINDEN", "LINDEN08", "Linden Trust", 180'000.0, 50.0},
    {"MAPLE", "MAPLE09", "Ines Maple", 64'200.0, 100.0},
    {"OAK", "OAK10", "Oak Partners", 95'000.0, 100.0},
    {"ROWAN", "ROWAN11", "Rowan Reed", 10'000.0, 200.0},
    {"WILLOW", "WILLOW12", "Eva Willow", 41'300.25, 100.0},
}};
constexpr std::int32_t first_sample_account = 500'100;
constexpr std::size_t gold_hidden_from = 8;  // MAPLE does not trade gold

AccountConfig sample_account(std::size_t index) {
  const SampleClient& client = sample_clients[index % sample_clients.size()];
  AccountConfig account;
  account.number = first_sample_account + static_cast<std::int32_t>(index);
  account.user = client.user;
  account.password = client.password;
  account.name = client.holder;
  account.leverage = client.leverage;
  account.balance = client.balance;
  if (index < sample_clients.size()) {
    if (index == gold_hidden_from) account.hidden_symbols = {"XAUUSD"};
    return account;
  }
  account.user = fmt::format("{}{}", client.user, account.number);
  account.name = fmt::format("{} {}", client.holder, account.number);
  account.balance += 1'000.0 * static_cast<double>(index % 37);
  switch (index % 50) {
    case 12:
      account.hidden_symbols = {"EURUSD"};
      break;
    case 13:
      account.balance = -350.0;
      break;
    case 14:
      account.privilege = false;
      break;
    case 15:
      account.hedging = false;
      break;
    default:
      break;
  }
  return account;
}

std::vector<SymbolConfig> sample_symbols() {
  //  name, digits, contract size, bid, spread, limit and stop distance, volatility, base, profit, swaps
  return {
      {"EURUSD", 5, 100'000, 1.08450, 12, 50, 50, 5, "EUR", "USD", -6.5, 2.1},
      {"GBPUSD", 5, 100'000, 1.26520, 16, 60, 60, 6, "GBP", "USD", -3.2, -1.4},
      {"USDJPY", 3, 100'000, 149.480, 14, 50, 50, 6, "USD", "JPY", 9.8, -17},
      {"USDCHF", 5, 100'000, 0.88340, 16, 60, 60, 4, "USD", "CHF", 5.4, -9.6},
      {"USDCAD", 5, 100'000, 1.35870, 18, 60, 60, 5, "USD", "CAD", 1.1, -4.9},
      {"AUDUSD", 5, 100'000, 0.65630, 14, 50, 50, 4, "AUD", "USD", -2.4, -0.3},
      {"NZDUSD", 5, 100'000, 0.60980, 18, 60, 60, 4, "NZD", "USD", -1.2, -0.9},
      {"EURGBP", 5, 100'000, 0.85710, 16, 60, 60, 3, "EUR", "GBP", -5.1, 1.3},
      {"EURJPY", 3, 100'000, 162.110, 20, 70, 70, 7, "EUR", "JPY", 6.2, -13.4},
      {"EURCHF", 5, 100'000, 0.95800, 18, 60, 60, 3, "EUR", "CHF", 2.3, -6.1},
      {"EURAUD", 5, 100'000, 1.65240, 26, 80, 80, 7, "EUR", "AUD", -9.4, 2.8},
      {"GBPJPY", 3, 100'000, 189.120, 28, 90, 90, 9, "GBP", "JPY", 14.6, -26},
      {"GBPCHF", 5, 100'000, 1.11770, 28, 90, 90, 5, "GBP", "CHF", 6.8, -13.1},
      {"AUDJPY", 3, 100'000, 98.100, 22, 70, 70, 6, "AUD", "JPY", 5.9, -11.3},
      {"CHFJPY", 3, 100'000, 169.210, 26, 80, 80, 7, "CHF", "JPY", 1.2, -8.4},
      {"XAUUSD", 2, 100, 2350.00, 30, 100, 100, 25, "XAU", "USD", -38, 21},
      {"XAGUSD", 3, 5'000, 28.250, 30, 100, 100, 15, "XAG", "USD", -4.4, 1.6},
      {"US500", 1, 50, 5210.0, 5, 20, 20, 6, "US500", "USD", -9, 3},
      {"US30", 0, 10, 39'120, 4, 30, 30, 5, "US30", "USD", -7, 2},
      {"DE40", 1, 25, 18'230.0, 12, 50, 50, 15, "DE40", "EUR", -30, 8},
      {"JP225", 0, 500, 38'640, 8, 40, 40, 6, "JP225", "JPY", -3, -5},
  };
}

}  // namespace

DealerConfig DealerConfig::sample(int accounts) {
  DealerConfig config;
  config.symbols = sample_symbols();
  for (int i = 0; i < accounts; ++i)
    config.accounts.push_back(sample_account(static_cast<std::size_t>(i)));
  return config;
}

std::vector<CurrencyPair> DealerConfig::pairs() const {
  std::vector<CurrencyPair> pairs;
  for (const SymbolConfig& symbol : symbols)
    pairs.push_back({symbol.base, symbol.profit});
  return pairs;
}

std::optional<std::string> DealerConfig::fault() const {
  if (tick_interval.count() <= 0) return "the interval of ticks must be above 0";
  if (min_lot > max_lot) return "the smallest lot is above the largest";
  std::set<std::string_view> names;
  for (const SymbolConfig& symbol : symbols) {
    // Names stand between quotes in the book and between commas in the replay.
    if (symbol.name.empty() || std::any_of(symbol.name.begin(), symbol.name.end(), [](char c) {
          return c <= ' ' || c > '~' || c == '"' || c == '\\' || c == ',';
        }))
      return fmt::format("\"{}\" is no name for a symbol", symbol.name);
    if (!names.insert(symbol.name).second) return fmt::format("symbol {} is given twice", symbol.name);
  }
  for (const Tick& tick : ticks)
    if (!names.contains(tick.symbol))
      return fmt::format("the replay has a tick of unknown symbol {}", tick.symbol);
  std::set<std::int32_t> numbers;
  std::set<std::string_view> currencies;
  for (const AccountConfig& account : accounts) {
    if (!numbers.insert(account.number).second)
      return fmt::format("account {} is given twice", account.number);
    for (const std::string& hidden : account.hidden_symbols)
      if (!names.contains(hidden))
        return fmt::format("account {} hides {}, which is no symbol", account.number, hidden);
    currencies.insert(account.currency);
  }
  const std::vector<CurrencyPair> rated = pairs();
  for (const std::string_view currency : currencies)
    for (const SymbolConfig& symbol : symbols)
      for (const std::string& from : {symbol.base, symbol.profit})
        if (!RateTable::find_path(rated, from, currency))
          return fmt::format("no symbol converts {} of {} to {}", from, symbol.name, currency);
  return std::nullopt;
}

}  // namespace tutti
