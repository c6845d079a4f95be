#include "benchmarks/bench_market.h"

namespace tutti::bench {

BenchMarket::BenchMarket() {
  constexpr std::string_view currencies[] = {"USD", "JPY", "CHF", "CAD", "AUD"};
  constexpr std::string_view bases[] = {"EUR", "GBP", "NZD", "XAU"};
  double price = 1.0;
  for (const std::string_view base : bases) {
    for (const std::string_view currency : currencies) {
      Symbol symbol;
      symbol.id = static_cast<std::int32_t>(symbols.size()) + 1;
      symbol.name = std::string{base} + std::string{currency};
      symbol.contract_size = 100'000.0;
      symbol.bid = price += 0.1;
      symbol.ask = symbol.bid + 0.0002;
      symbols.push_back(symbol);
    }
  }
  for (const Symbol& symbol : symbols)
    by_name.emplace(symbol.name, symbol.id);
}

}  // namespace tutti::bench
