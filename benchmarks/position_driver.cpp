#include "benchmarks/position_driver.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "benchmarks/interleaved.h"

namespace tutti::bench {
namespace {

constexpr std::size_t events_per_run = 5000;
constexpr std::int64_t first_ticket = 10'000'000;
// No multiple of any number of positions, so that each event brings a position another value than the last.
constexpr std::size_t changes = 101;

}  // namespace

OpenPosition PositionDriver::position(std::size_t index) const {
  const Symbol& symbol = market_.symbols[open_[index].symbol];
  OpenPosition out;
  out.ticket = first_ticket + static_cast<std::int64_t>(index);
  out.account = BenchTerminal::account_of(open_[index].account);
  out.side = index % 2 == 0 ? operation::buy : operation::sell;
  out.symbol_id = symbol.id;
  out.symbol = symbol.name;
  out.amount = 0.1 + static_cast<double>(index % 30) / 10.0;
  out.open_price = symbol.ask;
  out.current_price = symbol.bid;
  return out;
}

PositionDriver::PositionDriver(const BenchMarket& market, std::size_t accounts, std::size_t positions)
    : market_(market), terminal_(market, accounts), floor_(accounts, market.symbols.size()) {
  for (std::size_t i = 0; i < positions; ++i) {
    const std::size_t account = i % accounts;
    const std::size_t symbol = i / accounts % market.symbols.size();
    open_.push_back({terminal_.client(account).sink(), account, symbol});
    const OpenPosition opened = position(i);
    open_.back().sink->NewOpenPosition(opened);
    floor_.add(opened, account, symbol);
  }
  // Worth what the dealing server makes of prices and lots, which is hardly ever a round number.
  for (std::size_t i = 0; i < changes; ++i) {
    OpenPosition event = position(i % positions);
    event.current_price = event.open_price + 0.00001 * (static_cast<double>(i) - 50.0);
    event.floating_pl = (event.current_price - event.open_price) * event.amount * 100'000.0 / 1.0845;
    event.commission = -0.7;
    events_.push_back(event);
  }
  profits();
  profits_floor();
  check();
}

template <class Tell>
double PositionDriver::per_event(std::size_t& next, Tell&& tell) {
  const double time = time_of([&] {
    std::size_t at = next % open_.size();
    std::size_t change = next % changes;
    for (std::size_t i = 0; i < events_per_run; ++i) {
      const Open& open = open_[at];
      OpenPosition& event = events_[change];
      event.ticket = first_ticket + static_cast<std::int64_t>(at);
      event.account = BenchTerminal::account_of(open.account);
      tell(open, event);
      memory_barrier();
      if (++at == open_.size()) at = 0;
      if (++change == changes) change = 0;
    }
  });
  next += events_per_run;
  return time / static_cast<double>(events_per_run);
}

double PositionDriver::profits() {
  return per_event(
      next_, [](const Open& open, const OpenPosition& event) { open.sink->PosFloatingPLChanged(event); });
}

double PositionDriver::profits_floor() {
  return per_event(next_floor_, [this](const Open&, const OpenPosition& event) { floor_.changed(event); });
}

void PositionDriver::check() {
  const auto same = [](double ours, double floor) {
    if (std::fabs(ours - floor) > 1e-6) throw std::runtime_error("the profits do not add up as they should");
  };
  const CNetPos& net = terminal_.net();
  same(net.total().floating(), floor_.total());
  for (std::size_t i = 0; i < net.symbols().size(); ++i)
    same(net.symbols()[i].sum.floating(), floor_.of_symbol(i));
  for (std::size_t i = 0; i < net.accounts().size(); ++i)
    same(net.accounts()[i].sum.floating(), floor_.of_account(i));
  if (floor_.total() == 0.0) throw std::runtime_error("no profit has changed");
}

}  // namespace tutti::bench
