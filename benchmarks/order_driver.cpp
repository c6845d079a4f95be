#include "benchmarks/order_driver.h"

#include <algorithm>
#include <stdexcept>

#include "benchmarks/interleaved.h"
#include "core/numbers.h"

namespace tutti::bench {
namespace {

constexpr double total = 12'345.5;  // lots
constexpr int by_equity = 2;
constexpr int decimals = 2;
constexpr std::size_t accounts_per_run = 5000;

std::vector<ClientAPI*> clients_of(BenchTerminal& terminal) {
  std::vector<ClientAPI*> out;
  for (std::size_t i = 0; i < terminal.size(); ++i)
    out.push_back(&terminal.client(i));
  return out;
}

}  // namespace

OrderDriver::OrderDriver(const BenchMarket& market, std::size_t accounts)
    : values_(accounts),
      current_values_(accounts),
      symbol_(market.symbols[7].name),
      terminal_(market, accounts),
      floor_(market, clients_of(terminal_)) {
  for (std::size_t i = 0; i < accounts; ++i) {
    const double equity = 1000.0 + static_cast<double>(i % 97) * 12.5;
    values_[i] = {.balance = equity, .equity = equity, .free_margin = equity};
    clients_.push_back(&terminal_.client(i));
    current_values_[i] = &values_[i];
    clients_.back()->set_values(&current_values_[i]);
  }
  frmorder& form = terminal_.order();
  terminal_.hold_amount_precision(decimals);
  form.cbsymbols.choose(symbol_);
  form.CBdis.choose(by_equity);
  form.txtammount.type(number_text(total));
  form.chkAllClients.click();
  distribute();
  distribute_floor();
  fan_out();
  check();
}

double OrderDriver::distribute() {
  frmorder& form = terminal_.order();
  return per_account(time_of([&] {
    for (std::size_t i = 0; i < runs(); ++i) {
      form.Enableds(true);
      form.cmddis.click();
    }
  }));
}

double OrderDriver::distribute_floor() {
  return per_account(time_of([&] {
    for (std::size_t i = 0; i < runs(); ++i)
      floor_.distribute(total, symbol_, decimals);
  }));
}

double OrderDriver::fan_out() {
  double time = 0.0;
  for (std::size_t i = 0; i < runs(); ++i) {
    time += time_of([&] {
      terminal_.sessions().BuyFunction();
      // More than a thousand leave part by part.
      terminal_.sessions().wait_for_stored();
    });
    answer_orders();
  }
  return per_account(time);
}

double OrderDriver::fan_out_floor() {
  return per_account(time_of([&] {
    for (std::size_t i = 0; i < runs(); ++i)
      floor_.fan_out(operation::buy, symbol_);
  }));
}

void OrderDriver::answer_orders() {
  OrderReport report{.number = ++answered_,
                     .result = result::succeeded,
                     .state = order_state::executed,
                     .operation = operation::buy,
                     .symbol = symbol_};
  for (BenchClient* client : clients_) {
    report.amount = client->last_amount();
    client->sink()->NewOrderResult(report);
  }
  terminal_.sessions().look_at_the_clock();
}

void OrderDriver::check() const {
  for (std::size_t i = 0; i < clients_.size(); ++i) {
    if (clients_[i]->last_amount() == floor_.shares()[i] && floor_.shares()[i] > 0.0) continue;
    throw std::runtime_error("the order sent is not the share of account " + std::to_string(i));
  }
}

std::size_t OrderDriver::runs() const {
  return std::max<std::size_t>(accounts_per_run / clients_.size(), 1);
}

double OrderDriver::per_account(double time) const {
  return time / static_cast<double>(runs() * clients_.size());
}

}  // namespace tutti::bench
