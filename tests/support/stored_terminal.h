#pragma once

#include <stdexcept>
#include <string>
#include <thread>

#include "apps/open_backend.h"
#include "tests/support/order_forms.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

// A whole terminal with its ledger on disk, logged in at the embedded dealing server of this configuration,
// in time that is turned by hand.
struct StoredTerminal {
  explicit StoredTerminal(const std::string& dealer) {
    home.write("dealer.toml", dealer);
    TerminalOptions options;
    options.home = home.path();
    options.dealer_file = home.path() / "dealer.toml";
    options.key_file = home.key_file();
    auto opened =
        Terminal::open(options, {prompt, sound, files, clock, {}},
                       [this](const TerminalOptions& of) { return open_backend(of, clock, &server); });
    if (!opened) throw std::runtime_error(opened.error().text());
    desktop = std::move(*opened);
    run(2s);
  }
  Main& main() { return desktop->main(); }
  void run(std::chrono::milliseconds time) {
    for (auto gone = 0ms; gone < time; gone += 50ms) {
      clock.advance(50ms);
      desktop->advance();
    }
  }
  // Time goes by until it holds; how long the ledger's threads take is of no matter.
  template <class Holds>
  bool until(Holds&& holds) {
    for (int tries = 0; tries < 200'000 && !holds(); ++tries) {
      clock.advance(1ms);
      desktop->advance();
      std::this_thread::yield();
    }
    return holds();
  }
  // A buy for all accounts in equal parts.
  void buy(const char* lots, const char* symbol = "EURUSD") {
    send_in_equal_parts(main().market_order(), lots, symbol);
    run(1s);
  }
  // A buy limit far below the market for all accounts in equal parts.
  void place(const char* lots, const char* price) {
    frmlimitorder& form = main().entry_order();
    form.Displayed(true);
    form.cblimiordertype.choose(0);
    form.cblimitordersymbols.choose("EURUSD");
    form.CBlimitorderdis.choose(0);
    form.txtlimitorderammount.type(lots);
    form.txtatprice.type(price);
    form.tick_all();
    form.cmdlimiorderdis.click();
    form.cmdsubmitlimiorder.click();
    run(1s);
  }
  std::size_t requests() const { return server->outcomes().size(); }

  TemporaryFolder home;
  ManualClock clock;
  RecordingPrompt prompt;
  RecordingSound sound;
  FakeFileDialog files;
  const DealingServer* server = nullptr;
  std::unique_ptr<Terminal> desktop;
};

}  // namespace tutti::testing
