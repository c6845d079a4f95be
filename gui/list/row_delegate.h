#pragma once

#include <QAbstractItemDelegate>
#include <QColor>
#include <QPixmap>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/row.h"
#include "gui/kit/theme.h"
#include "gui/list/glyph_text.h"

namespace tutti {

// A part of a cell's text; a colour that is not valid is the cell's own.
struct TextPiece {
  std::string text;
  QColor colour;
};

// Paints the cells of all row lists straight from their rows: background by selection, check box, text in its
// own colour, which a selection does not change.
class RowDelegate final : public QAbstractItemDelegate {
 public:
  // Width of the check box with the room around it.
  static constexpr int tick_width = 26;
  // Of the arrow of a side, with the room behind it.
  static constexpr int side_width = 13;

  RowDelegate();

  // Text colour of a cell, where it is another than the cell's own; one that is not valid leaves it.
  std::function<QColor(const Row& row, std::size_t column)> ink;
  // Lists whose boxes are not the rows' ticks: the column they stand in, in front of its text, and whether a
  // row's is checked; a row without one answers nothing.
  std::size_t box_column = 0;
  std::function<std::optional<bool>(const Row& row)> box;
  // What is shown while the mouse rests on a cell, unless it is empty.
  std::function<std::string(const Row& row, std::size_t column)> tip;
  // Pieces that are painted one behind the other in place of a cell's text, in columns that are not of
  // numbers; none leave the cell its own.
  std::function<std::vector<TextPiece>(const Row& row, std::size_t column)> pieces;
  // Columns of money, whose numbers are painted with "," between thousands, and in one colour while they are
  // below 0. On the screen only: whoever reads, copies or exports a cell gets its text.
  std::function<bool(std::size_t column)> money;
  // What an arrow in front of a cell's text shows.
  std::function<Side(const Row& row, std::size_t column)> side;
  // Whether a row is the head of those below it: bold, on a ground of its own.
  std::function<bool(const Row& row)> head;

  // Columns whose texts stand to the right.
  void set_numbers(std::vector<std::size_t> columns);
  void set_all_numbers() { all_numbers_ = true; }
  bool is_number(int column) const {
    if (all_numbers_) return true;
    return static_cast<std::size_t>(column) < numbers_.size() && numbers_[static_cast<std::size_t>(column)];
  }
  // What a cell reads on the screen.
  std::string shown_text(const Row& row, std::size_t column) const;
  // What is painted of a cell that is not made of pieces.
  TextPiece painted(const Row& row, std::size_t column) const;
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
  void paint_ground(QPainter& painter, const QRect& area, const Shown& shown) const;
  void paint_cell(QPainter& painter, const QRect& cell, const Shown& shown, std::size_t column) const;
  void finish(QPainter& painter) const {
    text_.flush(painter);
    bold_.flush(painter);
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  // Shows the row's tip, or the whole text of a cell that is too narrow for it.
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

 private:
  bool is_head(const Row* row) const { return row != nullptr && head && head(*row); }
  void paint_tick(QPainter& painter, const QRect& cell, bool checked) const;
  static QRect text_box(const QRect& cell, std::size_t column, bool ticks);

  std::vector<bool> numbers_;
  bool all_numbers_ = false;
  mutable GlyphText text_;
  mutable GlyphText bold_;
  mutable QPixmap ticks_[2];  // off and on, at the scale they were drawn last
};

}  // namespace tutti
