#include "benchmarks/event_driver.h"

#include "benchmarks/interleaved.h"

namespace tutti::bench {
namespace {

// No multiple of any number of sessions, so that each event brings a session other values than the last one.
// Few enough to stay near, as what a library has just read from its connection does.
constexpr int changes = 101;

// One symbol after the other moves for a while.
std::vector<Symbol> changing_prices(const BenchMarket& market) {
  std::vector<Symbol> out;
  for (int i = 0; i < changes; ++i) {
    Symbol symbol = market.symbols[static_cast<std::size_t>(i) / 50 % market.symbols.size()];
    symbol.bid += (i % 50) * 0.0001;
    symbol.ask += (i % 50) * 0.0001;
    out.push_back(symbol);
  }
  return out;
}

}  // namespace

std::vector<AccountSummary> changing_summaries() {
  std::vector<AccountSummary> out;
  for (int i = 0; i < changes; ++i) {
    const double balance = 1000.0 + i * 7.25;
    const double equity = balance + 10.0 + (i % 37) - 18.5;
    const double used = -(50.0 + i % 11);
    out.push_back({balance, (i % 37) - 18.5, 10.0, equity, used, equity / -used, equity + used});
  }
  return out;
}

EventDriver::EventDriver(const BenchMarket& market, std::size_t sessions)
    : terminal_(market, sessions),
      floor_(sessions, market.symbols.size()),
      summaries_(changing_summaries()),
      prices_(changing_prices(market)) {
  for (std::size_t i = 0; i < sessions; ++i)
    sinks_.push_back(terminal_.client(i).sink());
}

template <class Pass>
double EventDriver::per_event(Pass&& pass) const {
  const std::size_t passes = events_per_run / sinks_.size();
  const double time = time_of([&] {
    for (std::size_t i = 0; i < passes; ++i)
      pass();
  });
  return time / static_cast<double>(passes * sinks_.size());
}

double EventDriver::summaries() {
  return per_event([this] {
    const AccountSummary* const end = summaries_.data() + summaries_.size();
    const AccountSummary* event = summaries_.data() + next_;
    for (CLAPICLASS* sink : sinks_) {
      terminal_.set_values(event);
      sink->SummariesChanged(*event);
      if (++event == end) event = summaries_.data();
    }
    next_ = static_cast<std::size_t>(event - summaries_.data());
  });
}

double EventDriver::summaries_floor() {
  return per_event([this] { next_ = floor_.summaries(summaries_, next_); });
}

double EventDriver::prices() {
  return per_event([this] {
    const Symbol* const end = prices_.data() + prices_.size();
    const Symbol* event = prices_.data() + next_;
    for (CLAPICLASS* sink : sinks_) {
      sink->SymbolPricesChanged(*event);
      if (++event == end) event = prices_.data();
    }
    next_ = static_cast<std::size_t>(event - prices_.data());
  });
}

double EventDriver::prices_floor() {
  return per_event([this] { next_ = floor_.prices(prices_, next_); });
}

}  // namespace tutti::bench
