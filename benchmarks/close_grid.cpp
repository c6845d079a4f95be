#include "benchmarks/close_grid.h"

#include <stdexcept>

#include "benchmarks/interleaved.h"

namespace tutti::bench {
namespace {

constexpr int changes_per_run = 50;

}  // namespace

CloseGrid::CloseGrid(const BenchMarket& market, std::size_t accounts, std::size_t positions)
    : positions_(positions), symbol_(market.symbols[0]), terminal_(market, accounts) {
  frmClosePos& form = terminal_.close_positions();
  form.prepare({"Account", "Status", "Amount", "Action"}, AccountState::disconnected);
  form.refresh_symbols();
  form.Displayed(true);
  form.CloseSymbols.choose(symbol_.name);
  for (std::size_t i = 0; i < positions; ++i) {
    OpenPosition position;
    position.ticket = 10'000'000 + static_cast<std::int64_t>(i);
    position.account = BenchTerminal::account_of(i % accounts);
    position.side = i / accounts % 2 == 0 ? operation::buy : operation::sell;
    position.symbol = symbol_.name;
    position.amount = 0.5;
    terminal_.client(i % accounts).sink()->NewOpenPosition(position);
  }
  for (const Row& row : form.MSH) {
    Row& copy = *list_.add(row.key());
    copy.set_text(frmClosePos::status, row.text(frmClosePos::status));
    if (frmClosePos::is_position(row)) rows_.push_back(&copy);
  }
  prices();
  check();
}

double CloseGrid::prices() {
  CLAPICLASS& session = *terminal_.client(0).sink();
  const double time = time_of([&] {
    for (int i = 0; i < changes_per_run; ++i) {
      symbol_.bid += i % 2 == 0 ? 0.0001 : -0.0001;
      symbol_.ask += i % 2 == 0 ? 0.0001 : -0.0001;
      session.SymbolPricesChanged(symbol_);
      memory_barrier();
    }
  });
  return time / changes_per_run;
}

double CloseGrid::rows() {
  const double time = time_of([&] {
    for (int i = 0; i < changes_per_run; ++i) {
      const double price = symbol_.bid + (i % 2 == 0 ? 0.0001 : -0.0001);
      for (Row* row : rows_)
        row->set_number(frmClosePos::action, price, NumberFormat::close_at);
      memory_barrier();
    }
  });
  return time / changes_per_run;
}

// Every position shows the price of its side.
void CloseGrid::check() const {
  std::size_t priced = 0;
  for (const Row& row : terminal_.close_positions().MSH) {
    const double price = row.cell(frmClosePos::action).stored_number();
    if (price == symbol_.bid || price == symbol_.ask) ++priced;
  }
  if (priced != positions_) throw std::runtime_error("not every position shows its price");
}

}  // namespace tutti::bench
