#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "core/MGeneral.h"
#include "core/button.h"
#include "core/label.h"
#include "core/row_list.h"
#include "core/text_box.h"
#include "ledger/ledger_reads.h"

namespace tutti {

// Requests whose outcome nobody knows, of all runs, and the operator's word on one of them. Read from the
// ledger, and read again while it can be seen, when something was stored since.
class UnknownList {
 public:
  enum Column : std::size_t { since, account, user, what, side, lots, symbol, number, why, request };
  static constexpr std::chrono::milliseconds interval{250};

  // `reads`: nullptr where there is no ledger; the list stays empty.
  UnknownList(MGeneral& general, LedgerReads* reads);

  RowList lvwUnknown{
      {"Since", "Account", "User", "What", "Side", "Lots", "Symbol", "Number", "Why", "Request"}};
  TextBox note;  // how the operator knows
  Button executed{"It was executed..."};
  Button not_executed{"It was not executed..."};
  // What is to be done; or why nothing can be read.
  Label head;

  void Displayed(bool displayed);
  // Looks whether something is to be read. To be called often.
  void poll();

  // Settles a request by the operator's word; false when it is not unknown any more. Set by start-up.
  std::function<bool(RequestId request, bool executed, const std::string& note)> settle;

 private:
  void read();
  void show(const std::vector<LedgerUnknown>& all);
  void ask(bool was_executed);

  MGeneral& general_;
  LedgerReads* reads_;
  bool displayed_ = false;
  bool asked_ = false;
  bool outdated_ = true;
  std::chrono::milliseconds asked_at_{0};
  std::int64_t version_ = 0;
};

}  // namespace tutti
