#include "benchmarks/event_driver.h"
#include "benchmarks/figures.h"
#include "benchmarks/interleaved.h"

namespace tutti::bench {

void event_figures(const BenchMarket& market) {
  EventDriver at_50{market, 50};
  EventDriver at_500{market, 500};
  EventDriver at_5000{market, 5000};
  figure("summary_event_over_floor",
         interleaved_ratio([&] { return at_500.summaries(); }, [&] { return at_500.summaries_floor(); }));
  figure("price_event_over_floor",
         interleaved_ratio([&] { return at_500.prices(); }, [&] { return at_500.prices_floor(); }));
  figure("summary_event_500_over_50",
         interleaved_ratio([&] { return at_500.summaries(); }, [&] { return at_50.summaries(); }));
  figure("summary_event_5000_over_500",
         interleaved_ratio([&] { return at_5000.summaries(); }, [&] { return at_500.summaries(); }));
}

}  // namespace tutti::bench
