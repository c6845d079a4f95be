#pragma once

#include <QWidget>

#include "views/frmTrade.h"

namespace tutti {

class AccountBook;
class RowListView;
class Screen;

// Open positions window: the positions of all accounts with live prices and profit, and the closing of those
// that are ticked, or of one by its row's menu.
class FrmTradeWindow final : public QWidget {
 public:
  // `accounts`: those whose positions these are.
  FrmTradeWindow(frmTrade& form, const AccountBook& accounts, Screen& screen);

  RowListView& list() { return *list_; }
  // "Close Selected Positions", for the shell's command.
  void close_selected();

 private:
  QWidget* make_summaries();

  frmTrade& form_;
  Screen& screen_;
  RowListView* list_;
};

}  // namespace tutti
