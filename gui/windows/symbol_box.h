#pragma once

#include <QLineEdit>
#include <optional>
#include <string>

#include "core/combo_box.h"

class QListWidget;

namespace tutti {

class Screen;

// A symbol's box: shows the chosen symbol, and finds another while the operator types, however slowly. What
// is found is listed below the box, those that begin with the text first. Typing, arrow keys and the wheel
// choose nothing: Enter and Tab take the line that is highlighted, a click takes the one under it, Esc goes
// back to the chosen symbol. A text that was not taken stays, marked by its colour.
class SymbolBox final : public QLineEdit {
 public:
  // `symbols` must live as long as the box.
  SymbolBox(ComboBox& symbols, Screen& screen);

 protected:
  // Tab comes here before it moves on.
  bool event(QEvent* event) override;
  // While the list is open: a click elsewhere and whatever window comes up close it.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void follow();
  void mark();
  bool open() const;
  void show_list();
  void fill();
  void move_by(int rows);
  // True when the key is used up.
  bool key(int key);
  void take_highlighted();
  void take(const QString& name);
  void go_back();

  ComboBox& symbols_;
  Screen& screen_;
  QListWidget* list_;
  std::optional<std::string> marked_;  // the text that the mark is for
  bool entered_ = false;               // a press of the mouse has just brought the keyboard here
};

}  // namespace tutti
