#pragma once

#include <functional>

#include "core/button.h"
#include "core/check_box.h"
#include "core/combo_box.h"
#include "core/label.h"
#include "core/text_box.h"

class QAbstractButton;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace tutti {

class Screen;

// Binds the widgets of one window to the controls of its form. What the operator does goes to the control and
// from there to the form; what the form sets is shown with the next refresh, where it differs, so that carets
// stay and nothing echoes.
//
// Widgets and controls must live as long as `window`, which owns the bindings.
class Binder {
 public:
  Binder(Screen& screen, QWidget& window) : screen_(screen), window_(window) {}

  // The caption is the form's; `&` in it is an ordinary character.
  void bind(QAbstractButton& widget, Button& button);
  void bind(QAbstractButton& widget, CheckBox& box);
  // Every way of changing the text, typed, pasted, dropped or undone, passes the control's key filter.
  void bind(QLineEdit& widget, TextBox& box);
  // A list to choose from, or one whose text can be typed when the widget is editable.
  void bind(QComboBox& widget, ComboBox& box);
  // A label that works as a button, so that the keyboard reaches it.
  void bind(QAbstractButton& widget, Label& label);
  // Plain text, leading blanks kept. A click goes to the label.
  void bind(QLabel& widget, Label& label);
  // A label that is there to be pressed, shown as a button that Tab reaches and Enter and Space press.
  void bind(QPushButton& widget, Label& label);
  // Runs with every refresh.
  void show(std::function<void()> step);

 private:
  Screen& screen_;
  QWidget& window_;
};

}  // namespace tutti
