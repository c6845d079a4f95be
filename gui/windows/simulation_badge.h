#pragma once

#include <QLabel>

namespace tutti {

// Says that the prices and the money are made up: the dealing server is the one within the program.
class SimulationBadge final : public QLabel {
 public:
  explicit SimulationBadge(QWidget* parent = nullptr);
};

}  // namespace tutti
