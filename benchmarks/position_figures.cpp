#include "benchmarks/close_driver.h"
#include "benchmarks/close_grid.h"
#include "benchmarks/figures.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/position_driver.h"

namespace tutti::bench {

void position_figures(const BenchMarket& market) {
  PositionDriver at_1000{market, 500, 1000};
  PositionDriver at_10000{market, 500, 10'000};
  CloseGrid grid{market, 500, 1000};
  figure("position_event_over_plain_floor",
         interleaved_ratio([&] { return at_10000.profits(); }, [&] { return at_10000.profits_floor(); }));
  figure("net_10000_over_1000",
         interleaved_ratio([&] { return at_10000.profits(); }, [&] { return at_1000.profits(); }));
  figure("closegrid_price_over_rows",
         interleaved_ratio([&] { return grid.prices(); }, [&] { return grid.rows(); }));
  CloseDriver closes{market, 500, 500};
  figure("close_over_floor",
         interleaved_ratio([&] { return closes.requests(); }, [&] { return closes.requests_floor(); }));
  CloseDriver few{market, 500, 10'000};
  CloseDriver many{market, 500, 100'000};
  figure("close_100k_over_10k",
         interleaved_ratio([&] { return many.all_closed(); }, [&] { return few.all_closed(); }));
}

}  // namespace tutti::bench
