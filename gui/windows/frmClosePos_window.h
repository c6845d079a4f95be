#pragma once

#include <QWidget>
#include <cstdint>
#include <string>
#include <vector>

#include "gui/windows/close_row_look.h"
#include "orders/frmClosePos.h"

class QBoxLayout;
class QCheckBox;
class QLabel;
class QPushButton;

namespace tutti {

class AnswersLine;
class FindBox;
class RowListView;
class Screen;
class SymbolBox;

// Close positions window: the positions of one symbol over all accounts, marked with a click or Space, and
// the closing of those that are marked.
class FrmClosePosWindow final : public QWidget {
 public:
  FrmClosePosWindow(frmClosePos& form, Screen& screen, const Clock& clock);

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
  // As few lines as there is room for.
  void arrange();
  bool takes_part(const Row& row) const;
  // What a click or a key on these rows means: an account stands for its positions that are on show.
  std::vector<Row*> meant(const std::vector<Row*>& rows) const;
  void show_marked_only();
  QString count() const;
  void follow();

  frmClosePos& form_;
  Screen& screen_;
  CloseRowLook look_;
  RowListView* list_;
  SymbolBox* symbols_ = nullptr;
  QCheckBox* marked_only_ = nullptr;
  FindBox* find_ = nullptr;
  QPushButton* next_ = nullptr;
  QBoxLayout* act_ = nullptr;  // what is done with what is shown, and the way to the next symbol
  QBoxLayout* head_;           // what is shown, and act_
  QLabel* hint_;
  AnswersLine* answers_;
  std::uint64_t seen_stamp_ = ~std::uint64_t{0};  // of the grid when the answers were counted last
  std::string seen_symbol_;
  bool answers_wait_ = false;
  std::uint64_t filtered_stamp_ = 0;  // of the grid when the marks were looked at last
  std::uint64_t filtered_structure_ = 0;
  std::vector<RowKey> filtered_marks_;  // that the filter went by
  std::string seen_answers_;
};

}  // namespace tutti
