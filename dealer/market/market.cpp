#include "dealer/market/market.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "dealer/config/bounds.h"
#include "dealer/market/random.h"

namespace tutti {
namespace {

// What a walk makes at most when it wakes up late.
constexpr int most_steps = 240;
// The walk stays between half and double the start price.
constexpr double walk_range = 2.0;

}  // namespace

Market::Market(const DealerConfig& config, TimePoint start)
    : config_(config),
      start_(start),
      next_step_(start + config.tick_interval),
      random_(config.seed),
      quotes_(config.symbols.size()),
      moved_(config.symbols.size()) {
  for (std::size_t i = 0; i < config.symbols.size(); ++i) {
    const SymbolConfig& symbol = config.symbols[i];
    names_.emplace_back(symbol.name, i);
    if (symbol.bid > 0.0) set_price(i, symbol.bid, 0.0, start);
  }
  std::sort(names_.begin(), names_.end());
  for (const Tick& tick : config.ticks)
    tick_symbols_.push_back(find(tick.symbol).value_or(count()));
}

std::vector<double> Market::middles() const {
  std::vector<double> middles;
  for (const Quote& quote : quotes_)
    middles.push_back(quote.middle());
  return middles;
}

std::optional<std::size_t> Market::find(std::string_view name) const {
  const auto at = std::lower_bound(names_.begin(), names_.end(), name,
                                   [](const auto& entry, std::string_view key) { return entry.first < key; });
  if (at == names_.end() || at->first != name) return std::nullopt;
  return at->second;
}

std::optional<TimePoint> Market::next_due() const {
  if (config_.ticks.empty()) return next_step_;
  if (next_tick_ == config_.ticks.size()) return std::nullopt;
  return start_ + config_.ticks[next_tick_].at;
}

bool Market::step() {
  const auto due = next_due();
  if (!due) return false;
  ++steps_;
  if (config_.ticks.empty())
    walk(*due);
  else
    replay(*due);
  return last_move_ == steps_;
}

void Market::skip_to(TimePoint target) {
  const TimePoint earliest = target - most_steps * config_.tick_interval;
  if (next_step_ < earliest)
    next_step_ += (earliest - next_step_) / config_.tick_interval * config_.tick_interval;
}

void Market::walk(TimePoint at) {
  for (std::size_t i = 0; i < count(); ++i) {
    const SymbolConfig& symbol = config_.symbols[i];
    const double moves = unit_interval(random_());
    // Three even draws make a bell that is good enough; its deviation is 1.
    double draw = -3.0;
    for (int k = 0; k < 3; ++k)
      draw += 2.0 * unit_interval(random_());
    if (moves < 0.5 || !quotes_[i].known()) continue;
    const double bid = quotes_[i].bid + draw * symbol.volatility / std::pow(10.0, symbol.digits);
    set_price(i, std::clamp(bid, symbol.bid / walk_range, symbol.bid * walk_range), 0.0, at);
  }
  next_step_ = at + config_.tick_interval;
}

void Market::replay(TimePoint at) {
  for (; next_tick_ < config_.ticks.size() && start_ + config_.ticks[next_tick_].at == at; ++next_tick_) {
    const Tick& tick = config_.ticks[next_tick_];
    if (tick_symbols_[next_tick_] < count()) set_price(tick_symbols_[next_tick_], tick.bid, tick.ask, at);
  }
}

// An `ask` of 0 stands for the configured spread.
void Market::set_price(std::size_t symbol, double bid, double ask, TimePoint at) {
  const SymbolConfig& config = config_.symbols[symbol];
  const double point = std::pow(10.0, -config.digits);
  Quote& quote = quotes_[symbol];
  const Quote before = quote;
  quote.bid = std::clamp(round_half_even(bid, config.digits), point, bounds::highest_price);
  quote.ask = std::clamp(round_half_even(ask > 0.0 ? ask : quote.bid + config.spread * point, config.digits),
                         quote.bid, bounds::highest_price);
  quote.time = at;
  const bool new_day =
      std::chrono::floor<std::chrono::days>(at) != std::chrono::floor<std::chrono::days>(before.time);
  quote.high = new_day ? quote.bid : std::max(before.high, quote.bid);
  quote.low = new_day ? quote.bid : std::min(before.low, quote.bid);
  const bool high_low = quote.high != before.high || quote.low != before.low;
  if (quote.bid != before.bid || quote.ask != before.ask || high_low)
    last_move_ = moved_[symbol].price = steps_;
  if (high_low) moved_[symbol].high_low = steps_;
}

}  // namespace tutti
