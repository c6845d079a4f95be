#pragma once

#include <QTableView>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gui/list/list_header.h"
#include "gui/list/row_delegate.h"
#include "gui/list/row_list_model.h"
#include "gui/list/row_selection.h"
#include "gui/list/standing_rows.h"

namespace tutti {

class Screen;

// The one view of all row lists.
//
// Space and a click on the box tick, Enter and a double-click activate the row, Ctrl+C copies the selected
// rows, the right button opens the view's actions. Home, End and, where nothing is selected, the first arrow
// select a row. Widths and order are the ListHeader's part, what is selected the RowSelection's.
class RowListView final : public QTableView {
 public:
  // `numbers`: columns that stand to the right. `ticks`: rows carry a check box.
  RowListView(RowList& list, Screen& screen, std::vector<std::size_t> numbers, bool ticks = false,
              QWidget* parent = nullptr);

  // Headers, widths and sorting.
  ListHeader& columns() { return *columns_; }
  RowListModel& rows() { return model_; }
  const RowListModel& rows() const { return model_; }
  Row* row_under(const QPoint& position) const;
  // Selects a row alone and brings it into view; false when it is not shown.
  bool go_to(const Row& row);
  // Paints this list's cells wherever else they are shown.
  const RowDelegate& delegate() const { return delegate_; }

  // Text colours that the list itself does not know; see RowDelegate.
  void set_ink(std::function<QColor(const Row& row, std::size_t column)> ink) {
    delegate_.ink = std::move(ink);
  }
  // What is shown while the mouse rests on a cell, instead of what it has no room for.
  void set_tip(std::function<std::string(const Row& row, std::size_t column)> tip) {
    delegate_.tip = std::move(tip);
  }

  // Boxes that are not the rows' ticks; see RowDelegate.
  void set_boxes(std::size_t column, std::function<std::optional<bool>(const Row& row)> box) {
    delegate_.box_column = column;
    delegate_.box = std::move(box);
  }
  // Columns of money, and buys and sales; see RowDelegate.
  void set_money(std::function<bool(std::size_t column)> money) { delegate_.money = std::move(money); }
  void set_sides(std::function<Side(const Row& row, std::size_t column)> side) {
    delegate_.side = std::move(side);
  }
  // Texts in several colours, and rows that head those below them; see RowDelegate.
  void set_pieces(std::function<std::vector<TextPiece>(const Row& row, std::size_t column)> pieces) {
    delegate_.pieces = std::move(pieces);
  }
  void set_heads(std::function<bool(const Row& row)> head) { delegate_.head = std::move(head); }
  // Sorted by a column from the start; see RowListModel.
  void keep_sorted(int column) { model_.keep_sorted(column); }
  // For lists whose rows move while the operator clicks on them: a press does nothing on a row that stands
  // there for less than the dead time.
  void guard_clicks(const Clock& clock) { standing_.emplace(clock); }

  // Runs instead of the list's on_activate when set: for windows whose double-click depends on the column.
  std::function<void(Row& row, std::size_t column)> activate;
  // For windows where a single click does something: pressed and let go on the same cell, without a key held
  // down. A double-click then is two clicks.
  std::function<void(Row& row, std::size_t column)> clicked;
  // Runs on Space in lists without ticks, once for each press, when any row is selected.
  std::function<void(const std::vector<Row*>& rows)> spaced;

 protected:
  // Row by row: the toolkit's own way asks the style about every cell.
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  // A cell by what is in it: rows move, and new ones are made where others were freed.
  struct Target {
    const Row* row = nullptr;  // only compared
    RowKey key;
    int column = -1;
    bool operator==(const Target&) const = default;
  };

  void settle();
  void refresh();
  bool just_moved(int place);
  void tick_selected();
  // The row that a key selects whatever was selected before; -1 when the toolkit's way is right.
  int place_by_key(const QKeyEvent& event) const;
  Target target_at(const QModelIndex& index) const;
  bool on_tick_box(const QModelIndex& index, const QPoint& position) const;
  void run_activate(const QModelIndex& index);

  RowListModel model_;
  RowDelegate delegate_;
  ListHeader* columns_;  // the toolkit's
  Screen& screen_;
  std::optional<RowSelection> selection_;  // from when the view has its model
  std::optional<StandingRows> standing_;   // nothing where rows stand is of no matter
  std::uint64_t frame_ = 0;                // of the screen, when the list was refreshed last
  bool selecting_ = false;                 // moves with the button down select
  Target pressed_;                         // under the last press
  bool clicking_ = false;                  // the button went down for a click
};

}  // namespace tutti
