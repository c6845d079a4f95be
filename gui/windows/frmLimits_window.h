#pragma once

#include <QDialog>

#include "orders/frmLimits.h"

namespace tutti {

class Screen;

// The limits, a line for each, modal over the main window while the form is displayed.
class FrmLimitsWindow final : public QDialog {
 public:
  FrmLimitsWindow(frmLimits& form, Screen& screen, QWidget* parent);

  // Esc, and the frame's close button.
  void reject() override;

 private:
  void follow();

  frmLimits& form_;
  Screen& screen_;
};

}  // namespace tutti
