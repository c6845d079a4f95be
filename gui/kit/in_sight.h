#pragma once

class QWidget;

namespace tutti {

// Whether the operator can see any of a widget. Unlike the toolkit's own visibility this is false for a dock
// behind another one's tab, which the toolkit merely moves off its window, in a minimised window, and wholly
// behind a floating dock. That windows of other programs may stand before it is not known.
bool in_sight(const QWidget& widget);
// The window of floating docks that a widget would be in sight without; nullptr when there is none.
QWidget* float_before(const QWidget& widget);

}  // namespace tutti
