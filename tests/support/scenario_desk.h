#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "apps/verification.h"
#include "tests/dealer_rig.h"
#include "tests/support/order_forms.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

inline FaultConfig fault(FaultKind kind, std::vector<std::int32_t> accounts, FaultPoint on, int code = 0,
                         std::chrono::milliseconds wait = {}) {
  FaultConfig out = tutti::fault(kind, {on}, code, wait, std::move(accounts));
  out.points = 20.0;
  return out;
}

// A terminal whose accounts are logged in, with what operators do all day.
struct ScenarioDesk : TestTerminal {
  explicit ScenarioDesk(DealerConfig config) : TestTerminal(std::move(config)) {
    start_logged_in();
    sound.take();
  }
  // A distributed market order, answered where the server answers at once.
  void open(const char* amount, const char* symbol = "EURUSD", bool buy = true) {
    send_in_equal_parts(main->market_order(), amount, symbol, buy);
    run(std::chrono::milliseconds{300});
  }
  void close_all() {
    for (Row& row : positions())
      row.set_checked(true);
    main->trade().lbbClose.click();
  }
  RowList& positions() { return main->trade().lvwOpenPos; }
  RowList& orders() { return main->pending().lvwPending; }
  CClientAPIManager& session(std::int32_t account) { return *main->sessions().by_account(account); }
  std::int64_t ticket(std::size_t row) { return positions().row(row).key().number(); }
  Texts differences() { return Verification{*main, server}.run(); }
  // Sorted, since accounts log in and fill in an order of the server's own.
  static Texts rows(const RowList& list) { return sorted(rows_of(list)); }
};

}  // namespace tutti::testing
