#pragma once

#include <cstdint>
#include <string_view>

#include "core/MGeneral.h"
#include "core/row_list.h"
#include "core/text_box.h"

namespace tutti {

// Shares of the ticked rows that have one.
struct Shares {
  double sum = 0.0;       // lots
  int counted = 0;        // shares in the sum
  int zero_or_below = 0;  // of them
  int below_minimum = 0;  // of them, above 0 and below the smallest lot; 0 while that is not known
};

// The account list of an order window, keyed "C" and the account number, and the in-place editor of its
// shares. Works on the form's list and box.
class AccountRows {
 public:
  enum Column : std::size_t { account, amount, result_text };

  AccountRows(MGeneral& general, RowList& list, TextBox& editor)
      : general_(general), list_(list), editor_(editor) {
    editor_.set_visible(false);
  }

  // nullptr when the account has a row already (has none).
  Row* add(std::int32_t account, std::string_view amount);
  Row* find(std::int32_t account) const { return list_.find(client_key(account)); }
  void update_result(RowKey key, std::string_view text);
  void update_amount(RowKey key, double amount);
  void remove(std::int32_t account);
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
  MGeneral& general_;
  RowList& list_;
  TextBox& editor_;
  RowKey editor_row_;
  std::size_t editor_column_ = 0;
};

}  // namespace tutti
