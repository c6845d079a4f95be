#pragma once

#include <QDialog>

class QFormLayout;
class QLineEdit;

namespace tutti {

class Binder;
class Screen;
class TextBox;
class frmaccount;

// Account dialog, modal over its parent while the form is displayed. Opens and closes by itself with the
// form.
class FrmaccountWindow final : public QDialog {
 public:
  FrmaccountWindow(frmaccount& form, Screen& screen, QWidget* parent = nullptr);

  // Esc, and the frame's close button.
  void reject() override;

 private:
  QLineEdit* add_box(QFormLayout& fields, Binder& binder, const char* name, const QString& label,
                     TextBox& box);
  void follow();

  frmaccount& form_;
  Screen& screen_;
  QLineEdit* account_;
  QLineEdit* password_;
};

}  // namespace tutti
