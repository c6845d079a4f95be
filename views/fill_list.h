#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/combo_box.h"
#include "core/label.h"
#include "core/row_list.h"
#include "ledger/ledger_reads.h"
#include "ledger/realised_sums.h"

namespace tutti {

// Fills: a line per execution, newest first, and what the closes among them have brought. Read from the
// ledger; while it can be seen, what was stored since is read as well.
class FillList {
 public:
  enum Column : std::size_t {
    time,
    ticket,
    account,
    what,
    side,
    lots,
    symbol,
    price,
    order,
    profit,
    commission,
    currency
  };
  static constexpr std::chrono::milliseconds interval{250};

  // `reads`: nullptr where there is no ledger; the list stays empty.
  FillList(const Clock& clock, LedgerReads* reads);

  RowList lvwFills{{"Time", "Ticket", "Account", "What", "Side", "Lots", "Symbol", "Price", "Order", "Profit",
                    "Commission", "Currency"}};
  // Of what time.
  ComboBox period;
  // "3 fills; realised: USD -10.80"; or why nothing can be read.
  Label sums;

  void Displayed(bool displayed);
  // Looks whether something is to be read. To be called often.
  void poll();

 private:
  struct Told {
    std::vector<FillRecord> fills{};  // oldest first
    std::vector<RealisedSum> sums{};  // of them, by currency
    std::map<std::string, int> digits{};
    std::int64_t version = 0;
    TimePoint since{};
  };

  void read();
  void show(Told told);
  void make_cells(Row& row) const;

  const Clock& clock_;
  LedgerReads* reads_;
  bool displayed_ = false;
  bool asked_ = false;
  bool outdated_ = true;
  std::chrono::milliseconds asked_at_{0};
  std::int64_t version_ = 0;
  // What is listed, as of which time. The ledger only grows, and so does this.
  TimePoint since_{};
  std::vector<FillRecord> fills_;
  std::vector<RealisedSum> sums_;
  std::map<std::string, int> digits_;  // of the prices, by symbol
};

}  // namespace tutti
