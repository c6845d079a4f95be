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
    const bool buys = position.side > 0;
    (buys ? bought : sold) += position.amount;
    (buys ? bought_value : sold_value) += position.amount * position.open_price;
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

void Verification::check_account(const Totals& shown, const TradingAccount& booked) {
  const AccountSummary summary = booked.summary();
  const auto value = [&](const char* name, double listed, double expected) {
    compare(booked.config().number, name, listed, expected, half_a_cent);
  };
  value("balance", shown.balance, summary.balance);
  value("floating profit", shown.floating_pl, summary.floating_pl);
  value("credit", shown.credit, summary.credit);
  value("equity", shown.equity, summary.equity);
  value("used margin", shown.used_margin, -summary.used_margin);
  value("margin level", shown.margin_level, summary.margin_level * 100.0);
  value("free margin", shown.free_margin, summary.free_margin);
}

void Verification::check_totals() {
  Totals booked;
  int accounts = 0;
  for (const AccountEntry* each : main_.account_book().listed()) {
    if (!each->connected()) continue;
    const TradingAccount* account = server_.find_account(each->account);
    if (account == nullptr) continue;
    check_account(each->shown.values, *account);
    const AccountSummary s = account->summary();
    booked.replace({}, {s.balance, s.floating_pl, s.credit, s.equity, -s.used_margin, s.margin_level * 100.0,
                        s.free_margin});
    ++accounts;
  }
  const Totals& shown = main_.general().totals;
  const double tolerance = half_a_cent * (accounts + 1);
  compare(no_account, "total balance", shown.balance, booked.balance, tolerance);
  compare(no_account, "total floating profit", shown.floating_pl, booked.floating_pl, tolerance);
  compare(no_account, "total credit", shown.credit, booked.credit, tolerance);
  compare(no_account, "total equity", shown.equity, booked.equity, tolerance);
  compare(no_account, "total used margin", shown.used_margin, booked.used_margin, tolerance);
  compare(no_account, "total margin level", shown.margin_level, booked.margin_level, tolerance);
  compare(no_account, "total free margin", shown.free_margin, booked.free_margin, tolerance);
}

void Verification::check_positions() {
  const RowList& list = main_.trade().lvwOpenPos;
  tsl::robin_set<RowKey, RowKey::Hash> booked_keys;
  for (const TradingAccount& account : server_.accounts()) {
    const std::int32_t number = account.config().number;
    if (connected(number) == nullptr) continue;
    for (const auto& position : account.positions()) {
      const OpenPosition& booked = position.record;
      const RowKey key = ticket_key(booked.ticket, number);
      booked_keys.insert(key);
      const std::string what = fmt::format("position #{}", booked.ticket);
      const Row* row = list.find(key);
      if (row == nullptr) {
        differ(number, what + " is not listed");
        continue;
      }
      compare(number, what + " amount", row->cell(frmTrade::amount).stored_number(), booked.amount, 1e-9);
      compare(number, what + " open price", row->cell(frmTrade::open_price).stored_number(),
              booked.open_price, 1e-9);
      compare(number, what + " current price", row->cell(frmTrade::current_price).stored_number(),
              booked.current_price, 1e-9);
      compare(number, what + " profit", row->cell(frmTrade::profit).stored_number(), booked.floating_pl,
              half_a_cent);
      compare(number, what + " stop loss", row->cell(frmTrade::stop_loss).stored_number(), booked.stop_loss,
              1e-9);
      compare(number, what + " take profit", row->cell(frmTrade::take_profit).stored_number(),
              booked.take_profit, 1e-9);
      const bool side = row->reads(frmTrade::type, booked.side > 0 ? "Buy" : "Sell");
      if (!side || !row->reads(frmTrade::symbol, booked.symbol))
        differ(number, what + " side or symbol differs");
    }
  }
  for (const Row& row : list) {
    if (booked_keys.contains(row.key())) continue;
    differ(static_cast<std::int32_t>(row.cell(frmTrade::account).stored_number()),
           fmt::format("position #{} is listed, but the server has none", row.key().number()));
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
  frmNetTrade& form = main_.net_trade();
  form.refresh();
  for (const Row& row : form.lvwNet) {
    const bool total = frmNetTrade::is_total(row);
    const std::string name = row.text(frmNetTrade::symbol);
    const auto node = symbols.extract(name);
    const BookedNet booked = total ? all : node.empty() ? BookedNet{} : node.mapped();
    NetValues shown{};
    for (std::size_t at = 0; at < shown.size(); ++at)
      shown[at] = row.cell(frmNetTrade::bought + at).stored_number();
    NetValues expected = booked.values();
    // Prices of different symbols have no average.
    if (total) expected[long_price] = expected[short_price] = 0.0;
    compare_net(no_account, name, shown, expected);
    compare(no_account, name + " accounts", row.cell(frmNetTrade::accounts).stored_number(),
            static_cast<double>(booked.accounts.size()), 0.0);
  }
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
  const RowList& list = main_.pending().lvwPending;
  tsl::robin_set<RowKey, RowKey::Hash> booked_keys;
  for (const TradingAccount& account : server_.accounts()) {
    const std::int32_t number = account.config().number;
    if (connected(number) == nullptr) continue;
    for (const PendingOrder& booked : account.orders()) {
      const RowKey key = order_key(booked.order, number);
      booked_keys.insert(key);
      const std::string what = fmt::format("order #{}", booked.order);
      const Row* row = list.find(key);
      if (row == nullptr) {
        differ(number, what + " is not listed");
        continue;
      }
      compare(number, what + " amount", row->cell(frmPending::amount).stored_number(), booked.amount, 1e-9);
      compare(number, what + " price", row->cell(frmPending::price).stored_number(), booked.price, 1e-9);
      compare(number, what + " stop loss", row->cell(frmPending::stop_loss).stored_number(), booked.stop_loss,
              1e-9);
      compare(number, what + " take profit", row->cell(frmPending::take_profit).stored_number(),
              booked.take_profit, 1e-9);
      if (!row->reads(frmPending::type, frmPending::TypeDesc(booked.kind, booked.reference)) ||
          !row->reads(frmPending::symbol, booked.symbol)) {
        differ(number, what + " type or symbol differs");
      }
    }
  }
  for (const Row& row : list) {
    if (booked_keys.contains(row.key())) continue;
    differ(static_cast<std::int32_t>(row.cell(frmPending::account).stored_number()),
           fmt::format("order #{} is listed, but the server has none", row.key().number()));
  }
}

void Verification::check_outcomes() {
  // While the history of one account is shown, the live rows are not in the list.
  if (!main_.journal_window().live()) return;
  OutcomeCheck check{main_.journal_window().lvwJournal};
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
