#include "benchmarks/bench_client.h"

namespace tutti::bench {

RequestCode BenchClient::NewMarketOrder(Operation side, std::int32_t symbol_id, double amount,
                                        std::string_view, std::string_view, RequestId) {
  last_side_ = side;
  last_symbol_ = symbol_id;
  last_amount_ = amount;
  return request::taken;
}

}  // namespace tutti::bench
