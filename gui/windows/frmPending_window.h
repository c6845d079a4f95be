#pragma once

#include <QWidget>

#include "views/frmPending.h"

namespace tutti {

class RowListView;
class Screen;

// Pending orders window: what waits at the dealing server for all accounts. Cancels the ticked orders, hands
// an order to the entry order window, and shows below the list what was last said about the current one.
class FrmPendingWindow final : public QWidget {
 public:
  FrmPendingWindow(frmPending& form, Screen& screen);

  RowListView& list() { return *list_; }
  // For the shell's commands: "Cancel selected orders", and what a double-click on the current row does.
  void cancel_selected();
  void edit_current();

 private:
  // With the number of the order; empty when nothing was said about the current one.
  QString current_note() const;

  frmPending& form_;
  Screen& screen_;
  RowListView* list_;
};

}  // namespace tutti
