#include "dealer/trading/trading_account.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/numbers.h"
#include "pricing/money.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

// Amounts are kept to this many decimals, so that parts add up to the whole.
constexpr int amount_decimals = 8;

}  // namespace

TradingAccount::TradingAccount(const AccountConfig& config, const Market& market, RateTable& rates,
                               PriceWatch& watch)
    : config_(config),
      market_(market),
      rates_(rates),
      watch_(watch),
      currency_(rates.add_currency(config.currency)),
      balance_(config.balance),
      credit_(config.credit),
      ids_(market.count(), 0) {
  for (std::size_t s = 0; s < market.count(); ++s) {
    const auto& hidden = config.hidden_symbols;
    if (std::find(hidden.begin(), hidden.end(), market.symbol(s).name) == hidden.end()) carried_.push_back(s);
  }
  // Every account counts from another start, as numbers that belong to a connection do.
  const std::size_t shift = static_cast<std::size_t>(config.number);
  for (std::size_t i = 0; i < carried_.size(); ++i)
    ids_[carried_[i]] = static_cast<std::int32_t>(1 + (i + shift) % carried_.size());
}

std::optional<std::size_t> TradingAccount::symbol_of_id(std::int32_t id) const {
  const auto at = std::find(ids_.begin(), ids_.end(), id);
  if (id <= 0 || at == ids_.end()) return std::nullopt;
  return static_cast<std::size_t>(at - ids_.begin());
}

const TradingAccount::Position* TradingAccount::find_position(std::int64_t ticket) const {
  const auto at = std::lower_bound(
      positions_.begin(), positions_.end(), ticket,
      [](const Position& position, std::int64_t key) { return position.record.ticket < key; });
  return at == positions_.end() || at->record.ticket != ticket ? nullptr : &*at;
}

TradingAccount::Position* TradingAccount::find_position(std::int64_t ticket) {
  const Position* found = std::as_const(*this).find_position(ticket);
  return found == nullptr ? nullptr : &positions_[static_cast<std::size_t>(found - positions_.data())];
}

const PendingOrder* TradingAccount::find_order(std::int64_t order) const {
  const auto at = std::find_if(orders_.begin(), orders_.end(),
                               [&](const PendingOrder& other) { return other.order == order; });
  return at == orders_.end() ? nullptr : &*at;
}

const PendingOrder* TradingAccount::find_order(std::int64_t order, OrderKind kind) const {
  const PendingOrder* found = find_order(order);
  return found != nullptr && found->kind == kind ? found : nullptr;
}

const PendingOrder* TradingAccount::stops_of(std::int64_t ticket) const {
  const auto at = std::find_if(orders_.begin(), orders_.end(), [&](const PendingOrder& order) {
    return order.kind == OrderKind::stops && order.reference == ticket;
  });
  return at == orders_.end() ? nullptr : &*at;
}

const PendingOrder& TradingAccount::add_order(PendingOrder order) {
  order.account = config_.number;
  const auto symbol = market_.find(order.symbol);
  order.symbol_id = symbol ? ids_[*symbol] : 0;
  if (symbol) watch_.expect(*symbol, trigger_of(order));
  const auto at =
      std::upper_bound(orders_.begin(), orders_.end(), order.order,
                       [](std::int64_t key, const PendingOrder& other) { return key < other.order; });
  return *orders_.insert(at, std::move(order));
}

void TradingAccount::remove_order(std::int64_t order) {
  std::erase_if(orders_, [&](const PendingOrder& other) { return other.order == order; });
}

bool TradingAccount::opposed(std::size_t symbol, Operation side) const {
  return std::any_of(positions_.begin(), positions_.end(), [&](const Position& position) {
    return position.symbol == symbol && position.record.side != side;
  });
}

double TradingAccount::limit_distance(std::size_t symbol) const {
  return config_.limit_distance.value_or(market_.symbol(symbol).limit_distance);
}

double TradingAccount::stop_distance(std::size_t symbol) const {
  return config_.stop_distance.value_or(market_.symbol(symbol).stop_distance);
}

AccountSummary TradingAccount::summary() const {
  AccountSummary summary;
  summary.balance = balance_;
  summary.floating_pl = floating_;
  summary.credit = credit_;
  summary.equity = balance_ + credit_ + floating_;
  summary.used_margin = used_margin_ > 0.0 ? -used_margin_ : 0.0;
  summary.margin_level = used_margin_ > 0.0 ? summary.equity / used_margin_ : 0.0;
  summary.free_margin = summary.equity - used_margin_;
  return summary;
}

bool TradingAccount::revalue() {
  double floating = 0.0;
  double used = 0.0;
  for (Position& position : positions_) {
    OpenPosition& record = position.record;
    const Quote& quote = market_.quote(position.symbol);
    if (quote.known()) {
      const double price = record.side == operation::buy ? quote.bid : quote.ask;
      const double worth = profit(position.symbol, record.side, record.amount, record.open_price, price);
      position.moved = position.moved || price != record.current_price || worth != record.floating_pl;
      record.current_price = price;
      record.floating_pl = worth;
    }
    floating += record.floating_pl + record.commission + record.interest;
    used += margin(position.symbol, record.amount);
  }
  const bool changed = floating != floating_ || used != used_margin_;
  floating_ = floating;
  used_margin_ = used;
  return changed;
}

double TradingAccount::free_margin_with(std::size_t symbol, Operation side, double amount,
                                        double price) const {
  const Quote& quote = market_.quote(symbol);
  const double closing = side == operation::buy ? quote.bid : quote.ask;
  return summary().free_margin + profit(symbol, side, amount, price, closing) - margin(symbol, amount) -
         commission(symbol, amount);
}

double TradingAccount::profit(std::size_t symbol, Operation side, double amount, double from,
                              double to) const {
  return pricing::profit(side, amount, market_.symbol(symbol).contract_size, from, to,
                         rates_.profit(currency_, symbol));
}

double TradingAccount::margin(std::size_t symbol, double amount) const {
  const SymbolConfig& config = market_.symbol(symbol);
  return pricing::margin(amount, config.contract_size, rates_.base(currency_, symbol), config.margin_rate,
                         config_.leverage);
}

bool TradingAccount::rates_known(std::size_t symbol) const {
  return rates_.profit(currency_, symbol) > 0.0 && rates_.base(currency_, symbol) > 0.0;
}

void TradingAccount::open(OpenPosition position, std::size_t symbol) {
  position.account = config_.number;
  position.symbol = market_.symbol(symbol).name;
  position.symbol_id = ids_[symbol];
  position.amount = round_half_even(position.amount, amount_decimals);
  position.current_price = position.open_price;
  if (const PendingOrder* stops = stops_of(position.ticket)) {
    position.stop_loss = stops->stop_loss;
    position.take_profit = stops->take_profit;
  }
  // Tickets grow, but orders need not be executed in the order in which they were sent.
  const auto at =
      std::upper_bound(positions_.begin(), positions_.end(), position.ticket,
                       [](std::int64_t key, const Position& other) { return key < other.record.ticket; });
  positions_.insert(at, Position{std::move(position), symbol});
}

Realised TradingAccount::realised(const Position& position, double amount, double price) const {
  const OpenPosition& record = position.record;
  const double share = std::min(amount / record.amount, 1.0);
  return {profit(position.symbol, record.side, amount, record.open_price, price) + record.interest * share,
          record.commission * share};
}

bool TradingAccount::close(Position& position, double amount, double price) {
  OpenPosition& record = position.record;
  const Realised booked = realised(position, amount, price);
  balance_ += booked.profit + booked.commission;
  record.commission -= booked.commission;
  record.interest -= record.interest * std::min(amount / record.amount, 1.0);
  record.amount = round_half_even(record.amount - amount, amount_decimals);
  if (record.amount > 0.0) return false;
  positions_.erase(positions_.begin() + (&position - positions_.data()));
  return true;
}

void TradingAccount::roll_over(int nights) {
  for (Position& position : positions_) {
    OpenPosition& record = position.record;
    const SymbolConfig& symbol = market_.symbol(position.symbol);
    const double points = record.side == operation::buy ? symbol.swap_long : symbol.swap_short;
    // A night's points are worth as much as a move of the price by them in the position's favour.
    record.interest += nights * profit(position.symbol, operation::buy, record.amount, 0.0,
                                       points / std::pow(10.0, symbol.digits));
  }
}

double TradingAccount::commission(std::size_t symbol, double amount) const {
  return 2.0 * market_.symbol(symbol).commission * amount;
}

BookState::Account TradingAccount::state() const {
  BookState::Account state{config_.number, balance_, credit_, {}, {}};
  for (const PendingOrder& order : orders_)
    if (order.kind == OrderKind::entry || order.kind == OrderKind::stops) state.orders.push_back(order);
  for (const Position& position : positions_)
    state.positions.push_back(position.record);
  return state;
}

bool TradingAccount::restore(const BookState::Account& state) {
  for (const OpenPosition& position : state.positions)
    if (!market_.find(position.symbol)) return false;
  for (const PendingOrder& order : state.orders)
    if (!market_.find(order.symbol)) return false;
  balance_ = state.balance;
  credit_ = state.credit;
  orders_.clear();
  for (const PendingOrder& order : state.orders)
    add_order(order);
  positions_.clear();
  for (const OpenPosition& position : state.positions)
    open(position, *market_.find(position.symbol));
  revalue();
  return true;
}

}  // namespace tutti
