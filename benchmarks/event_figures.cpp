#include "benchmarks/event_driver.h"
#include "benchmarks/figures.h"
#include "benchmarks/instructions.h"
#include "benchmarks/interleaved.h"

namespace tutti::bench {

void event_figures() {
  const BenchMarket market;
  EventDriver at_500{market, 500};
  figure("summary_event_over_floor", [&] {
    return interleaved_ratio([&] { return at_500.summaries(); }, [&] { return at_500.summaries_floor(); });
  });
  figure("price_event_over_floor", [&] {
    return interleaved_ratio([&] { return at_500.prices(); }, [&] { return at_500.prices_floor(); });
  });
  figure("summary_event_500_over_50", [&] {
    EventDriver at_50{market, 50};
    return interleaved_ratio([&] { return at_500.summaries(); }, [&] { return at_50.summaries(); });
  });
  figure("summary_event_instructions", summary_event_instructions);
}

}  // namespace tutti::bench
