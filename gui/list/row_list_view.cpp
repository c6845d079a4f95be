#include "gui/list/row_list_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/list/list_text.h"

namespace tutti {

RowListView::RowListView(RowList& list, Screen& screen, std::vector<std::size_t> numbers, bool ticks,
                         QWidget* parent)
    : QTableView(parent),
      model_(list, ticks),
      columns_(new ListHeader{model_, delegate_, *viewport()}),
      screen_(screen) {
  delegate_.set_numbers(std::move(numbers));
  setHorizontalHeader(columns_);
  setItemDelegate(&delegate_);
  setFrameShape(QFrame::NoFrame);
  setShowGrid(false);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setHorizontalScrollMode(ScrollPerPixel);
  setVerticalScrollMode(ScrollPerPixel);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  setTabKeyNavigation(false);
  setContextMenuPolicy(Qt::ActionsContextMenu);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setMinimumSectionSize(theme::row_height);
  verticalHeader()->setDefaultSectionSize(theme::row_height);
  // After the headers, which else measure every row and column in between.
  setModel(&model_);

  columns_->follow_operator();
  connect(&model_, &QAbstractItemModel::modelReset, this, [this] {
    selecting_ = false;
    columns_->follow_model();
  });
  selection_.emplace(model_, *selectionModel());
  screen_.on_settle(*this, [this] { settle(); });
  screen_.on_refresh(*this, [this] { refresh(); });
}

Row* RowListView::row_under(const QPoint& position) const {
  const QModelIndex index = indexAt(position);
  return index.isValid() ? model_.row_at(index.row()) : nullptr;
}

void RowListView::settle() {
  // Where the current row goes another becomes current, which is no reason to bring that into sight.
  setAutoScroll(false);
  model_.settle();
  setAutoScroll(true);
  // Row headers read their rows, which may be others.
  if (selection_->settle()) verticalHeader()->viewport()->update();
}

void RowListView::refresh() {
  settle();
  // What is brought up again is new to the operator.
  if (standing_ && (!isVisible() || screen_.frame() > frame_ + 1)) standing_->forget();
  frame_ = screen_.frame();
  if (!isVisible()) return;
  // The toolkit would leave it for later, and have the list painted once more then.
  executeDelayedItemsLayout();
  const int first = rowAt(0);
  const int below = rowAt(viewport()->height() - 1);
  const int last = below < 0 ? model_.rowCount() - 1 : below;
  const bool was_in_order = model_.in_order();
  model_.check_order(first, last);
  if (model_.in_order() != was_in_order) horizontalHeader()->viewport()->update();
  model_.refresh(first, last);
  selection_->follow_list();
  if (standing_) standing_->look(*this, model_);
}

bool RowListView::just_moved(int place) {
  if (!standing_) return false;
  if (screen_.frame() > frame_) standing_->forget();
  standing_->look(*this, model_);
  return place >= 0 && standing_->just_came(rowViewportPosition(place));
}

bool RowListView::go_to(const Row& row) {
  settle();
  const int place = model_.place_of(&row);
  if (place < 0) return false;
  const QModelIndex index = model_.index(place, 0);
  const bool in_sight = viewport()->rect().contains(visualRect(index));
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  // Amid its neighbours, and still in sight should the list get smaller as it is brought up.
  if (!in_sight) scrollTo(index, PositionAtCenter);
  return true;
}

void RowListView::paintEvent(QPaintEvent* event) {
  struct Span {
    std::size_t column;
    int left;
    int width;
  };
  const QRect area = event->rect();
  std::vector<Span> spans;
  int end = 0;  // of the last column
  for (int column = 0; column < model_.columnCount(); ++column) {
    if (isColumnHidden(column)) continue;
    const int left = columnViewportPosition(column);
    const int width = columnWidth(column);
    end = std::max(end, left + width);
    if (left <= area.right() && left + width > area.left())
      spans.push_back({static_cast<std::size_t>(column), left, width});
  }

  const bool rows = selectionBehavior() == SelectRows;
  const auto selected = [this](int place, int column) {
    return selectionModel()->isSelected(model_.index(place, column));
  };
  QPainter painter{viewport()};
  int place = rowAt(area.top());
  int top = area.top();
  for (; place >= 0 && place < model_.rowCount(); ++place) {
    const QRect row{0, rowViewportPosition(place), end, rowHeight(place)};
    if (row.top() > area.bottom()) break;
    top = row.bottom() + 1;
    if (!event->region().intersects(row)) continue;
    const RowDelegate::Shown shown{model_.row_at(place), place, rows && selected(place, 0), model_.ticks()};
    delegate_.paint_ground(painter, row, shown);
    for (const Span& span : spans) {
      const QRect cell{span.left, row.top(), span.width, row.height()};
      if (!rows && selected(place, static_cast<int>(span.column)))
        painter.fillRect(cell, QColor{theme::selected_cell});
      delegate_.paint_cell(painter, cell, shown, span.column);
    }
  }
  const QRect right{QPoint{end, area.top()}, area.bottomRight()};
  const QRect below{QPoint{area.left(), top}, area.bottomRight()};
  if (right.isValid()) painter.fillRect(right, QColor{theme::base});
  if (below.isValid()) painter.fillRect(below, QColor{theme::base});
  delegate_.finish(painter);
}

void RowListView::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  columns_->follow_width();
}

RowListView::Target RowListView::target_at(const QModelIndex& index) const {
  const Row* row = index.isValid() ? model_.row_at(index.row()) : nullptr;
  return row == nullptr ? Target{} : Target{row, row->key(), index.column()};
}

bool RowListView::on_tick_box(const QModelIndex& index, const QPoint& position) const {
  return model_.ticks() && index.isValid() && index.column() == 0 &&
         position.x() < visualRect(index).left() + RowDelegate::tick_width;
}

void RowListView::mousePressEvent(QMouseEvent* event) {
  screen_.settle();
  const QModelIndex index = indexAt(event->position().toPoint());
  const bool ticking = event->button() == Qt::LeftButton && on_tick_box(index, event->position().toPoint());
  selecting_ = false;
  clicking_ = false;
  if (just_moved(index.row())) return;
  pressed_ = target_at(index);
  clicking_ = clicked && event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier;
  if (ticking) {
    if (Row* row = model_.row_at(index.row())) model_.list().tick(*row, !row->checked());
    setFocus(Qt::MouseFocusReason);
    screen_.acted();
    return;
  }
  selecting_ = true;
  QTableView::mousePressEvent(event);
  screen_.acted();
}

// A press that ticks, or does nothing, selects nothing, however the mouse moves before it is let go; nor does
// one whose rows were all replaced since.
void RowListView::mouseMoveEvent(QMouseEvent* event) {
  if (selecting_) QTableView::mouseMoveEvent(event);
}

void RowListView::mouseReleaseEvent(QMouseEvent* event) {
  // The toolkit's part ends first: what a click does may open a box.
  QTableView::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton || !std::exchange(clicking_, false)) return;
  if (event->modifiers() != Qt::NoModifier) return;
  screen_.settle();
  const QModelIndex index = indexAt(event->position().toPoint());
  // Rows may have moved since the button went down.
  const Target target = target_at(index);
  if (target.row == nullptr || target != pressed_) return;
  clicked(*model_.row_at(index.row()), static_cast<std::size_t>(index.column()));
  screen_.acted();
}

void RowListView::mouseDoubleClickEvent(QMouseEvent* event) {
  screen_.settle();
  const QModelIndex index = indexAt(event->position().toPoint());
  // The second of two quick clicks on a box is a click like the first.
  if (clicked || on_tick_box(index, event->position().toPoint())) return mousePressEvent(event);
  // Rows may have moved since the first click: what counts is what was clicked twice.
  if (event->button() != Qt::LeftButton || !index.isValid() || target_at(index) != pressed_) return;
  run_activate(index);
}

// The toolkit brings a cell into sight a moment after it was pressed. Rows alone are chosen here: a list that
// has become narrower meanwhile must not move its first columns away.
void RowListView::timerEvent(QTimerEvent* event) {
  const int before = horizontalScrollBar()->value();
  QTableView::timerEvent(event);
  horizontalScrollBar()->setValue(before);
}

void RowListView::run_activate(const QModelIndex& index) {
  Row* row = model_.row_at(index.row());
  if (row == nullptr) return;
  if (activate) {
    activate(*row, static_cast<std::size_t>(index.column()));
  } else {
    model_.list().activate(*row);
  }
  screen_.acted();
}

// All that are selected get what the first of them does not have.
void RowListView::tick_selected() {
  const std::vector<Row*> rows = model_.list().selected();
  if (rows.empty()) return;
  const bool checked = !rows.front()->checked();
  for (Row* row : rows)
    model_.list().tick(*row, checked);
  screen_.acted();
}

void RowListView::focusInEvent(QFocusEvent* event) {
  QTableView::focusInEvent(event);
  horizontalHeader()->viewport()->update();
}

void RowListView::focusOutEvent(QFocusEvent* event) {
  QTableView::focusOutEvent(event);
  horizontalHeader()->viewport()->update();
}

// In lists of rows the toolkit's Home and End go to the first and last column.
QModelIndex RowListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const bool to_end = action == MoveEnd;
  if (selectionBehavior() != SelectRows || (action != MoveHome && !to_end))
    return QTableView::moveCursor(action, modifiers);
  return model_.index(to_end ? model_.rowCount() - 1 : 0, std::max(currentIndex().column(), 0));
}

int RowListView::place_by_key(const QKeyEvent& event) const {
  if (selectionBehavior() != SelectRows || event.modifiers() != Qt::NoModifier || model_.rowCount() == 0)
    return -1;
  const int last = model_.rowCount() - 1;
  switch (event.key()) {
    case Qt::Key_Home:
      return 0;
    case Qt::Key_End:
      return last;
    default:
      break;
  }
  // With the keyboard the toolkit makes a row current that nobody has selected, and goes on from there.
  if (model_.list().current() != nullptr) return -1;
  const int bottom = rowAt(viewport()->height() - 1);
  switch (event.key()) {
    case Qt::Key_Down:
    case Qt::Key_PageDown:
      return std::min(rowAt(0) + (rowViewportPosition(rowAt(0)) < 0 ? 1 : 0), last);
    case Qt::Key_Up:
    case Qt::Key_PageUp:
      return bottom < 0 ? last : bottom;
    default:
      return -1;
  }
}

void RowListView::keyPressEvent(QKeyEvent* event) {
  screen_.settle();
  if (event->matches(QKeySequence::Copy)) return copy_selected(*this);
  const bool acts =
      event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  // A key that is held down acts once.
  if (acts && event->isAutoRepeat()) return;
  if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier && model_.ticks()) {
    return tick_selected();
  }
  if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier && spaced) {
    const std::vector<Row*> rows = model_.list().selected();
    if (!rows.empty()) spaced(rows);
    return screen_.acted();
  }
  if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
      event->modifiers() == Qt::NoModifier && currentIndex().isValid()) {
    // When the current row goes, the toolkit moves on to a neighbour that nobody has selected.
    const Row* row = model_.row_at(currentIndex().row());
    if (row != nullptr && row == model_.list().current()) run_activate(currentIndex());
    return;
  }
  if (const int place = place_by_key(*event); place >= 0) {
    const QModelIndex index = model_.index(place, std::max(currentIndex().column(), 0));
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(index);
    return screen_.acted();
  }
  QTableView::keyPressEvent(event);
}

}  // namespace tutti
