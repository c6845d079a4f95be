#include "gui/windows/frmorder_window.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QResizeEvent>

#include "gui/kit/screen.h"
#include "gui/kit/svg_icon.h"
#include "gui/kit/window_parts.h"
#include "gui/list/row_list_view.h"
#include "gui/windows/order_accounts.h"
#include "gui/windows/price_label.h"
#include "gui/windows/quote_panel.h"
#include "gui/windows/symbol_box.h"

namespace tutti {

namespace {

constexpr int narrowest = 300;
constexpr int side_by_side = 700;  // from this width on the accounts stand beside the rest
constexpr int entry_width = 330;   // of the rest then
constexpr int button_digits = 13;

// The caption above, the price below it.
QPushButton* make_price_button(const char* name, const char* role, PriceLabel& price) {
  auto* button = named(new QPushButton, name);
  button->setProperty("role", QString::fromLatin1(role));
  button->setIcon(svg_icon(QString::fromLatin1(role)));
  button->setStyleSheet(QStringLiteral("QPushButton { padding: 4px 8px 26px 8px; min-height: 18px; }"));
  button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  price.setAttribute(Qt::WA_TransparentForMouseEvents);
  auto* column = new QVBoxLayout{button};
  column->setContentsMargins(0, 0, 0, 6);
  column->addWidget(&price, 0, Qt::AlignHCenter | Qt::AlignBottom);
  return button;
}

}  // namespace

FrmorderWindow::FrmorderWindow(frmorder& form, const SymbolCollection& symbols, Screen& screen)
    : form_(form), screen_(screen), binder_(screen, *this), parts_(new QGridLayout{this}) {
  setMinimumWidth(narrowest);
  parts_->setContentsMargins(10, 10, 10, 10);
  parts_->setHorizontalSpacing(12);
  parts_->setVerticalSpacing(8);
  entry_ = make_entry(symbols);
  accounts_ = make_accounts();
  trade_ = make_trade();
  arrange(false);
  set_tab_order(*this, {"cbsymbols", "txtammount", "CBdis", "cmddis", "lvwConClients", "cmdsell", "cmdbuy",
                        "chkAllClients", "find_account"});
}

QWidget* FrmorderWindow::make_entry(const SymbolCollection& symbols) {
  auto* part = new QWidget;
  auto* grid = new QGridLayout{part};
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(6);
  grid->setColumnStretch(1, 1);

  const auto add_label = [&](int row, const char* name, Label& label) {
    auto* widget = named(new QLabel, name);
    widget->setProperty("muted", true);
    binder_.bind(*widget, label);
    grid->addWidget(widget, row, 0);
  };
  add_label(0, "symbol_label", form_.symbol_label);
  add_label(2, "amount_label", form_.amount_label);
  add_label(3, "distribute_label", form_.distribute_label);

  grid->addWidget(named(new SymbolBox{form_.cbsymbols, screen_}, "cbsymbols"), 0, 1, 1, 2);

  quote_ = named(new QuotePanel{symbols, screen_, [this] { return form_.symbol(); }}, "quote");
  grid->addWidget(quote_, 1, 0, 1, 3);

  txtammount_ = named(new QLineEdit, "txtammount");
  txtammount_->setAlignment(Qt::AlignRight);
  binder_.bind(*txtammount_, form_.txtammount);
  connect(txtammount_, &QLineEdit::returnPressed, this, [this] { distribute(); });
  grid->addWidget(txtammount_, 2, 1);

  // Every action switches the price edit off and none switches it on, so it has no place on screen.
  auto* off_screen = new QWidget{part};
  off_screen->hide();
  binder_.bind(*named(new QLineEdit{off_screen}, "txtEditPrice"), form_.txtEditPrice);

  auto* rule = make_combo("CBdis");
  binder_.bind(*rule, form_.CBdis);
  grid->addWidget(rule, 3, 1, 1, 2);

  auto* cmddis = named(new QPushButton, "cmddis");
  cmddis->setProperty("role", QStringLiteral("primary"));
  binder_.bind(*cmddis, form_.cmddis);
  grid->addWidget(cmddis, 2, 2);
  return part;
}

OrderAccounts* FrmorderWindow::make_accounts() {
  return new OrderAccounts{order_form_of(form_, form_.txtammount, form_.txtLvw, "txtLvw"), screen_};
}

QWidget* FrmorderWindow::make_trade() {
  auto* part = new QWidget;
  auto* row = new QHBoxLayout{part};
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  auto* bid = named(new PriceLabel{false, button_digits}, "sell_price");
  auto* ask = named(new PriceLabel{false, button_digits}, "buy_price");
  auto* cmdsell = make_price_button("cmdsell", "sell", *bid);
  auto* cmdbuy = make_price_button("cmdbuy", "buy", *ask);
  row->addWidget(cmdsell);
  row->addWidget(cmdbuy);
  binder_.bind(*cmdsell, form_.cmdsell);
  binder_.bind(*cmdbuy, form_.cmdbuy);
  // The results are what comes next.
  for (const QPushButton* button : {cmdsell, cmdbuy})
    connect(button, &QPushButton::clicked, this, [this] { list().setFocus(Qt::OtherFocusReason); });
  quote_->show_also(*bid, *ask);
  return part;
}

void FrmorderWindow::arrange(bool wide) {
  for (QWidget* part : std::initializer_list<QWidget*>{entry_, accounts_, trade_})
    parts_->removeWidget(part);
  parts_->addWidget(entry_, 0, 0);
  if (wide) {
    parts_->addWidget(trade_, 2, 0);
    parts_->addWidget(accounts_, 0, 1, 3, 1);
  } else {
    parts_->addWidget(accounts_, 1, 0);
    parts_->addWidget(trade_, 2, 0);
  }
  parts_->setRowStretch(1, 1);
  parts_->setColumnMinimumWidth(0, wide ? entry_width : 0);
  parts_->setColumnStretch(0, wide ? 0 : 1);
  parts_->setColumnStretch(1, wide ? 1 : 0);
}

void FrmorderWindow::resizeEvent(QResizeEvent* event) {
  const bool wide = event->size().width() >= side_by_side;
  if (wide != (event->oldSize().width() >= side_by_side)) arrange(wide);
  QWidget::resizeEvent(event);
}

RowListView& FrmorderWindow::list() {
  return accounts_->list();
}

void FrmorderWindow::focus_amount() {
  txtammount_->setFocus(Qt::ShortcutFocusReason);
  txtammount_->selectAll();
}

void FrmorderWindow::distribute() {
  if (!form_.cmddis.enabled()) return;
  form_.cancel_editor();
  form_.cmddis.click();
  screen_.acted();
}

void FrmorderWindow::send(Button& button) {
  if (!button.enabled()) return;
  if (form_.txtLvw.visible()) form_.commit_editor();
  button.click();
  screen_.acted();
}

void FrmorderWindow::tick_all() {
  form_.tick_all();
  screen_.acted();
}

}  // namespace tutti
