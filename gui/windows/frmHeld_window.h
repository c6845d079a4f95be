#pragma once

#include <QDialog>

#include "gui/kit/binder.h"
#include "orders/frmHeld.h"

class QPushButton;

namespace tutti {

class Screen;

// An order over a limit, in front of the main window for as long as one is held. Ctrl+F10 sends it all the
// same; Esc and Enter do not send it.
class FrmHeldWindow final : public QDialog {
 public:
  FrmHeldWindow(frmHeld& form, Screen& screen, QWidget* parent);

  // Esc, and the frame's close button.
  void reject() override { press(form_.cmdDrop); }

 private:
  void follow();
  void press(Button& button);

  frmHeld& form_;
  Screen& screen_;
  Binder binder_;
  QPushButton* drop_;
};

}  // namespace tutti
