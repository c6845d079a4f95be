#pragma once

class QWidget;

namespace tutti {

// Whether the operator can see any of a widget. Unlike the toolkit's own visibility this is false for a dock
// behind another one's tab, which the toolkit merely moves off its window, and in a minimised window. That
// windows of other programs may stand before it is not known.
bool in_sight(const QWidget& widget);

}  // namespace tutti
