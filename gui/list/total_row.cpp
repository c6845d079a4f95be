#include "gui/list/total_row.h"

#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

constexpr int line_width = 1;
constexpr int row_end = line_width + theme::row_height;

}  // namespace

TotalRow::TotalRow(RowListView& list, Screen& screen)
    : list_(list), bar_(new QScrollBar{Qt::Horizontal, this}) {
  list_.rows().set_filter([](const Row& row) { return !row.key().empty(); });
  list_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  QScrollBar& scrolled = *list_.horizontalScrollBar();
  connect(&scrolled, &QScrollBar::rangeChanged, this, [this] { follow_range(); });
  connect(&scrolled, &QScrollBar::valueChanged, this, [this](int value) {
    bar_->setValue(value);
    update();
  });
  connect(bar_, &QScrollBar::valueChanged, &scrolled, &QScrollBar::setValue);
  const QHeaderView& header = *list_.horizontalHeader();
  connect(&header, &QHeaderView::sectionResized, this, [this] { update(); });
  connect(&header, &QHeaderView::sectionMoved, this, [this] { update(); });
  connect(&header, &QHeaderView::sectionCountChanged, this, [this] { update(); });
  connect(&header, &QHeaderView::geometriesChanged, this, [this] { update(); });
  follow_range();
  screen.on_refresh(*this, [this] { follow(); });
}

const Row* TotalRow::row() const {
  const RowList& rows = list_.rows().list();
  if (rows.empty()) return nullptr;
  const Row& last = rows.row(rows.size() - 1);
  return last.key().empty() ? &last : nullptr;
}

void TotalRow::follow() {
  const Row* total = row();
  const std::uint64_t stamp = total == nullptr ? 0 : total->stamp();
  if (total == shown_ && stamp == shown_stamp_) return;
  shown_ = total;
  shown_stamp_ = stamp;
  update(0, 0, width(), row_end);
}

void TotalRow::follow_range() {
  const QScrollBar& scrolled = *list_.horizontalScrollBar();
  bar_->setRange(scrolled.minimum(), scrolled.maximum());
  bar_->setPageStep(scrolled.pageStep());
  bar_->setSingleStep(scrolled.singleStep());
  bar_->setValue(scrolled.value());
  const bool needed = scrolled.maximum() > scrolled.minimum();
  bar_->setVisible(needed);
  setFixedHeight(row_end + (needed ? bar_->sizeHint().height() : 0));
  update();
}

void TotalRow::resizeEvent(QResizeEvent*) {
  bar_->setGeometry(0, row_end, width(), bar_->sizeHint().height());
}

QRect TotalRow::cell(int column) const {
  // The list's row headers stand for its first column where that is frozen.
  const int frozen = list_.viewport()->x();
  if (list_.isColumnHidden(column))
    return column == 0 ? QRect{0, line_width, frozen, theme::row_height} : QRect{};
  return {frozen + list_.columnViewportPosition(column), line_width, list_.columnWidth(column),
          theme::row_height};
}

void TotalRow::paintEvent(QPaintEvent*) {
  QPainter painter{this};
  painter.fillRect(rect(), QColor{theme::panel});
  painter.fillRect(0, 0, width(), line_width, QColor{theme::line});
  const Row* total = row();
  if (total == nullptr) return;
  const RowDelegate& delegate = list_.delegate();
  const RowDelegate::Shown shown{total, 0, false, list_.rows().ticks()};
  const int columns = std::min(list_.rows().columnCount(), static_cast<int>(total->columns()));
  painter.setClipRect(list_.viewport()->x(), 0, list_.viewport()->width(), row_end);
  for (int column = 0; column < columns; ++column) {
    if (!list_.isColumnHidden(column))
      delegate.paint_cell(painter, cell(column), shown, static_cast<std::size_t>(column));
  }
  delegate.finish(painter);
  painter.setClipping(false);
  if (list_.isColumnHidden(0)) delegate.paint_cell(painter, cell(0), shown, 0);
  delegate.finish(painter);
}

}  // namespace tutti
