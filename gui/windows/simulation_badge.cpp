#include "gui/windows/simulation_badge.h"

#include "gui/kit/theme.h"

namespace tutti {

SimulationBadge::SimulationBadge(QWidget* parent) : QLabel(QStringLiteral("SIMULATION"), parent) {
  setObjectName(QStringLiteral("simulation"));
  setFont(theme::bold_font());
  setAlignment(Qt::AlignCenter);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setToolTip(QStringLiteral("The dealing server is the one within this program: no order reaches a market"));
  const QString amber = QColor{theme::amber}.name();
  setStyleSheet(
      QStringLiteral("QLabel { color: %1; border: 1px solid %1; border-radius: 3px; padding: 1px 8px; }"
                     "QToolTip { border-radius: 0; }")
          .arg(amber));
}

}  // namespace tutti
