#pragma once

#include "core/check_box.h"
#include "core/label.h"
#include "core/row_list.h"
#include "orders/account_rows.h"

namespace tutti {

// Which rows of the entry order window are ticked, and the box that ticks all of them. Keeps in each row
// whether the operator wanted it. Works on the form's controls, whose clicks it answers.
class EntryTicks {
 public:
  // Keeps references to all.
  EntryTicks(AccountRows& rows, RowList& list, CheckBox& all, Label& all_label);
  EntryTicks(const EntryTicks&) = delete;
  EntryTicks& operator=(const EntryTicks&) = delete;

  // The operator's command: as a click on the box, but where it is checked while nobody is ticked, everybody
  // is ticked again.
  void tick_all();
  // Unticks all; the box stays as it is.
  void untick_all();
  // The same with the box unchecked.
  void reset();
  // The account whose order is edited.
  static void tick(Row& row);
  // What is ticked now is what the operator wants.
  void take_as_wanted();

 private:
  void follow_box();
  void follow_row(Row& row);

  AccountRows& rows_;
  RowList& list_;
  CheckBox& all_;
  Label& all_label_;
};

}  // namespace tutti
