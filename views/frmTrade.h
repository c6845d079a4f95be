#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "books/symbol_collection.h"
#include "core/CQuestionBox.h"
#include "core/MGeneral.h"
#include "core/check_box.h"
#include "core/label.h"
#include "core/row_list.h"
#include "sessions/desk.h"
#include "views/frmPending.h"

namespace tutti {

// Open positions window ("Trade"): one row per open position of any logged-in account, keyed "T", the ticket
// and the account, with live price and profit. Closes the ticked ones.
class frmTrade final : public PositionBook {
 public:
  enum Column : std::size_t {
    ticket,
    account,
    time,
    type,
    amount,
    symbol,
    open_price,
    current_price,
    stop_loss,
    take_profit,
    commission,
    interest,
    profit
  };
  // Type of the question whose yes closes the ticked positions.
  static constexpr std::int32_t close_question = 1;
  static constexpr std::string_view caption = "Trade";
  // Fixed-width, so that the figures of the summary line stand still.
  static constexpr std::string_view summaries_font = "Courier New";

  // One position to be closed whole.
  struct Close {
    std::int64_t ticket = 0;
    double amount = 0.0;  // lots
    std::int32_t account = 0;
  };

  frmTrade(MGeneral& general, CQuestionBox& question_box, Desk& desk, const SymbolCollection& symbols);

  RowList lvwOpenPos{{"Ticket", "Account", "Date/Time", "Type", "Amount", "Symbol", "Open Price",
                      "Current Price", "S/L", "T/P", "Comm", "Interest", "P/L"}};
  CheckBox chkAll;
  Label lbmSummaries;
  Label lbbClose{"Close Selected Positions"};

  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);

  void AddPosition(const OpenPosition& position);
  void RemovePosition(std::int64_t ticket, std::int32_t account);
  // All positions of an account that is no longer connected, but those.
  void RemovePending(std::int32_t account, const Numbers& kept = {});
  // Asks whether this one is to be closed, ticked or not, and closes no other.
  void close_one(const Row& row);
  // What these positions are in all, for the question whether to close them. One that is gone is not told.
  std::string about(const std::vector<Close>& positions) const;
  // Closes what is ticked now, without asking. Rows are collected before the first request is sent.
  void closeAllse();
  // Sends one close request and reports an immediate refusal; set by start-up.
  std::function<void(const Close&)> close_helper;
  // Hands the row's position to the entry order window, for its SL/TP.
  void edit(const Row& row) const;
  // Edit mode of the entry order window; set by start-up.
  std::function<void(const frmPending::EditRequest&)> EdirMode;

  // PositionBook
  void position(const OpenPosition& position) override { AddPosition(position); }
  void remove_position(std::int64_t ticket, std::int32_t account) override {
    RemovePosition(ticket, account);
  }
  void remove_account(std::int32_t account, const Numbers& kept) override { RemovePending(account, kept); }
  void floating_changed(const OpenPosition& position) override;

 private:
  void lbbClose_Click();
  void chkAll_Click();
  static Close close_of(const Row& row);
  const Row* row_of(const Close& position) const;
  std::vector<Close> ticked() const;

  MGeneral& general_;
  CQuestionBox& question_box_;
  Desk& desk_;
  const SymbolCollection& symbols_;
  std::string column_widths_;
};

}  // namespace tutti
