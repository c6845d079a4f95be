#include "gui/in_sight.h"

#include <QWidget>

namespace tutti {

bool in_sight(const QWidget& widget) {
  if (!widget.isVisible() || widget.window()->isMinimized()) return false;
  QRect left = widget.rect();
  for (const QWidget* at = &widget; !at->isWindow(); at = at->parentWidget())
    left = left.translated(at->pos()) & at->parentWidget()->rect();
  return !left.isEmpty();
}

}  // namespace tutti
