#include "benchmarks/bench_terminal.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace tutti::bench {

BenchTerminal::BenchTerminal(const BenchMarket& market, std::size_t accounts)
    : sessions_(
          [this, &market](const LoginData&) {
            auto client = std::make_unique<BenchClient>(market, &values_);
            clients_.push_back(client.get());
            return client;
          },
          general_, desk_, books_, login_options_, ledger_, stop_, accounts) {
  desk_.status = &window_;
  desk_.accounts = &accounts_;
  desk_.market_order = &order_;
  desk_.close_positions = &close_positions_;
  books_.positions.observe(trade_);
  books_.positions.observe(close_positions_);
  accounts_.attach(order_);
  if (const auto loaded = accounts_.load(); !loaded) throw std::runtime_error(loaded.error().text());
  connect(accounts);
}

BenchTerminal::~BenchTerminal() {
  sessions_.Clear();
}

void BenchTerminal::connect(std::size_t accounts) {
  for (std::size_t i = 0; i < accounts; ++i) {
    const std::int32_t account = account_of(i);
    sessions().Add({"USER" + std::to_string(account), "SECRET", account, {}}, "", true);
  }
  for (std::size_t i = 0; i < accounts; ++i) {
    CLAPICLASS& session = *clients_[i]->sink();
    session.WaitingMode(waiting_mode::connecting);
    session.ConnectionState(true);
    session.SymbolsLoaded();
    session.SummariesChanged(first_values_);
    session.WaitingMode(waiting_mode::normal);
    // In the place of AllDataAreLoaded, which also writes the saved lists.
    order_.add_account(account_of(i));
  }
}

}  // namespace tutti::bench
