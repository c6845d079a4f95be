#include "benchmarks/gui_events.h"

#include "benchmarks/event_driver.h"

namespace tutti::bench {

GuiEvents::GuiEvents(BenchTerminal& terminal)
    : terminal_(terminal), values_(changing_summaries()), floor_(terminal.size(), 1) {
  for (std::size_t i = 0; i < terminal.size(); ++i)
    sinks_.push_back(terminal.client(i).sink());
  for (Row& row : terminal.accounts().lvwClients)
    rows_.push_back(&row);
}

const AccountSummary& GuiEvents::advance() {
  const AccountSummary& values = values_[next_];
  if (++next_ == values_.size()) next_ = 0;
  if (++account_ == rows_.size()) account_ = 0;
  return values;
}

void GuiEvents::summaries(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    CLAPICLASS& sink = *sinks_[account_];
    const AccountSummary& values = advance();
    terminal_.set_values(&values);
    sink.SummariesChanged(values);
  }
}

void GuiEvents::rows(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    Row& row = *rows_[account_];
    const AccountSummary& values = advance();
    Cell* const cells = row.edit_from(0, row.columns());
    cells[frmMain::balance].set_number(values.balance, NumberFormat::summary);
    cells[frmMain::floating].set_number(values.floating_pl, NumberFormat::summary);
    cells[frmMain::credit].set_number(values.credit, NumberFormat::summary);
    cells[frmMain::equity].set_number(values.equity, NumberFormat::summary);
    cells[frmMain::used_margin].set_number(values.used_margin * -1.0, NumberFormat::summary);
    cells[frmMain::margin_level].set_number(values.margin_level * 100.0, NumberFormat::percent);
    cells[frmMain::free_margin].set_number(values.free_margin, NumberFormat::summary);
    memory_barrier();
  }
}

void GuiEvents::floor(std::size_t passes) {
  for (std::size_t i = 0; i < passes; ++i)
    next_ = floor_.summaries(values_, next_);
}

}  // namespace tutti::bench
