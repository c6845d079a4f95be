#pragma once

#include <QWidget>
#include <functional>

#include "gui/list/row_list_view.h"

namespace tutti {

class frmMain;
class Screen;

// Window of the accounts list, with the two notes about orders below it.
class FrmMainWindow final : public QWidget {
 public:
  FrmMainWindow(frmMain& form, Screen& screen, QWidget* parent = nullptr);

  RowListView& list() { return *list_; }
  // Shows the accounts whose number, user name or notes contain the text, in any letter case; all when it is
  // empty. When it hides what was selected, the first match is selected.
  void find(const QString& text);
  // How many rows are shown, such as "12 of 500".
  QString shown_text() const;
  // Opens the editor on the notes of the row the operator stands on.
  void edit_notes();

  // Double-click on a row, except on its notes, and Enter. When not set it connects a disconnected account.
  std::function<void(Row& row)> activate_account;

 private:
  void activate(Row& row, std::size_t column);
  void edit_notes_of(Row& row);

  frmMain& form_;
  Screen& screen_;
  RowListView* list_;
};

}  // namespace tutti
