#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/lot_limits.h"
#include "core/row_list.h"
#include "core/text_box.h"

namespace tutti {

// What is wrong with the share of a ticked row. The limits count as soon as they are known.
enum class ShareFault { none, zero_or_below, below_minimum, above_maximum };

// Shares of the ticked rows that have one.
struct Shares {
  double sum = 0.0;  // lots
  int counted = 0;   // shares in the sum
  int without = 0;   // ticked rows that have none, which goes out as 0
  // Of those in the sum.
  int zero = 0;
  int negative = 0;
  int below_minimum = 0;
  int above_maximum = 0;
};

// The account list of an order window, keyed "C" and the account number, and the in-place editor of its
// shares. Works on the form's list and box.
class AccountRows {
 public:
  enum Column : std::size_t { account, amount, result_text };

  AccountRows(const LotLimits& lots, RowList& list, TextBox& editor)
      : lots_(lots), list_(list), editor_(editor) {
    editor_.set_visible(false);
  }

  // nullptr when the account has a row already (has none). The new row of an account whose row was ticked
  // when it went says so in its Result, and is not ticked by itself.
  Row* add(std::int32_t account, std::string_view amount);
  static bool came_back(const Row& row) { return row.reads(Column::result_text, came_back_text); }
  // What was distributed or typed, in lots; nothing where the cell is empty.
  static std::optional<double> share_of(const Row& row);
  static std::string result_of(const Row& row) { return row.text(Column::result_text); }
  Row* find(std::int32_t account) const { return list_.find(client_key(account)); }
  std::vector<std::int32_t> accounts() const;
  void update_result(RowKey key, std::string_view text);
  void update_amount(RowKey key, double amount);
  void remove(std::int32_t account);
  void remove_if(const std::function<bool(const Row&)>& gone);
  // The operator ticked or unticked a row: what it said of an earlier tick is settled.
  void ticked(Row& row);
  // Ticking all leaves a row out, for a reason that its Result says. Counted until the operator ticks again.
  void leave_out(Row& row, std::string_view reason);
  void forget_left_out() { left_out_.clear(); }
  // "3 left out (No Balance)"; empty when none is.
  std::string left_out_text() const;
  // No row was ticked when it went.
  void forget_ticks() { ticked_when_gone_.clear(); }
  ShareFault fault_of(const Row& row) const;
  Shares shares() const;

  // Committing writes the trimmed text. False when the cell can't be edited or the row has gone.
  bool open_editor(Row& row, std::size_t column);
  bool commit_editor();
  void cancel_editor() { editor_.set_visible(false); }
  // Left edge of a column in percent of the list's width, where the editor stands.
  double left_edge(std::size_t column) const;
  void move_editor(RowKey row, std::size_t column);
  RowKey editor_row() const { return editor_row_; }
  std::size_t editor_column() const { return editor_column_; }

 private:
  // Or had been before the connection was lost last time, and nobody has settled that since.
  static bool was_ticked(const Row& row) { return row.checked() || came_back(row); }

  static constexpr std::string_view came_back_text = "Was ticked before it was disconnected";

  const LotLimits& lots_;
  RowList& list_;
  TextBox& editor_;
  RowKey editor_row_;
  std::size_t editor_column_ = 0;
  std::set<std::int32_t> ticked_when_gone_;
  std::map<std::string, int, std::less<>> left_out_;  // by reason
};

}  // namespace tutti
