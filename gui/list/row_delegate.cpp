#include "gui/list/row_delegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionViewItem>
#include <QTextDocument>
#include <QToolTip>
#include <algorithm>

#include "gui/list/row_list_model.h"

namespace tutti {

namespace {

constexpr int box_size = 14;
constexpr int bar_width = 3;

QPixmap draw_box(bool checked, double scale) {
  QPixmap out{QSize{box_size, box_size} * scale};
  out.setDevicePixelRatio(scale);
  out.fill(Qt::transparent);
  QPainter painter{&out};
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen{QColor{checked ? theme::accent : 0xff4a5765}, 1.0});
  painter.setBrush(QColor{checked ? theme::primary : theme::base});
  painter.drawRoundedRect(QRectF{0.5, 0.5, box_size - 1.0, box_size - 1.0}, 3.0, 3.0);
  if (checked) {
    QPainterPath mark;
    mark.moveTo(3.5, 7.2);
    mark.lineTo(6.0, 9.8);
    mark.lineTo(10.5, 4.4);
    painter.setPen(QPen{QColor{Qt::white}, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin});
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(mark);
  }
  return out;
}

// Up for a buy, down for a sale: they differ in shape, not in hue alone.
void draw_side(QPainter& painter, const QRectF& room, Side side) {
  const double left = room.left();
  const double middle = room.center().y() + 0.5;
  const double up = side == Side::buy ? -4.0 : 4.0;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme::side_colour(side));
  painter.drawPolygon(QPolygonF{{{left, middle - up}, {left + 8.0, middle - up}, {left + 4.0, middle + up}}});
  painter.restore();
}

// "-1234567.50" as "-1,234,567.50".
std::string grouped(std::string text) {
  std::size_t at = std::min(text.find('.'), text.size());
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  while (at > first + 3)
    text.insert(at -= 3, 1, ',');
  return text;
}

const RowListModel& model_of(const QModelIndex& index) {
  return static_cast<const RowListModel&>(*index.model());
}

}  // namespace

RowDelegate::RowDelegate() : text_(theme::font()), bold_(theme::bold_font()) {}

void RowDelegate::set_numbers(std::vector<std::size_t> columns) {
  numbers_.clear();
  for (const std::size_t column : columns) {
    if (column >= numbers_.size()) numbers_.resize(column + 1);
    numbers_[column] = true;
  }
}

std::string RowDelegate::shown_text(const Row& row, std::size_t column) const {
  std::string out;
  if (pieces) {
    for (const TextPiece& piece : pieces(row, column))
      out += piece.text;
  }
  return out.empty() ? row.text(column) : out;
}

TextPiece RowDelegate::painted(const Row& row, std::size_t column) const {
  const Cell& cell = row.cell(column);
  const bool is_money = money && cell.is_number() && money(column);
  std::string text = is_money ? grouped(cell.text()) : cell.text();
  if (is_money && text.starts_with('-')) return {std::move(text), QColor{theme::loss}};
  const QColor own = ink ? ink(row, column) : QColor{};
  return {std::move(text), own.isValid() ? own : theme::colour(cell.ink())};
}

int RowDelegate::text_width(std::string_view text) const {
  return static_cast<int>(text_.width(text)) + 1 + 2 * theme::cell_padding;
}

QRect RowDelegate::text_box(const QRect& cell, std::size_t column, bool ticks) {
  const int left = column == 0 && ticks ? tick_width : theme::cell_padding;
  return cell.adjusted(left, 0, -theme::cell_padding, 0);
}

void RowDelegate::paint_tick(QPainter& painter, const QRect& cell, bool checked) const {
  QPixmap& box = ticks_[checked ? 1 : 0];
  const double scale = painter.device()->devicePixelRatioF();
  if (box.isNull() || box.devicePixelRatio() != scale) box = draw_box(checked, scale);
  painter.drawPixmap(cell.left() + theme::cell_padding, cell.top() + (cell.height() - box_size) / 2, box);
}

void RowDelegate::paint_ground(QPainter& painter, const QRect& area, const Shown& shown) const {
  painter.fillRect(area, QColor{shown.selected         ? theme::selection
                                : is_head(shown.row)   ? theme::raised
                                : shown.place % 2 == 0 ? theme::base
                                                       : theme::alternate});
  if (!shown.selected) return;
  painter.fillRect(area.left(), area.top(), area.width(), 1, QColor{theme::selection_line});
  painter.fillRect(area.left(), area.bottom(), area.width(), 1, QColor{theme::selection_line});
}

void RowDelegate::paint_cell(QPainter& painter, const QRect& cell, const Shown& shown,
                             std::size_t column) const {
  if (column == 0 && shown.selected)
    painter.fillRect(cell.left(), cell.top(), bar_width, cell.height(), QColor{theme::accent});
  if (shown.row == nullptr) return;
  if (column == 0 && shown.ticks) paint_tick(painter, cell, shown.row->checked());
  if (box && column == box_column) {
    if (const auto checked = box(*shown.row)) paint_tick(painter, cell, *checked);
  }
  const std::vector<TextPiece> parts = pieces ? pieces(*shown.row, column) : std::vector<TextPiece>{};
  const TextPiece whole = painted(*shown.row, column);
  GlyphText& text = is_head(shown.row) ? bold_ : text_;
  QRectF room = text_box(cell, column, shown.ticks);
  if (const Side of = side ? side(*shown.row, column) : Side::none; of != Side::none) {
    draw_side(painter, room, of);
    room.setLeft(room.left() + side_width);
  }
  if (parts.empty() && !whole.text.empty())
    text.draw(painter, room, whole.text, is_number(static_cast<int>(column)), whole.colour);
  for (const TextPiece& part : parts) {
    if (room.width() <= 0.0) break;
    text.draw(painter, room, part.text, false, part.colour.isValid() ? part.colour : whole.colour);
    room.setLeft(room.left() + text.width(part.text));
  }
}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
  const RowListModel& model = model_of(index);
  const Shown shown{model.row_at(index.row()), index.row(), option.state.testFlag(QStyle::State_Selected),
                    model.ticks()};
  paint_ground(*painter, option.rect, shown);
  paint_cell(*painter, option.rect, shown, static_cast<std::size_t>(index.column()));
  finish(*painter);
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
  const Row* row = model_of(index).row_at(index.row());
  if (row == nullptr) return {0, theme::row_height};
  const int tick = index.column() == 0 && model_of(index).ticks() ? tick_width - theme::cell_padding : 0;
  return {text_width(shown_text(*row, static_cast<std::size_t>(index.column()))) + tick, theme::row_height};
}

bool RowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem&,
                            const QModelIndex& index) {
  if (event->type() != QEvent::ToolTip || !index.isValid()) return false;
  const Row* row = model_of(index).row_at(index.row());
  const auto column = static_cast<std::size_t>(index.column());
  std::string text = row != nullptr && tip ? tip(*row, column) : std::string{};
  if (row != nullptr && text.empty()) {
    text = shown_text(*row, column);
    if (text == row->text(column)) text = painted(*row, column).text;
    if (text_.width(text) <= text_box(view->visualRect(index), column, model_of(index).ticks()).width())
      text.clear();
  }
  QToolTip::showText(event->globalPos(),
                     text.empty() ? QString{} : Qt::convertFromPlainText(QString::fromStdString(text)), view);
  return true;
}

}  // namespace tutti
