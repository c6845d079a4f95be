#pragma once

#include <string_view>

#include "benchmarks/bench_market.h"

namespace tutti::bench {

// Prints one line, "NAME VALUE".
void figure(std::string_view name, double value);

// Summary and price events, from the call of the sink to the rows, against bare stores.
void event_figures(const BenchMarket& market);
// Profit events of open positions, against the bare work, and prices in the close positions window.
void position_figures(const BenchMarket& market);
// Fan-out of a market order and distribution of an amount, per account.
void order_figures(const BenchMarket& market);
// Logging 500 accounts in on the embedded dealing server, and the memory a session takes.
void login_figures();
// The accounts list on a screen: what it adds to events, what cells cost, how long input waits, and how soon
// the list is there.
void gui_figures(const BenchMarket& market);
// The whole program with 500 accounts and its main window: idle, its first paint, keys in a storm of prices,
// and how long it keeps the GUI thread at most.
void program_figures();

}  // namespace tutti::bench
