#pragma once

#include <QDialog>

#include "gui/kit/binder.h"
#include "orders/frmPriceChanged.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace tutti {

class Screen;

// Requote dialog: on top of its parent while a new price waits for an answer. It does not take the keyboard
// when it appears. A accepts, R and Esc reject, Enter presses the button that has the focus; a key that is
// held down answers once only.
class FrmPriceChangedWindow final : public QDialog {
 public:
  FrmPriceChangedWindow(frmPriceChanged& form, Screen& screen, QWidget* parent);

  // For the shell's keys; they do nothing during the dead time and while no requote is on show.
  void accept_requote() { press(form_.cmdAccept); }
  void reject_requote() { press(form_.cmdReject); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void follow();
  void show_countdown();
  void press(Button& button);

  frmPriceChanged& form_;
  Screen& screen_;
  Binder binder_;
  QLabel* account_;
  QLabel* seconds_;
  QProgressBar* countdown_;
  QWidget* answers_;  // both buttons, off during the dead time
  QPushButton* accept_;
  QPushButton* reject_;
};

}  // namespace tutti
