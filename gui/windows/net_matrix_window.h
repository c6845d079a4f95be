#pragma once

#include <QWidget>
#include <vector>

#include "views/net_matrix.h"

class QPushButton;

namespace tutti {

class AccountBook;
class ElidedLabel;
class RowListView;
class Screen;

// Accounts x symbols window: a block of cells is selected and handed over to be closed.
class NetMatrixWindow final : public QWidget {
 public:
  // `accounts`: those whose positions are added up.
  NetMatrixWindow(NetMatrix& form, const AccountBook& accounts, Screen& screen);

  RowListView& list() { return *list_; }
  // While something is selected that can be closed, and seen.
  bool can_close() const;
  // Hands what the selected cells hold over to the close positions window.
  void close_selected();

 private:
  void make_list();
  void selection_changed();
  void take_selection();
  void restore_selection();
  void follow();
  void keep_readable();
  QString selection_text() const;

  NetMatrix& form_;
  Screen& screen_;
  RowListView* list_ = nullptr;
  ElidedLabel* line_ = nullptr;
  QPushButton* close_ = nullptr;
  std::vector<NetMatrix::Picked> picked_;  // the selected cells, by account and column
  bool selection_changed_ = false;         // and not taken yet
  bool profit_widths_ = false;             // columns have room for profits
};

}  // namespace tutti
