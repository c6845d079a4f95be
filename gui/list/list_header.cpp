#include "gui/list/list_header.h"

#include <QPainter>
#include <algorithm>

#include "gui/kit/theme.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

constexpr int arrow_width = 6;
constexpr int arrow_height = 4;
constexpr int gap = 4;  // between text and arrow
constexpr int focus_line = 2;

}  // namespace

void ListHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int section) const {
  QHeaderView::initStyleOptionForIndex(option, section);
  option->textAlignment =
      Qt::AlignVCenter |
      (list_.is_number(static_cast<std::size_t>(section)) ? Qt::AlignRight : Qt::AlignLeft);
}

void ListHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
  // The style leaves its clipping behind.
  painter->save();
  QHeaderView::paintSection(painter, rect, section);
  painter->restore();
  if (section != list_.rows().sort_column() || !list_.rows().in_order()) return;
  paint_arrow(*painter, rect, list_.model()->headerData(section, Qt::Horizontal).toString(),
              list_.is_number(static_cast<std::size_t>(section)), list_.rows().sort_order());
}

void ListHeader::paintEvent(QPaintEvent* event) {
  QHeaderView::paintEvent(event);
  if (!list_.hasFocus()) return;
  QPainter painter{viewport()};
  painter.fillRect(0, viewport()->height() - focus_line, viewport()->width(), focus_line,
                   QColor{theme::accent});
}

void ListHeader::paint_arrow(QPainter& painter, const QRect& header, const QString& text, bool is_number,
                             Qt::SortOrder order) {
  const int text_width = painter.fontMetrics().horizontalAdvance(text);
  // Where the text leaves no room, the padding has just enough.
  const int left = is_number ? std::max(header.right() - theme::cell_padding - text_width - gap - arrow_width,
                                        header.left() + 1)
                             : std::min(header.left() + theme::cell_padding + text_width + gap,
                                        header.right() - arrow_width - 1);
  const int top = header.center().y() - arrow_height / 2 + 1;
  const bool up = order == Qt::AscendingOrder;
  const int base = up ? top + arrow_height : top;
  const QPoint corners[] = {
      {left, base}, {left + arrow_width, base}, {left + arrow_width / 2, up ? top : top + arrow_height}};
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor{theme::text});
  painter.drawConvexPolygon(corners, 3);
  painter.restore();
}

}  // namespace tutti
