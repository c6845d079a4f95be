#include "apps/verification.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "apps/outcome_check.h"

namespace tutti {
namespace {

constexpr double half_a_cent = 0.005;
// Of sums and averages over ten thousand positions.
constexpr double rounding = 1e-7;

// What net positions show of a sum, in the order of the columns.
enum NetValue : std::size_t { long_lots, long_price, short_lots, short_price, net_lots, net_profit };
constexpr const char* net_names[]{" long", " average long", " short", " average short", " net", " profit"};

Verification::NetValues net_values(const NetSum& sum) {
  return {sum.long_total(),    sum.average_long(), sum.short_total(),
          sum.average_short(), sum.net(),          sum.floating_total()};
}

struct BookedNet {
  double bought = 0.0;
  double sold = 0.0;
  double bought_value = 0.0;
  double sold_value = 0.0;
  double floating = 0.0;
  std::set<std::int32_t> accounts;

  void add(const OpenPosition& position, std::int32_t account) {
    const bool long_side = buys(position.side);
    (long_side ? bought : sold) += position.amount;
    (long_side ? bought_value : sold_value) += position.amount * position.open_price;
    floating += position.floating_pl;
    accounts.insert(account);
  }
  Verification::NetValues values() const {
    return {bought,        bought > 0.0 ? bought_value / bought : 0.0,
            sold,          sold > 0.0 ? sold_value / sold : 0.0,
            bought - sold, floating};
  }
};

}  // namespace

void Verification::differ(std::int32_t account, const std::string& what) {
  differences_.push_back(account == no_account ? what : fmt::format("account {}: {}", account, what));
}

void Verification::compare(std::int32_t account, const std::string& what, double shown, double booked,
                           double tolerance) {
  // Not "greater than", so that a value that is no number differs too.
  if (std::fabs(shown - booked) <= tolerance) return;
  differ(account, fmt::format("{} shows {}, the server has {}", what, shown, booked));
}

const TradingAccount* Verification::connected(std::int32_t account) const {
  return main_.account_book().connected(account) ? server_.find_account(account) : nullptr;
}

void Verification::check_account(const AccountSummary& shown, const TradingAccount& booked) {
  const AccountSummary summary = booked.summary();
  const auto value = [&](const char* name, double listed, double expected) {
    compare(booked.config().number, name, listed, expected, half_a_cent);
  };
  value("balance", shown.balance, summary.balance);
  value("floating profit", shown.floating_pl, summary.floating_pl);
  value("credit", shown.credit, summary.credit);
  value("equity", shown.equity, summary.equity);
  value("used margin", shown.shown_used_margin(), summary.shown_used_margin());
  value("margin level", shown.shown_margin_level(), summary.shown_margin_level());
  value("free margin", shown.free_margin, summary.free_margin);
}

void Verification::check_totals() {
  AccountTotals booked;
  int accounts = 0;
  for (const AccountEntry* each : main_.account_book().listed()) {
    if (!each->connected()) continue;
    const TradingAccount* account = server_.find_account(each->account);
    if (account == nullptr) continue;
    check_account(each->shown.values, *account);
    booked.replace({}, account->summary(), booked.form);
    ++accounts;
  }
  const AccountTotals& shown = main_.account_book().totals;
  const double tolerance = half_a_cent * (accounts + 1);
  compare(no_account, "total balance", shown.balance, booked.balance, tolerance);
  compare(no_account, "total floating profit", shown.floating_pl, booked.floating_pl, tolerance);
  compare(no_account, "total credit", shown.credit, booked.credit, tolerance);
  compare(no_account, "total equity", shown.equity, booked.equity, tolerance);
  compare(no_account, "total used margin", shown.shown_used_margin(), booked.shown_used_margin(), tolerance);
  compare(no_account, "total margin level", shown.shown_margin_level(), booked.shown_margin_level(),
          tolerance);
  compare(no_account, "total free margin", shown.free_margin, booked.free_margin, tolerance);
}

void Verification::check_positions() {
  const PositionBook& book = main_.positions();
  std::set<std::pair<std::int32_t, std::int64_t>> found;
  for (const TradingAccount& account : server_.accounts()) {
    const std::int32_t number = account.config().number;
    if (connected(number) == nullptr) continue;
    for (const auto& position : account.positions()) {
      const OpenPosition& booked = position.record;
      const std::string what = fmt::format("position #{}", booked.ticket);
      const PositionBook::Record* shown = book.find(booked.ticket, number);
      if (shown == nullptr) {
        differ(number, what + " is not listed");
        continue;
      }
      found.emplace(number, booked.ticket);
      compare(number, what + " amount", shown->amount, booked.amount, 1e-9);
      compare(number, what + " open price", shown->open_price, booked.open_price, 1e-9);
      compare(number, what + " current price", shown->current_price, booked.current_price, 1e-9);
      compare(number, what + " profit", shown->floating_pl, booked.floating_pl, half_a_cent);
      const std::string passed_on = main_.net_positions().profit_text(shown->floating_pl);
      compare(number, what + " profit as text", main_.general().locale.StringToNumber(passed_on),
              booked.floating_pl, half_a_cent);
      compare(number, what + " stop loss", shown->stop_loss, booked.stop_loss, 1e-9);
      compare(number, what + " take profit", shown->take_profit, booked.take_profit, 1e-9);
      if (buys(shown->side) != buys(booked.side) || shown->symbol != booked.symbol)
        differ(number, what + " side or symbol differs");
    }
  }
  for (const PositionBook::Record* shown : book.all()) {
    if (!found.contains({shown->account, shown->ticket}))
      differ(shown->account, fmt::format("position #{} is listed, but the server has none", shown->ticket));
  }
}

// Added up here once more, so that a fault of the terminal's own sums shows.
void Verification::check_net() {
  std::map<std::string, BookedNet> symbols;
  std::map<std::int32_t, BookedNet> accounts;
  std::map<std::pair<std::int32_t, std::string>, BookedNet> both;
  BookedNet all;
  for (const TradingAccount& account : server_.accounts()) {
    const std::int32_t number = account.config().number;
    if (connected(number) == nullptr) continue;
    for (const auto& position : account.positions()) {
      const OpenPosition& booked = position.record;
      for (BookedNet* sum :
           {&symbols[booked.symbol], &accounts[number], &both[{number, booked.symbol}], &all})
        sum->add(booked, number);
    }
  }
  const CNetPos& book = main_.net_positions();
  for (const CNetPos::OfAccount& account : book.accounts()) {
    compare_net(account.number, "net positions", net_values(account.sum), accounts[account.number].values());
    for (std::size_t place = 0; place < book.symbols().size(); ++place) {
      const std::string& name = book.symbols()[place].name;
      compare_net(account.number, name, net_values(book.of(account, place)),
                  both[{account.number, name}].values());
    }
  }
  const auto over_accounts = [&](const std::string& name, const NetValues& sum, int holders,
                                 const NetValues& expected, const BookedNet& booked) {
    compare_net(no_account, name, sum, expected);
    compare(no_account, name + " accounts", holders, static_cast<double>(booked.accounts.size()), 0.0);
  };
  for (const CNetPos::OfSymbol& symbol : book.symbols()) {
    if (symbol.sum.positions() == 0) continue;
    const auto node = symbols.extract(symbol.name);
    const BookedNet booked = node.empty() ? BookedNet{} : node.mapped();
    over_accounts(symbol.name, net_values(symbol.sum), symbol.accounts, booked.values(), booked);
  }
  NetValues total = net_values(book.total()), booked_total = all.values();
  // Prices of different symbols have no average.
  for (NetValues* values : {&total, &booked_total})
    (*values)[long_price] = (*values)[short_price] = 0.0;
  over_accounts("Total(All Clients)", total, book.accounts_in_market(), booked_total, all);
  for (const auto& [name, booked] : symbols)
    differ(no_account, name + " has positions, but is not among the net positions");
}

void Verification::compare_net(std::int32_t account, const std::string& of, const NetValues& shown,
                               const NetValues& booked) {
  for (std::size_t at = 0; at < shown.size(); ++at) {
    compare(account, of + net_names[at], shown[at], booked[at],
            at == net_profit ? half_a_cent + rounding : rounding);
  }
}

void Verification::check_orders() {
  const OrderBook& book = main_.orders();
  std::set<std::pair<std::int32_t, std::int64_t>> found;
  for (const TradingAccount& account : server_.accounts()) {
    const std::int32_t number = account.config().number;
    if (connected(number) == nullptr) continue;
    for (const PendingOrder& booked : account.orders()) {
      const std::string what = fmt::format("order #{}", booked.order);
      const OrderBook::Record* shown = book.find(booked.order, number);
      if (shown == nullptr) {
        differ(number, what + " is not listed");
        continue;
      }
      found.emplace(number, booked.order);
      compare(number, what + " amount", shown->amount, booked.amount, 1e-9);
      compare(number, what + " price", shown->price, booked.price, 1e-9);
      compare(number, what + " stop loss", shown->stop_loss, booked.stop_loss, 1e-9);
      compare(number, what + " take profit", shown->take_profit, booked.take_profit, 1e-9);
      if (shown->kind != booked.kind || shown->reference != booked.reference ||
          shown->symbol != booked.symbol) {
        differ(number, what + " type or symbol differs");
      }
    }
  }
  for (const OrderBook::Record* shown : book.all()) {
    if (!found.contains({shown->account, shown->order}))
      differ(shown->account, fmt::format("order #{} is listed, but the server has none", shown->order));
  }
}

void Verification::check_outcomes() {
  // While the history of one account is shown, the live rows are not in the list.
  if (!main_.journal_window().live()) return;
  OutcomeCheck check{main_.journal_window().shown_entries()};
  for (const auto& difference : check.run(server_.outcomes()))
    differ(difference.account, difference.what);
}

std::vector<std::string> Verification::run() {
  differences_.clear();
  check_totals();
  check_positions();
  check_net();
  check_orders();
  check_outcomes();
  return std::move(differences_);
}

}  // namespace tutti
