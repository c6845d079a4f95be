#pragma once

#include <QWidget>
#include <cstdint>
#include <string>

#include "gui/close_row_look.h"
#include "orders/frmClosePos.h"

class QBoxLayout;
class QComboBox;
class QLabel;

namespace tutti {

class AnswersLine;
class RowListView;
class Screen;

// Close positions window: the positions of one symbol over all accounts, marked with a click or Space, and
// the closing of those that are marked.
class FrmClosePosWindow final : public QWidget {
 public:
  FrmClosePosWindow(frmClosePos& form, Screen& screen);

  RowListView& list() { return *list_; }
  // For the shell's commands: asks and closes what is marked, and marks or unmarks all.
  void close_marked();
  void mark_all();
  // With the keyboard in the symbol's box, ready to be typed into.
  void focus_symbol();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QBoxLayout* make_head();
  void connect_list();
  QString count() const;
  void follow();

  frmClosePos& form_;
  Screen& screen_;
  CloseRowLook look_;
  RowListView* list_;
  QComboBox* symbols_ = nullptr;
  QBoxLayout* head_;  // what is shown, and what is done with it, beside or below each other
  QLabel* hint_;
  AnswersLine* answers_;
  std::uint64_t seen_stamp_ = ~std::uint64_t{0};  // of the grid when the answers were counted last
  bool answers_wait_ = false;
  std::string seen_answers_;
};

}  // namespace tutti
