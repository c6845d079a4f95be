#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "books/position_book.h"
#include "core/CQuestionBox.h"
#include "core/MGeneral.h"
#include "core/check_box.h"
#include "core/label.h"
#include "core/record_rows.h"
#include "core/row_list.h"
#include "views/CNetPos.h"
#include "views/frmPending.h"

namespace tutti {

// Open positions window ("Trade"): one row per open position of any logged-in account, keyed "T", the ticket
// and the account, with live price and profit. Closes the ticked ones. A row shows its record of the book.
class frmTrade final : public PositionBook::Observer {
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

  using Record = PositionBook::Record;

  frmTrade(MGeneral& general, CQuestionBox& question_box, const PositionBook& book, CNetPos& net);

  RowList lvwOpenPos{{"Ticket", "Account", "Date/Time", "Type", "Amount", "Symbol", "Open Price",
                      "Current Price", "S/L", "T/P", "Comm", "Interest", "P/L"}};
  CheckBox chkAll;
  Label lbmSummaries;
  Label lbbClose{"Close Selected Positions"};

  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);

  // Adds the position's row, or refreshes it, and tells the net positions.
  void AddPosition(const Record& position);
  void RemovePosition(const Record& position);
  // What an account that is no longer connected leaves behind.
  void RemovePending(std::span<const Record> gone);
  // Asks whether this one is to be closed, ticked or not, and closes no other.
  void close_one(const Row& row);
  // What these positions are in all, for the question whether to close them. One that is gone is not told.
  std::string about(const std::vector<Close>& positions) const;
  // Closes what is ticked now, without asking. Rows are collected before the first request is sent.
  void closeAllse();
  // Sends one close request and reports an immediate refusal; set by start-up.
  std::function<void(const Close&)> close_helper;
  // A close of it has left and has no answer, so that it is not sent again; set by start-up.
  std::function<bool(const Close&)> awaited = [](const Close&) { return false; };
  // Has what is closed in a call stored as one ticket; set by start-up.
  std::function<void(const std::function<void()>&)> as_one_ticket = [](const auto& ask) { ask(); };
  // Hands the row's position to the entry order window, for its SL/TP.
  void edit(const Row& row) const;
  // Edit mode of the entry order window; set by start-up.
  std::function<void(const frmPending::EditRequest&)> EdirMode;

  static const char* type_text(const Record& position) { return buys(position.side) ? "Buy" : "Sell"; }

  // PositionBook::Observer
  void changed(const Record& position) override { AddPosition(position); }
  void worth_changed(const Record& position) override {
    rows_.outdate(position.slot);
    net_.floating_changed(position);
  }
  void removed(const Record& position) override { RemovePosition(position); }
  void account_left(std::int32_t, std::span<const Record> gone) override { RemovePending(gone); }

 private:
  void make_cells(Row& row);
  void lbbClose_Click();
  void chkAll_Click();
  const Record* record_of(const Row& row) const {
    return book_.find(row.key().number(), row.key().account());
  }
  static Close close_of(const Record& position);
  std::vector<Close> ticked() const;

  MGeneral& general_;
  CQuestionBox& question_box_;
  const PositionBook& book_;
  CNetPos& net_;
  RecordRows rows_;                     // by slot
  std::vector<std::uint64_t> written_;  // by slot: stamp of what the row's cells show but for the worth
  std::string column_widths_;
};

}  // namespace tutti
