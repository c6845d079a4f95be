// The market and the accounts that the program is shown with.

#include <cstddef>

#include "dealer/config/dealer_config.h"
#include "sessions/contract/codes.h"

namespace tutti {

namespace {

constexpr int demo_accounts = 500;
constexpr std::size_t waiting_orders = 24;

// Far enough from the market to wait for the time of a show.
EntryOrderConfig waiting_order(const DealerConfig& config, std::size_t number) {
  const SymbolConfig& symbol = config.symbols[number % config.symbols.size()];
  const bool buy = number % 3 != 0;
  const double away = buy ? 0.985 : 1.015;
  return {.account = config.accounts[number * 3].number,
          .operation = buy ? operation::buy : operation::sell,
          .symbol = symbol.name,
          .amount = 0.1 * static_cast<double>(1 + number % 5),
          .price = symbol.bid * away,
          .stop_loss = number % 2 == 0 ? symbol.bid * (buy ? 0.97 : 1.03) : 0.0,
          .take_profit = number % 4 == 0 ? symbol.bid * (buy ? 1.01 : 0.99) : 0.0};
}

}  // namespace

DealerConfig DealerConfig::demo() {
  DealerConfig config = sample(demo_accounts);
  for (std::size_t number = 0; number < waiting_orders; ++number)
    config.entry_orders.push_back(waiting_order(config, number));
  const auto account = [&config](std::size_t index) { return config.accounts[index].number; };
  FaultConfig requote;
  requote.kind = FaultKind::requote;
  requote.accounts = {account(4)};
  requote.on = {FaultPoint::open};
  requote.every = 3;
  requote.points = 12.0;
  requote.wait = std::chrono::seconds{20};
  FaultConfig dealing;
  dealing.kind = FaultKind::pending;
  dealing.accounts = {account(40), account(90), account(140), account(190)};
  dealing.on = {FaultPoint::open};
  dealing.wait = std::chrono::seconds{15};
  config.faults = {requote, dealing};
  return config;
}

}  // namespace tutti
