#pragma once

#include <QWidget>
#include <cstdint>
#include <map>

#include "books/symbol_collection.h"
#include "gui/kit/binder.h"
#include "orders/frmlimitorder.h"

class QGridLayout;
class QLayout;
class QLineEdit;

namespace tutti {

class OrderAccounts;
class PriceSketchView;
class RowListView;
class Screen;

// Entry order window: symbol with its live prices, order type, amount, the prices with what they are bound
// by, and a sketch of them on top; the accounts with their shares and results; Submit and Cancel below. In a
// wide pane the accounts stand beside the rest.
class FrmlimitorderWindow final : public QWidget {
 public:
  FrmlimitorderWindow(frmlimitorder& form, const SymbolCollection& symbols, Screen& screen);

  // For the shell's commands. They press the form's buttons, which do nothing while they are unavailable. A
  // share that is being edited is taken before it is sent, and given up before it is computed anew.
  void focus_amount();
  void distribute();
  void submit();
  void cancel();
  // Ticks all accounts, or unticks them while the all-accounts box is ticked and any of them is.
  void tick_all();

  RowListView& list();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* make_mode_line();
  QWidget* make_entry(const SymbolCollection& symbols);
  void add_prices(QGridLayout& grid, int row);
  OrderAccounts* make_accounts();
  QWidget* make_work();
  QLayout* make_buttons();
  void arrange(bool wide);
  // Widths of the list's columns by its own width.
  void fit_columns();
  void fit_sketch();
  void follow_edited();
  // What is edited, and what Submit will send; empty for a new order.
  QString mode_text() const;

  frmlimitorder& form_;
  Screen& screen_;
  Binder binder_;
  QGridLayout* parts_;  // all that follows, below or beside each other
  QWidget* mode_;
  QWidget* entry_;
  PriceSketchView* sketch_ = nullptr;
  QWidget* work_;  // accounts and buttons, and in a wide pane the mode line above them
  OrderAccounts* accounts_ = nullptr;
  QLineEdit* txtlimitorderammount_ = nullptr;
  std::map<const TextBox*, QLineEdit*> price_boxes_;
  bool wide_list_ = false;
  std::int64_t edited_ = 0;  // the order or ticket whose account was gone to
};

}  // namespace tutti
