#pragma once

#include <QTableView>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/clock.h"
#include "gui/list/row_delegate.h"
#include "gui/list/row_list_model.h"

namespace tutti {

class Screen;

// The one view of all row lists.
//
// Widths follow the list's percentages until the operator drags a column. A click on a header sorts by it:
// upwards, downwards, then the list's own order again. Space and a click on the box tick, Enter and a
// double-click activate the row, Ctrl+C copies the selected rows, the right button opens the view's actions.
// Home, End and, where nothing is selected, the first arrow select a row. While the list has the keyboard its
// header is marked. Selection and current row are written into the list, which is what the forms go by.
class RowListView final : public QTableView {
 public:
  // `numbers`: columns that stand to the right. `ticks`: rows carry a check box.
  RowListView(RowList& list, Screen& screen, std::vector<std::size_t> numbers, bool ticks = false,
              QWidget* parent = nullptr);

  RowListModel& rows() { return model_; }
  const RowListModel& rows() const { return model_; }
  Row* row_under(const QPoint& position) const;
  // Selects a row alone and brings it into view; false when it is not shown.
  bool go_to(const Row& row);
  // A text for each column that it always has room for, for lists whose numbers must never be cut; where the
  // view is too narrow for all of them, it scrolls.
  void keep_readable(std::vector<std::string> texts);
  // Columns that are hidden while the view is too narrow for what all have to have room for.
  void set_first_to_go(std::vector<std::size_t> columns);
  // Whether the operator has set widths of his own, and back to the percentages.
  bool widths_dragged() const { return dragged_; }
  void follow_percentages();
  // Widths and order of columns, to be kept over a restart.
  QByteArray save_columns() const;
  bool restore_columns(const QByteArray& saved);
  // Right-aligned when the list's column is of numbers.
  bool is_number(std::size_t column) const { return delegate_.is_number(static_cast<int>(column)); }
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
  // Whether a click on a header sorts; not in lists whose rows belong to the row above them.
  void set_sortable(bool sortable);
  // Columns come and go with the list's contents. All are of numbers, those beyond keep_readable have room
  // for this text, and their widths and order are not kept over a restart.
  void set_columns_vary(std::string text);
  // For lists whose rows move while the operator clicks on them: a press does nothing on a row that stands
  // there for less than the dead time.
  void guard_clicks(const Clock& clock) { click_guard_ = &clock; }

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

 private:
  // A cell by what is in it: rows move, and new ones are made where others were freed.
  struct Target {
    const Row* row = nullptr;  // only compared
    RowKey key;
    int column = -1;
    bool operator==(const Target&) const = default;
  };
  // A visible row: where it stands, and since when.
  struct Standing {
    RowKey key;
    int top = 0;  // within the viewport
    std::chrono::milliseconds since{0};
  };

  void settle();
  void drop_replaced();
  void refresh();
  void look_where_rows_stand();
  bool just_moved(int place);
  void header_clicked(int column);
  // Widths by the percentages, of the columns from one on.
  void spread(int from = 0);
  int least_width(std::size_t column) const;
  void drop_columns();
  // The operator's selection into the list, and the list's own into the view.
  void take_selection();
  void follow_selection();
  void tick_selected();
  // The row that a key selects whatever was selected before; -1 when the toolkit's way is right.
  int place_by_key(const QKeyEvent& event) const;
  Target target_at(const QModelIndex& index) const;
  bool on_tick_box(const QModelIndex& index, const QPoint& position) const;
  void run_activate(const QModelIndex& index);

  RowListModel model_;
  RowDelegate delegate_;
  Screen& screen_;
  std::vector<std::string> readable_;
  std::string further_readable_;  // of the columns behind those
  std::vector<std::size_t> first_to_go_;
  bool dragged_ = false;
  bool spreading_ = false;
  bool following_ = false;        // the view takes the list's selection over, not the other way round
  bool selection_taken_ = true;   // false while the operator's selection waits for the rows to be in step
  const Row* current_ = nullptr;  // the list's current row when it was followed last; only compared
  bool selecting_ = false;        // moves with the button down select
  Target pressed_;                // under the last press
  bool clicking_ = false;         // the button went down for a click
  bool sortable_ = true;
  bool columns_vary_ = false;
  const Clock* click_guard_ = nullptr;   // nullptr where rows stand is of no matter
  std::vector<Standing> standing_;       // from the top of the viewport on
  std::uint64_t frame_ = 0;              // of the screen, when the list was refreshed last
  std::uint64_t settled_structure_ = 0;  // of the list when the selection was looked through last
};

}  // namespace tutti
