#include "benchmarks/close_driver.h"
#include "benchmarks/close_grid.h"
#include "benchmarks/figures.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/position_driver.h"

namespace tutti::bench {

void position_figures() {
  const BenchMarket market;
  constexpr std::size_t accounts = 500;
  PositionDriver at_10000{market, accounts, 10'000};
  figure("position_event_over_plain_floor", [&] {
    return interleaved_ratio([&] { return at_10000.profits(); }, [&] { return at_10000.profits_floor(); });
  });
  figure("positions_10000_over_1000", [&] {
    PositionDriver at_1000{market, accounts, 1000};
    return interleaved_ratio([&] { return at_10000.profits(); }, [&] { return at_1000.profits(); });
  });
  figure("closegrid_price_over_rows", [&] {
    CloseGrid grid{market, accounts, 1000};
    return interleaved_ratio([&] { return grid.prices(); }, [&] { return grid.rows(); });
  });
  figure("close_over_floor", [&] {
    CloseDriver closes{market, accounts, 500};
    return interleaved_ratio([&] { return closes.requests(); }, [&] { return closes.requests_floor(); });
  });
  figure("close_100k_over_10k", [&] {
    CloseDriver few{market, accounts, 10'000};
    CloseDriver many{market, accounts, 100'000};
    return interleaved_ratio([&] { return many.all_closed(); }, [&] { return few.all_closed(); });
  });
}

}  // namespace tutti::bench
