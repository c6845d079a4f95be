#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "apps/verification.h"
#include "tests/dealer_rig.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

using Texts = std::vector<std::string>;
inline constexpr std::int32_t first = 500'100;

inline FaultConfig fault(FaultKind kind, std::vector<std::int32_t> accounts, FaultPoint on, int code = 0,
                         std::chrono::milliseconds wait = {}) {
  FaultConfig fault;
  fault.kind = kind;
  fault.accounts = std::move(accounts);
  fault.on = {on};
  fault.code = code;
  fault.wait = wait;
  fault.points = 20.0;
  return fault;
}

inline Texts sorted(Texts texts) {
  std::sort(texts.begin(), texts.end());
  return texts;
}

// A terminal whose accounts are logged in, with what operators do all day.
struct ScenarioDesk : TestTerminal {
  explicit ScenarioDesk(DealerConfig config) : TestTerminal(std::move(config)) {
    start_logged_in();
    sound.take();
  }
  // A distributed market order, answered where the server answers at once.
  void open(const char* amount, const char* symbol = "EURUSD", bool buy = true) {
    frmorder& form = main->market_order();
    if (!form.chkAllClients.checked()) form.chkAllClients.click();
    form.CBdis.choose(0);
    form.cbsymbols.choose(symbol);
    form.txtammount.set_text("");
    form.txtammount.type(amount);
    form.cmddis.click();
    (buy ? form.cmdbuy : form.cmdsell).click();
    run(std::chrono::milliseconds{300});
  }
  void close_all() {
    for (Row& row : positions())
      row.set_checked(true);
    main->trade().lbbClose.click();
  }
  RowList& positions() { return main->trade().lvwOpenPos; }
  RowList& orders() { return main->pending().lvwPending; }
  CClientAPIManager& session(std::int32_t account) {
    return *main->accounts().sessions().by_account(account);
  }
  std::int64_t ticket(std::size_t row) { return positions().row(row).key().number(); }
  bool journaled(const std::string& text) {
    const Texts lines = journal();
    return std::find(lines.begin(), lines.end(), text) != lines.end();
  }
  Texts differences() { return Verification{*main, server}.run(); }
  // Sorted, since accounts log in and fill in an order of the server's own.
  static Texts rows(const RowList& list) {
    Texts out;
    for (const Row& row : list) {
      std::string text;
      for (std::size_t column = 0; column < row.columns(); ++column)
        text += (column == 0 ? "" : "|") + row.text(column);
      out.push_back(text);
    }
    return sorted(out);
  }
};

}  // namespace tutti::testing
