#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/combo_box.h"
#include "core/label.h"
#include "core/row_list.h"
#include "ledger/ledger_reads.h"

namespace tutti {

// Fills: a line per execution, newest first, and what the closes among them have brought. Read from the
// ledger, and read again while it can be seen, when something was stored since.
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
  void read();
  void show(const std::vector<FillRecord>& fills, std::int64_t version, TimePoint since);

  const Clock& clock_;
  LedgerReads* reads_;
  bool displayed_ = false;
  bool asked_ = false;
  bool outdated_ = true;
  std::chrono::milliseconds asked_at_{0};
  std::int64_t version_ = 0;
  std::int64_t newest_ = 0;  // seq of the newest one that is listed
  TimePoint since_{};        // of what is listed
};

}  // namespace tutti
