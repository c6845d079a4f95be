#pragma once

#include <QHeaderView>
#include <cstddef>
#include <string>
#include <vector>

namespace tutti {

class RowDelegate;
class RowListModel;

// Column headers of a list, and with them the widths of its columns.
//
// Widths follow the list's percentages until the operator drags a column. A click sorts by the column:
// upwards, downwards, then the list's own order again. Headers stand like their column, the one that the list
// is sorted by has an arrow for as long as it is, and a line below them marks the list that has the keyboard.
class ListHeader final : public QHeaderView {
 public:
  // Keeps references to all three; the columns share the width of `viewport`.
  ListHeader(RowListModel& model, RowDelegate& delegate, const QWidget& viewport);
  // To be called once the view has its model: from now on clicks sort, and what the operator drags stays.
  void follow_operator();
  // After every reset of the model: other columns may have come.
  void follow_model();
  // After every change of the viewport's width.
  void follow_width();

  // A text for each column that it always has room for, for lists whose numbers must never be cut; where the
  // view is too narrow for all of them, it scrolls.
  void keep_readable(std::vector<std::string> texts);
  // Columns that are hidden while the view is too narrow for what all have to have room for.
  void set_first_to_go(std::vector<std::size_t> columns);
  // Columns come and go with the list's contents. All are of numbers, those beyond keep_readable have room
  // for this text, and their widths and order are not kept over a restart.
  void set_columns_vary(std::string text);
  // Whether a click sorts; not in lists whose rows belong to the row above them.
  void set_sortable(bool sortable);

  // Whether the operator has set widths of his own, and back to the percentages.
  bool widths_dragged() const { return dragged_; }
  void follow_percentages();
  // Widths and order of columns, to be kept over a restart.
  QByteArray save_columns() const;
  bool restore_columns(const QByteArray& saved);

  // Upwards or downwards, beside a header's text, on the side where there is room.
  static void paint_arrow(QPainter& painter, const QRect& header, const QString& text, bool is_number,
                          Qt::SortOrder order);

 protected:
  void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override;
  void paintEvent(QPaintEvent* event) override;
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;

 private:
  void sort_by(int column);
  // Widths by the percentages, of the columns from one on.
  void spread(int from = 0);
  int least_width(std::size_t column) const;
  void drop_columns();

  RowListModel& model_;
  RowDelegate& delegate_;
  const QWidget& viewport_;
  std::vector<std::string> readable_;
  std::string further_readable_;  // of the columns behind those
  std::vector<std::size_t> first_to_go_;
  int known_;  // columns of the model, when it was reset last
  bool dragged_ = false;
  bool spreading_ = false;
  bool sortable_ = true;
  bool columns_vary_ = false;
};

}  // namespace tutti
