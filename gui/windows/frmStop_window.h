#pragma once

#include <QDialog>

#include "gui/kit/binder.h"
#include "orders/frmStop.h"

class QPushButton;

namespace tutti {

class Screen;

// STOP ALL: the question with its figures, and what stands open. Esc hides it; the stop stays.
class FrmStopWindow final : public QDialog {
 public:
  FrmStopWindow(frmStop& form, Screen& screen, QWidget* parent);

  // Esc, and the frame's close button.
  void reject() override;

 private:
  void follow();

  frmStop& form_;
  Screen& screen_;
  Binder binder_;
  QPushButton* hide_;
};

}  // namespace tutti
