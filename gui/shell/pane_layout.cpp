#include "gui/shell/pane_layout.h"

#include <QScreen>
#include <algorithm>
#include <utility>

#include "gui/kit/theme.h"

namespace tutti {

namespace {

using Area = Pane::Area;

constexpr QSize standard_size{1600, 900};
constexpr QSize frame{8, 40};       // at most what the window manager puts around a window
constexpr int room_for_two = 2200;  // width from which positions and journal stand side by side
// Height from which the market watch stands above the order windows, with six rows at least; below, it stands
// beside the accounts list, as narrow as it can be with its time.
constexpr int room_for_column = 860;
constexpr int watch_height = 36 + 7 * theme::row_height + 6;
constexpr int watch_width = 334;

}  // namespace

PaneLayout::PaneLayout(QMainWindow& window, Panes& panes, std::filesystem::path file)
    : window_(window), panes_(panes), layout_(std::move(file)) {}

void PaneLayout::reset() {
  for (const Pane& pane : panes_.all()) {
    if (pane.dock == nullptr) continue;
    // One that floats can't be docked once it is out of the window.
    pane.dock->setFloating(false);
    window_.removeDockWidget(pane.dock);
  }
  arrange();
  share_room();
  for (const Pane& pane : panes_.all()) {
    if (pane.list != nullptr) pane.list->columns().follow_percentages();
  }
}

void PaneLayout::arrange() {
  // Kept with the layout, as the panes are.
  window_.setCorner(Qt::TopLeftCorner, Qt::LeftDockWidgetArea);
  window_.setCorner(Qt::TopRightCorner, Qt::RightDockWidgetArea);
  window_.setCorner(Qt::BottomLeftCorner, Qt::BottomDockWidgetArea);
  window_.setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  QDockWidget *watch = panes_.at(Area::watch).dock, *orders = panes_.at(Area::orders).dock,
              *bottom = panes_.at(Area::bottom).dock, *further = panes_.at(Area::further).dock;
  // Split before they are tabbed: the other way round a tab of its own comes off.
  const bool tall = window_.height() >= room_for_column;
  window_.addDockWidget(tall ? Qt::RightDockWidgetArea : Qt::LeftDockWidgetArea, watch);
  if (tall) {
    window_.splitDockWidget(watch, orders, Qt::Vertical);
  } else {
    window_.addDockWidget(Qt::RightDockWidgetArea, orders);
  }
  window_.addDockWidget(Qt::BottomDockWidgetArea, bottom);
  // Beside them only a large screen has room for the profit, the last column of the positions.
  const bool wide = window_.width() >= room_for_two;
  QDockWidget* before_further = panes_.named(panes_.at(Area::further).beside).dock;
  if (wide) window_.splitDockWidget(before_further, further, Qt::Horizontal);
  for (const Pane& pane : panes_.all())
    if (pane.area == Area::tab) window_.tabifyDockWidget(panes_.named(pane.beside).dock, pane.dock);
  if (!wide) window_.tabifyDockWidget(before_further, further);
  for (const Pane& pane : panes_.all())
    if (pane.dock != nullptr) pane.dock->setVisible(!pane.hidden_at_first);
  // Once more when the tabs stand: laying them out without the hidden one brings the last of them to the
  // front.
  for (QDockWidget* front : {orders, bottom}) {
    front->raise();
    QMetaObject::invokeMethod(front, "raise", Qt::QueuedConnection);
  }
}

void PaneLayout::share_room() {
  QDockWidget *watch = panes_.at(Area::watch).dock, *orders = panes_.at(Area::orders).dock,
              *bottom = panes_.at(Area::bottom).dock, *further = panes_.at(Area::further).dock;
  const int width = window_.width();
  const int height = window_.height();
  window_.resizeDocks({orders}, {std::clamp(width * 28 / 100, 340, 500)}, Qt::Horizontal);
  if (height >= room_for_column) {
    window_.resizeDocks({watch}, {std::max(height / 5, watch_height)}, Qt::Vertical);
  } else {
    window_.resizeDocks({watch}, {watch_width}, Qt::Horizontal);
  }
  window_.resizeDocks({bottom}, {std::clamp(height / 3, 220, 320)}, Qt::Vertical);
  if (width >= room_for_two)
    window_.resizeDocks({bottom, further}, {width * 7 / 10, width * 3 / 10}, Qt::Horizontal);
}

QSize PaneLayout::room() const {
  return window_.screen()->availableGeometry().size() - frame;
}

bool PaneLayout::has_room(const QSize& size) const {
  return size == size.boundedTo(room());
}

// The screen may be another one than it was, and one with no room for the window is filled. What the toolkit
// restores for a window that fills its screen it keeps to restore it once more, which does not bear a reset;
// so the window fills the screen last.
void PaneLayout::restore() {
  const bool placed = window_.restoreGeometry(layout_.value(QStringLiteral("geometry")));
  Qt::WindowStates state = window_.windowState();
  const QSize wanted = placed ? window_.size() : standard_size;
  if (!state && !has_room(wanted)) state = Qt::WindowMaximized;
  window_.setWindowState(Qt::WindowNoState);
  if (state || !placed) window_.resize(state ? room() : wanted);
  restore_panes();
  window_.setWindowState(state);
}

void PaneLayout::restore_panes() {
  if (!window_.restoreState(layout_.value(QStringLiteral("panes")), Panes::edition()) ||
      !has_room(window_.minimumSizeHint())) {
    return reset();
  }
  for (const Pane& pane : panes_.all()) {
    const QByteArray columns = layout_.value(QStringLiteral("columns.") + pane.name);
    if (pane.list != nullptr && !columns.isEmpty()) pane.list->columns().restore_columns(columns);
  }
}

tl::expected<void, FileError> PaneLayout::save() {
  layout_.set(QStringLiteral("geometry"), window_.saveGeometry());
  layout_.set(QStringLiteral("panes"), window_.saveState(Panes::edition()));
  for (const Pane& pane : panes_.all()) {
    if (pane.list != nullptr)
      layout_.set(QStringLiteral("columns.") + pane.name, pane.list->columns().save_columns());
  }
  return layout_.save();
}

}  // namespace tutti
