#pragma once

#include <QAbstractItemDelegate>
#include <QColor>
#include <QPixmap>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "core/row.h"
#include "gui/glyph_text.h"

namespace tutti {

// Paints the cells of all row lists straight from their rows: background by selection, check box, text in its
// own colour, which a selection does not change.
class RowDelegate final : public QAbstractItemDelegate {
 public:
  // Width of the check box with the room around it.
  static constexpr int tick_width = 26;

  RowDelegate();

  // Text colour of a cell, where it is another than the cell's own; one that is not valid leaves it.
  std::function<QColor(const Row& row, std::size_t column)> ink;
  // What is shown while the mouse rests on a row, unless it is empty.
  std::function<std::string(const Row& row)> tip;

  // Columns whose texts stand to the right.
  void set_numbers(std::vector<std::size_t> columns);
  bool is_number(int column) const {
    return static_cast<std::size_t>(column) < numbers_.size() && numbers_[static_cast<std::size_t>(column)];
  }
  // Room that a text takes with its padding.
  int text_width(std::string_view text) const;

  // What is painted of a row.
  struct Shown {
    const Row* row;  // nullptr while rows are not settled: ground only
    int place;
    bool selected;
    bool ticks;
  };
  // The view's way: the ground of a row, its cells, and at the end of all rows what the cells have left to be
  // drawn together.
  static void paint_ground(QPainter& painter, const QRect& area, const Shown& shown);
  void paint_cell(QPainter& painter, const QRect& cell, const Shown& shown, std::size_t column) const;
  void finish(QPainter& painter) const { text_.flush(painter); }

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  // Shows the row's tip, or the whole text of a cell that is too narrow for it.
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

 private:
  void paint_tick(QPainter& painter, const QRect& cell, bool checked) const;
  static QRect text_box(const QRect& cell, std::size_t column, bool ticks);

  std::vector<bool> numbers_;
  mutable GlyphText text_;
  mutable QPixmap ticks_[2];  // off and on, at the scale they were drawn last
};

}  // namespace tutti
