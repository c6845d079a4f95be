#include "gui/list/list_header.h"

#include <QDataStream>
#include <QIODevice>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "gui/kit/theme.h"
#include "gui/list/column_spread.h"
#include "gui/list/row_delegate.h"
#include "gui/list/row_list_model.h"

namespace tutti {

namespace {

constexpr int arrow_width = 6;
constexpr int arrow_height = 4;
constexpr int gap = 4;  // between text and arrow
constexpr int focus_line = 2;

}  // namespace

ListHeader::ListHeader(RowListModel& model, RowDelegate& delegate, const QWidget& viewport)
    : QHeaderView(Qt::Horizontal),
      model_(model),
      delegate_(delegate),
      viewport_(viewport),
      known_(model.columnCount()) {
  setHighlightSections(false);
  setSectionsClickable(true);
  setSectionsMovable(true);
  setMinimumSectionSize(24);
  setFixedHeight(theme::row_height + 2);
}

void ListHeader::follow_operator() {
  connect(this, &QHeaderView::sectionClicked, this, [this](int column) { sort_by(column); });
  connect(this, &QHeaderView::sectionResized, this, [this] {
    if (!spreading_) dragged_ = true;
  });
}

void ListHeader::follow_model() {
  // Widths that the operator has set stay; new columns stand behind them.
  spread(dragged_ ? known_ : 0);
  known_ = model_.columnCount();
}

void ListHeader::follow_width() {
  drop_columns();
  if (!dragged_) spread();
}

void ListHeader::set_sortable(bool sortable) {
  sortable_ = sortable;
  setSectionsClickable(sortable);
}

void ListHeader::sort_by(int column) {
  const bool same = column == model_.sort_column();
  if (!same) {
    model_.sort(column, Qt::AscendingOrder);
  } else if (model_.sort_order() == Qt::AscendingOrder) {
    model_.sort(column, Qt::DescendingOrder);
  } else {
    model_.sort(-1, Qt::AscendingOrder);
  }
  viewport()->update();
}

void ListHeader::set_first_to_go(std::vector<std::size_t> columns) {
  first_to_go_ = std::move(columns);
  drop_columns();
  if (!dragged_) spread();
}

void ListHeader::drop_columns() {
  if (first_to_go_.empty()) return;
  int least = 0;
  for (std::size_t column = 0; column < model_.list().columns().size(); ++column)
    least += least_width(column);
  spreading_ = true;
  for (const std::size_t column : first_to_go_)
    setSectionHidden(static_cast<int>(column), least > viewport_.width());
  spreading_ = false;
}

// Of a column that has room for its header and for what it always has to show.
int ListHeader::least_width(std::size_t column) const {
  const int tick = column == 0 && model_.ticks() ? RowDelegate::tick_width : 0;
  const int header = delegate_.text_width(model_.list().columns()[column].header);
  const int text = delegate_.text_width(column < readable_.size() ? readable_[column] : further_readable_);
  return std::max(header, text) + tick;
}

void ListHeader::keep_readable(std::vector<std::string> texts) {
  readable_ = std::move(texts);
  if (!dragged_) spread();
}

void ListHeader::set_columns_vary(std::string text) {
  columns_vary_ = true;
  delegate_.set_all_numbers();
  further_readable_ = std::move(text);
  if (!dragged_) spread();
}

void ListHeader::follow_percentages() {
  dragged_ = false;
  spread();
}

void ListHeader::spread(int from) {
  std::vector<ColumnShare> shares;
  const std::vector<Column>& columns = model_.list().columns();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (isSectionHidden(static_cast<int>(i))) {
      shares.push_back({});
      continue;
    }
    shares.push_back({columns[i].width, least_width(i)});
  }
  const std::vector<int> widths = spread_columns(shares, viewport_.width());
  spreading_ = true;
  for (int column = from; column < static_cast<int>(widths.size()); ++column) {
    // A hidden one comes back as wide as it was.
    if (!isSectionHidden(column)) resizeSection(column, widths[static_cast<std::size_t>(column)]);
  }
  spreading_ = false;
}

QByteArray ListHeader::save_columns() const {
  QByteArray out;
  if (columns_vary_) return out;
  QDataStream stream{&out, QIODevice::WriteOnly};
  stream << dragged_ << saveState();
  return out;
}

bool ListHeader::restore_columns(const QByteArray& saved) {
  QDataStream stream{saved};
  bool dragged = false;
  QByteArray header;
  stream >> dragged >> header;
  spreading_ = true;
  const bool restored = stream.status() == QDataStream::Ok && restoreState(header);
  spreading_ = false;
  // The header draws an arrow of its own.
  setSortIndicatorShown(false);
  setSectionsClickable(sortable_);
  drop_columns();
  dragged_ = restored && dragged;
  if (!dragged_) spread();
  return restored;
}

void ListHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int section) const {
  QHeaderView::initStyleOptionForIndex(option, section);
  option->textAlignment = Qt::AlignVCenter | (delegate_.is_number(section) ? Qt::AlignRight : Qt::AlignLeft);
}

void ListHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
  // The style leaves its clipping behind.
  painter->save();
  QHeaderView::paintSection(painter, rect, section);
  painter->restore();
  if (section != model_.sort_column() || !model_.in_order()) return;
  paint_arrow(*painter, rect, model_.headerData(section, Qt::Horizontal, Qt::DisplayRole).toString(),
              delegate_.is_number(section), model_.sort_order());
}

void ListHeader::paintEvent(QPaintEvent* event) {
  QHeaderView::paintEvent(event);
  if (!parentWidget()->hasFocus()) return;
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
