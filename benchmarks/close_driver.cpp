#include "benchmarks/close_driver.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "benchmarks/interleaved.h"
#include "core/numbers.h"

namespace tutti::bench {
namespace {

constexpr std::int64_t first_ticket = 10'000'000;
constexpr std::size_t requests_per_run = 500;

double lots_of(std::size_t index) {
  return 0.1 + static_cast<double>(index % 30) / 10.0;
}

}  // namespace

CloseDriver::CloseDriver(const BenchMarket& market, std::size_t accounts, std::size_t positions)
    : market_(market),
      positions_(positions),
      terminal_(market, accounts),
      helper_(terminal_.general(), terminal_.sessions()) {
  for (std::size_t i = 0; i < accounts; ++i) {
    clients_.push_back(&terminal_.client(i));
    client_of_account_[BenchTerminal::account_of(i)] = clients_.back();
  }
}

OpenPosition CloseDriver::position(std::size_t index) const {
  const std::size_t accounts = clients_.size();
  const Symbol& symbol = market_.symbols[index / accounts % market_.symbols.size()];
  OpenPosition out;
  out.ticket = first_ticket + static_cast<std::int64_t>(index);
  out.account = BenchTerminal::account_of(index % accounts);
  out.side = operation::buy;
  out.symbol_id = symbol.id;
  out.symbol = symbol.name;
  out.amount = lots_of(index);
  out.open_price = symbol.ask;
  out.current_price = symbol.bid;
  return out;
}

void CloseDriver::open_all() {
  for (std::size_t i = 0; i < positions_; ++i)
    client_of(i).sink()->NewOpenPosition(position(i));
}

void CloseDriver::answer(std::size_t index) {
  OrderReport report{.number = first_ticket + static_cast<std::int64_t>(index),
                     .account = BenchTerminal::account_of(index % clients_.size()),
                     .result = result::succeeded,
                     .state = order_state::executed,
                     .operation = operation::buy,
                     .symbol = market_.symbols[index / clients_.size() % market_.symbols.size()].name};
  report.amount = lots_of(index);
  client_of(index).sink()->CloseOrderResult(report);
}

double CloseDriver::requests() {
  const std::size_t count = std::min(requests_per_run, positions_);
  const double time = time_of([&] {
    for (std::size_t i = 0; i < count; ++i) {
      helper_.close(first_ticket + static_cast<std::int64_t>(i), lots_of(i),
                    BenchTerminal::account_of(i % clients_.size()));
    }
  });
  for (std::size_t i = 0; i < count; ++i)
    answer(i);
  terminal_.sessions().look_at_the_clock();
  return time / static_cast<double>(count);
}

double CloseDriver::requests_floor() {
  const std::size_t count = std::min(requests_per_run, positions_);
  return time_of([&] {
           for (std::size_t i = 0; i < count; ++i) {
             const auto at = client_of_account_.find(BenchTerminal::account_of(i % clients_.size()));
             at->second->ClosePosition(std::to_string(first_ticket + static_cast<std::int64_t>(i)),
                                       number_text(lots_of(i)), "", 0);
             memory_barrier();
           }
         }) /
         static_cast<double>(count);
}

double CloseDriver::all_closed() {
  open_all();
  const double time = time_of([&] {
    for (std::size_t i = 0; i < positions_; ++i) {
      const OpenPosition closed = position(i);
      helper_.close(closed.ticket, closed.amount, closed.account);
      answer(i);
      client_of(i).sink()->DeleteOpenPosition(closed);
    }
  });
  if (!terminal_.trade().lvwOpenPos.empty() || terminal_.sessions().unanswered() != 0)
    throw std::runtime_error("not every position was closed");
  return time / static_cast<double>(positions_);
}

}  // namespace tutti::bench
