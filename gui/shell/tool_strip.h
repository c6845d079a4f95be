#pragma once

#include <QToolBar>
#include <vector>

class QLineEdit;
class QToolButton;

namespace tutti {

class Commands;
class FrmMainWindow;
class Screen;

// Tool bar of the main window: the commands of every day, the box that finds accounts, and the switch of the
// sounds. Where it is narrow, buttons give up their texts, the last first; nothing ever leaves it.
class ToolStrip final : public QToolBar {
 public:
  ToolStrip(const Commands& commands, FrmMainWindow& accounts, Screen& screen);

  // Takes the keyboard to the box.
  void find_account();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void make_find_box();
  void share_room();

  FrmMainWindow& accounts_;
  Screen& screen_;
  QLineEdit* find_;
  std::vector<QToolButton*> buttons_;  // that may show a text
  std::vector<int> text_widths_;       // what each of them takes more with its text
  int least_ = 0;                      // width of everything without texts
};

}  // namespace tutti
