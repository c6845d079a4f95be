#pragma once

#include <concepts>
#include <span>
#include <string_view>
#include <vector>

namespace tutti::bench {

// What a figure must not exceed, or must reach. Counts are not rounded to it.
struct Bar {
  enum class Kind { none, at_most, at_least };
  Kind kind = Kind::none;
  double value = 0.0;
};

struct Figure {
  std::string_view name;
  Bar bar{};
  bool is_long = false;  // runs only when all are asked for, or this one by its name
};

// Figures that are measured one after the other in a process of their own.
struct Group {
  std::string_view name;
  void (*run)();
  std::vector<Figure> figures;
};

// All there are, in the order in which they run.
std::span<const Group> groups();

// Notes which figures are asked for: by their names, by those of their groups, "short" or "all". False when
// one of the words means nothing.
bool ask_for(std::span<char* const> words);
bool wanted(std::string_view name);
bool wanted(const Group& group);

// Prints one line, "NAME VALUE" and the bar, when the figure is asked for.
void figure(std::string_view name, double value);
// The same, and measures only then.
template <std::invocable Measure>
void figure(std::string_view name, Measure&& measure) {
  if (wanted(name)) figure(name, static_cast<double>(measure()));
}
// Names of the group that were asked for and not printed.
std::vector<std::string_view> missing(const Group& group);

// Summary and price events, from the call of the sink to the rows, against bare stores.
void event_figures();
// Profit events of open positions, against the bare work, prices in the close positions window, and closes.
void position_figures();
// Fan-out of a market order and distribution of an amount, per account.
void order_figures();
// Logging accounts in on the embedded dealing server: time, calls of the system, and the memory that a
// session takes.
void login_figures();
// The journal's files: what a line costs, and how soon a history is there.
void journal_figures();
// The ledger: what it adds to an order, and what a long one costs whoever starts with it or reads it.
void ledger_figures();
// The accounts list and the journal on a screen: what it adds to events, what cells cost, how long input
// waits, and how soon the list is there.
void gui_figures();
// The whole program with 500 accounts and its main window: idle, its first paint, keys in a storm of prices,
// the first order of a day, and how long it keeps the GUI thread at most.
void program_figures();

}  // namespace tutti::bench
