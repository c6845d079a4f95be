#include "gui/list/list_text.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <algorithm>
#include <vector>

#include "core/csv.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

// Columns as they stand on the screen, from left to right.
std::vector<std::size_t> columns_of(const RowListView& view) {
  std::vector<std::size_t> out;
  const QHeaderView& header = *view.horizontalHeader();
  // Frozen, it stands in front of all others.
  if (view.verticalHeader()->isVisibleTo(&view)) out.push_back(0);
  for (int place = 0; place < header.count(); ++place) {
    const int column = header.logicalIndex(place);
    if (!header.isSectionHidden(column)) out.push_back(static_cast<std::size_t>(column));
  }
  return out;
}

}  // namespace

std::string list_csv(const RowListView& view) {
  const RowListModel& model = view.rows();
  const std::vector<std::size_t> columns = columns_of(view);
  const auto line = [&](const auto& text_of) {
    std::vector<std::string> fields;
    for (const std::size_t column : columns)
      fields.push_back(text_of(column));
    return csv_line(fields);
  };
  std::string out = line([&](std::size_t column) { return model.list().columns()[column].header; });
  for (int place = 0; place < model.rowCount(); ++place) {
    const Row* row = model.row_at(place);
    if (row == nullptr) continue;
    out += line([&](std::size_t column) { return view.delegate().shown_text(*row, column); });
  }
  return out;
}

void copy_selected(const RowListView& view) {
  const RowListModel& model = view.rows();
  const bool cells = view.selectionBehavior() == QAbstractItemView::SelectItems;
  const auto chosen = [&](int place, std::size_t column) {
    return !cells || view.selectionModel()->isSelected(view.model()->index(place, static_cast<int>(column)));
  };
  std::vector<std::size_t> columns = columns_of(view);
  std::erase_if(columns, [&](std::size_t column) {
    return cells &&
           !view.selectionModel()->columnIntersectsSelection(static_cast<int>(column), QModelIndex{});
  });
  QString out;
  for (int place = 0; place < model.rowCount(); ++place) {
    const Row* row = model.row_at(place);
    if (row == nullptr || !row->selected()) continue;
    for (const std::size_t column : columns) {
      if (column != columns.front()) out += QLatin1Char{'\t'};
      if (chosen(place, column)) out += QString::fromStdString(view.delegate().shown_text(*row, column));
    }
    out += QLatin1Char{'\n'};
  }
  if (!out.isEmpty()) QGuiApplication::clipboard()->setText(out);
}

}  // namespace tutti
