#include "gui/list/row_selection.h"

#include <tsl/robin_set.h>
#include <cstddef>
#include <set>
#include <vector>

#include "gui/list/selection_builder.h"

namespace tutti {

RowSelection::RowSelection(RowListModel& model, QItemSelectionModel& chosen)
    : model_(model), chosen_(chosen) {
  connect(&chosen, &QItemSelectionModel::selectionChanged, this, [this] { take(); });
  connect(&chosen, &QItemSelectionModel::currentRowChanged, this, [this] { take(); });
}

bool RowSelection::settle() {
  const bool changed = settled_structure_ != model_.list().structure_stamp();
  if (changed) {
    settled_structure_ = model_.list().structure_stamp();
    drop_replaced();
  }
  if (!taken_) take();
  return changed;
}

// A new row may stand where one was freed, in the list and in memory, which is no change to the model; but
// nobody has selected it.
void RowSelection::drop_replaced() {
  std::set<int> replaced;
  for (const QItemSelectionRange& range : chosen_.selection()) {
    for (int place = range.top(); place <= range.bottom(); ++place) {
      const Row* row = model_.row_at(place);
      if (row != nullptr && !row->selected()) replaced.insert(place);
    }
  }
  if (replaced.empty()) return;
  SelectionBuilder dropped{model_};
  for (const int place : replaced)
    dropped.add(place, 0, model_.columnCount() - 1);
  following_ = true;
  chosen_.select(dropped.selection(), QItemSelectionModel::Deselect);
  following_ = false;
}

void RowSelection::take() {
  if (following_) return;
  // Rows come and go: what the selection stands on is known when all have.
  taken_ = model_.settled();
  if (!taken_) return;
  RowList& list = model_.list();
  std::vector<bool> places(static_cast<std::size_t>(model_.rowCount()));
  for (const QItemSelectionRange& range : chosen_.selection()) {
    for (int place = range.top(); place <= range.bottom(); ++place)
      places[static_cast<std::size_t>(place)] = true;
  }
  // Rows that a filter hides are never selected: nobody acts on what he does not see.
  std::vector<Row*> selected;
  for (std::size_t place = 0; place < places.size(); ++place) {
    if (places[place]) selected.push_back(model_.row_at(static_cast<int>(place)));
  }
  Row* current = model_.row_at(chosen_.currentIndex().row());
  if (current != nullptr && !places[static_cast<std::size_t>(chosen_.currentIndex().row())])
    current = nullptr;
  if (selected.size() == 1 && !(selected.front() == list.current() && selected.front()->selected())) {
    list.select(*selected.front());
  }
  const tsl::robin_set<const Row*> chosen_rows(selected.begin(), selected.end());
  for (Row& row : list) {
    const bool wanted = chosen_rows.contains(&row);
    if (row.selected() != wanted) row.set_selected(wanted);
  }
  list.set_current(current);
  current_ = current;
}

void RowSelection::follow_list() {
  if (model_.list().current() == current_) return;
  current_ = model_.list().current();
  const int place = current_ == nullptr ? -1 : model_.place_of(current_);
  // What a filter hides is not selected, whoever wants it to be.
  if (current_ != nullptr && place < 0) return take();
  if (place < 0) return;
  following_ = true;
  chosen_.setCurrentIndex(model_.index(place, 0),
                          QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  following_ = false;
}

}  // namespace tutti
