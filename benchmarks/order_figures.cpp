#include "benchmarks/figures.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/order_driver.h"

namespace tutti::bench {

void order_figures() {
  const BenchMarket market;
  OrderDriver at_500{market, 500};
  figure("fanout_over_floor", [&] {
    return interleaved_ratio([&] { return at_500.fan_out(); }, [&] { return at_500.fan_out_floor(); });
  });
  figure("fanout_5000_over_50", [&] {
    OrderDriver at_50{market, 50};
    OrderDriver at_5000{market, 5000};
    return interleaved_ratio([&] { return at_5000.fan_out(); }, [&] { return at_50.fan_out(); });
  });
  figure("distribute_over_floor", [&] {
    return interleaved_ratio([&] { return at_500.distribute(); }, [&] { return at_500.distribute_floor(); });
  });
  figure("distribute_5000_over_500", [&] {
    OrderDriver at_5000{market, 5000};
    return interleaved_ratio([&] { return at_5000.distribute(); }, [&] { return at_500.distribute(); });
  });
}

}  // namespace tutti::bench
