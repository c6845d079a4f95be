#pragma once

namespace tutti::bench {

// What the ledger adds to a market order over 500 accounts, as differences of medians, in milliseconds. The
// orders of a program that keeps its ledger and of one that keeps nothing take turns.
struct ClickCosts {
  double wall = 0.0;          // from the click to the last send
  double cpu = 0.0;           // the same, of the deciding thread
  double longest_turn = 0.0;  // of the loop, while the answers come
};

ClickCosts ledger_click_costs();

}  // namespace tutti::bench
