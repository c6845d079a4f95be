#pragma once

#include <QItemSelectionModel>
#include <QObject>
#include <cstdint>

#include "gui/list/row_list_model.h"

namespace tutti {

// What is selected, in step on both sides: what the operator selects in a view goes into the list, which is
// what the forms go by, and the list's own current row into the view.
class RowSelection final : public QObject {
 public:
  // Keeps references to both; the view's selection is of this model.
  RowSelection(RowListModel& model, QItemSelectionModel& chosen);

  // After every settle of the model. True when rows came or went since the last call.
  bool settle();
  // Brings the list's current row into the view, when it is another than before.
  void follow_list();

 private:
  void take();
  void drop_replaced();

  RowListModel& model_;
  QItemSelectionModel& chosen_;
  bool following_ = false;        // the view takes the list's selection over, not the other way round
  bool taken_ = true;             // false while the operator's selection waits for the rows to be in step
  const Row* current_ = nullptr;  // the list's current row when it was followed last; only compared
  std::uint64_t settled_structure_ = 0;  // of the list when the selection was looked through last
};

}  // namespace tutti
