#include "benchmarks/ledger_clicks.h"

#include <ctime>
#include <stdexcept>
#include <utility>
#include <vector>

#include "benchmarks/interleaved.h"
#include "benchmarks/manual_program.h"

namespace tutti::bench {
namespace {

constexpr int accounts = 500;
constexpr int orders = 61;

// Accounts of which each can trade.
DealerConfig dealer() {
  DealerConfig out = DealerConfig::sample(accounts);
  for (AccountConfig& account : out.accounts) {
    account.hidden_symbols.clear();
    account.privilege = true;
    account.balance = 100'000.0;
  }
  return out;
}

double thread_time() {
  std::timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

class Clicks {
 public:
  explicit Clicks(ManualProgram::Keeps keeps) : program_(dealer(), keeps) {
    program_.start();
    form().cbsymbols.choose("EURUSD");
    form().CBdis.choose(0);
    form().chkAllClients.click();
    order();
  }

  void order() {
    form().txtammount.set_text("");
    form().txtammount.type("50");
    form().cmddis.click();
    const double before = thread_time();
    wall_.push_back(time_of([&] { form().cmdbuy.click(); }));
    cpu_.push_back(thread_time() - before);
    if (form().answers().waiting != accounts) throw std::runtime_error("not all of an order has left");
    turn_.push_back(program_.longest_turn_until([&] { return form().answers().waiting == 0; }));
    program_.settle_ledger();
  }
  double wall() const { return median(wall_) / 1e6; }
  double cpu() const { return median(cpu_) / 1e6; }
  double longest_turn() const { return median(turn_) / 1e6; }

 private:
  frmorder& form() { return program_.main().market_order(); }

  ManualProgram program_;
  std::vector<double> wall_;
  std::vector<double> cpu_;
  std::vector<double> turn_;
};

}  // namespace

ClickCosts ledger_click_costs() {
  Clicks with{ManualProgram::Keeps::ledger};
  Clicks without{ManualProgram::Keeps::nothing};
  for (int i = 0; i < orders; ++i) {
    with.order();
    without.order();
  }
  return {with.wall() - without.wall(), with.cpu() - without.cpu(),
          with.longest_turn() - without.longest_turn()};
}

}  // namespace tutti::bench
