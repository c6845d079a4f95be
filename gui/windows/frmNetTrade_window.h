#pragma once

#include <QWidget>

#include "views/frmNetTrade.h"

class QBoxLayout;
class QPushButton;
class QScrollArea;

namespace tutti {

class AccountBook;
class ElidedLabel;
class ExposureBars;
class RowListView;
class Screen;
class TotalRow;

// Net positions window: the symbols, a picture of their exposure, and the accounts behind the symbol that is
// selected.
class FrmNetTradeWindow final : public QWidget {
 public:
  // `accounts`: those whose positions are added up.
  FrmNetTradeWindow(frmNetTrade& form, const AccountBook& accounts, Screen& screen);

  RowListView& list() { return *list_; }
  RowListView& accounts() { return *accounts_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* make_symbols(const AccountBook& accounts, Screen& screen);
  QWidget* make_picture(Screen& screen);
  QWidget* make_accounts(Screen& screen);
  void show_head();
  // Side by side as far as the width goes, what has no room there below.
  void arrange();

  frmNetTrade& form_;
  RowListView* list_ = nullptr;
  RowListView* accounts_ = nullptr;
  ExposureBars* bars_ = nullptr;
  QScrollArea* picture_ = nullptr;
  ElidedLabel* head_ = nullptr;
  QPushButton* close_ = nullptr;
  QBoxLayout* parts_ = nullptr;    // symbols and the rest
  QBoxLayout* details_ = nullptr;  // the rest: picture and accounts
};

}  // namespace tutti
