#include "gui/kit/in_sight.h"

#include <QApplication>
#include <QDockWidget>

namespace tutti {

namespace {

// What its own window shows of it, on the screen; empty when nothing.
QRect shown_of(const QWidget& widget) {
  if (!widget.isVisible() || widget.window()->isMinimized()) return {};
  QRect left = widget.rect();
  for (const QWidget* at = &widget; !at->isWindow(); at = at->parentWidget())
    left = left.translated(at->pos()) & at->parentWidget()->rect();
  return left.isEmpty() ? QRect{} : left.translated(widget.window()->mapToGlobal(QPoint{}));
}

}  // namespace

bool in_sight(const QWidget& widget) {
  return !shown_of(widget).isEmpty() && float_before(widget) == nullptr;
}

QWidget* float_before(const QWidget& widget) {
  const QRect shown = shown_of(widget);
  if (shown.isEmpty()) return nullptr;
  const QWidget& own = *widget.window();
  for (QWidget* other : QApplication::topLevelWidgets()) {
    if (other == &own || !other->isVisible() || other->isMinimized()) continue;
    // One dock, or the frame of several that float as tabs.
    const bool floats =
        qobject_cast<QDockWidget*>(other) != nullptr || other->inherits("QDockWidgetGroupWindow");
    if (!floats) continue;
    // It stays before the window that it came from; among floats the one that is worked in stands in front.
    const bool before = other->parentWidget() == &own || other->isActiveWindow();
    if (before && other->frameGeometry().contains(shown)) return other;
  }
  return nullptr;
}

}  // namespace tutti
