#pragma once

#include <QWidget>

#include "books/symbol_collection.h"
#include "gui/kit/binder.h"
#include "orders/frmorder.h"

class QGridLayout;
class QLineEdit;

namespace tutti {

class OrderAccounts;
class QuotePanel;
class RowListView;
class Screen;

// Market order window: symbol with its live prices, amount and rule on top, the accounts with their shares
// and results in the middle, Sell and Buy below. In a wide pane the accounts stand beside the rest.
class FrmorderWindow final : public QWidget {
 public:
  FrmorderWindow(frmorder& form, const SymbolCollection& symbols, Screen& screen);

  // For the shell's commands. They press the form's buttons, which do nothing while they are unavailable. A
  // share that is being edited is taken before it is sent, and given up before it is computed anew.
  void focus_amount();
  void distribute();
  void buy() { send(form_.cmdbuy); }
  void sell() { send(form_.cmdsell); }
  // Ticks all accounts, or unticks them while the all-accounts box is ticked and any of them is.
  void tick_all();

  RowListView& list();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* make_entry(const SymbolCollection& symbols);
  OrderAccounts* make_accounts();
  QWidget* make_trade();
  void arrange(bool wide);
  void send(Button& button);

  frmorder& form_;
  Screen& screen_;
  Binder binder_;
  QGridLayout* parts_;  // entry, accounts and trade, below or beside each other
  QuotePanel* quote_ = nullptr;
  QLineEdit* txtammount_ = nullptr;
  QWidget* entry_;
  OrderAccounts* accounts_;
  QWidget* trade_;
};

}  // namespace tutti
