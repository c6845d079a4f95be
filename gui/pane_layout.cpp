#include "gui/pane_layout.h"

#include <QScreen>
#include <algorithm>
#include <utility>

namespace tutti {

namespace {

// Raised when panes come or go, so that older layouts are not applied to them.
constexpr int layout_version = 2;
constexpr QSize standard_size{1600, 900};
constexpr int room_for_two = 2200;  // width from which positions and journal stand side by side

}  // namespace

PaneLayout::PaneLayout(QMainWindow& window, Panes& panes, std::filesystem::path file)
    : window_(window), panes_(panes), layout_(std::move(file)) {}

void PaneLayout::reset() {
  for (std::size_t pane = 1; pane < panes_.all().size(); ++pane) {
    window_.removeDockWidget(dock(pane));
    dock(pane)->setFloating(false);
  }
  arrange();
  share_room();
  for (const Pane& pane : panes_.all()) {
    if (pane.list != nullptr) pane.list->follow_percentages();
  }
}

void PaneLayout::arrange() {
  // Split before they are tabbed: the other way round a tab of its own comes off.
  window_.addDockWidget(Qt::RightDockWidgetArea, dock(1));
  window_.splitDockWidget(dock(1), dock(2), Qt::Vertical);
  window_.tabifyDockWidget(dock(2), dock(6));
  window_.addDockWidget(Qt::BottomDockWidgetArea, dock(3));
  // Beside the journal only a large screen has room for the profit, the last column of the positions.
  const bool wide = window_.width() >= room_for_two;
  if (wide) window_.splitDockWidget(dock(3), dock(5), Qt::Horizontal);
  for (const std::size_t pane : {4U, 7U, 8U, 9U})
    window_.tabifyDockWidget(dock(3), dock(pane));
  if (!wide) window_.tabifyDockWidget(dock(3), dock(5));
  for (std::size_t pane = 1; pane < panes_.all().size(); ++pane)
    dock(pane)->show();
  dock(2)->raise();
  dock(3)->raise();
}

void PaneLayout::share_room() {
  const int width = window_.width();
  const int height = window_.height();
  window_.resizeDocks({dock(1)}, {std::clamp(width * 28 / 100, 340, 500)}, Qt::Horizontal);
  window_.resizeDocks({dock(1), dock(2)}, {height / 5, height * 4 / 5}, Qt::Vertical);
  window_.resizeDocks({dock(3)}, {std::clamp(height / 3, 220, 320)}, Qt::Vertical);
  if (width >= room_for_two)
    window_.resizeDocks({dock(3), dock(5)}, {width * 7 / 10, width * 3 / 10}, Qt::Horizontal);
}

void PaneLayout::restore() {
  if (!window_.restoreGeometry(layout_.value(QStringLiteral("geometry")))) window_.resize(standard_size);
  if (!window_.restoreState(layout_.value(QStringLiteral("panes")), layout_version)) return reset();
  for (const Pane& pane : panes_.all()) {
    const QByteArray columns = layout_.value(QStringLiteral("columns.") + pane.name);
    if (pane.list != nullptr && !columns.isEmpty()) pane.list->restore_columns(columns);
  }
}

tl::expected<void, FileError> PaneLayout::save() {
  layout_.set(QStringLiteral("geometry"), window_.saveGeometry());
  layout_.set(QStringLiteral("panes"), window_.saveState(layout_version));
  for (const Pane& pane : panes_.all()) {
    if (pane.list != nullptr) layout_.set(QStringLiteral("columns.") + pane.name, pane.list->save_columns());
  }
  return layout_.save();
}

}  // namespace tutti
