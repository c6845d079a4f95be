#pragma once

#include <QLabel>

#include "shell/Culf.h"

namespace tutti {

// A label of the main window in one of the shell's two colours: highlighted on the dark ground, normal on a
// light chip, since the normal colour can't be read on dark.
class ShellLabel final : public QLabel {
 public:
  explicit ShellLabel(const Culf& colours, QWidget* parent = nullptr);

  void show_text(const QString& new_text, bool highlighted);

 private:
  const Culf& colours_;
  bool highlighted_ = false;
};

}  // namespace tutti
