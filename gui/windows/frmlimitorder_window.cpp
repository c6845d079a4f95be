#include "gui/windows/frmlimitorder_window.h"

#include <QComboBox>
#include <QEvent>
#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QResizeEvent>
#include <QVBoxLayout>
#include <utility>

#include "core/numbers.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/row_list_view.h"
#include "gui/windows/order_accounts.h"
#include "gui/windows/price_sketch_view.h"
#include "gui/windows/quote_panel.h"
#include "gui/windows/symbol_box.h"

namespace tutti {

namespace {

constexpr int narrowest = 340;
constexpr int side_by_side = 700;  // from this width on the accounts stand beside the rest
constexpr int entry_width = 340;   // of the rest then
constexpr int wide_list = 500;
// Heights without the sketch, and those from which on there is room for it.
constexpr int lowest = 510;
constexpr int lowest_side_by_side = 340;
constexpr int sketch_from = 660;
constexpr int mode_line = 42;  // what the line above takes while something is edited
constexpr int sketch_from_side_by_side = 412;

QLabel* make_label(const QString& text, QWidget* buddy) {
  auto* label = new QLabel{text};
  label->setProperty("muted", true);
  label->setBuddy(buddy);
  return label;
}

// Room for any text of a kind, so that nothing moves while prices do.
void keep_room(QWidget& widget, const QString& longest) {
  widget.setMinimumWidth(widget.fontMetrics().horizontalAdvance(longest));
}

// The second of two quick clicks does nothing: what was sent is sent, and an emptied form has nothing to say.
class DoubleClickFilter final : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::MouseButtonDblClick; }
};

// A typed price that lies beyond its bound has both marked. It can be sent all the same.
void show_broken(QLineEdit& box, QLabel& sign, QLabel& bound) {
  const bool broken =
      !box.text().isEmpty() && breaks(read_number(box.text().toStdString()), sign.text().toStdString(),
                                      read_number(bound.text().toStdString()));
  set_look(box, "breaks", broken);
  for (QLabel* label : {&sign, &bound}) {
    set_look(*label, "warn", broken);
    label->setToolTip(broken ? QStringLiteral("The typed price lies beyond this bound") : QString{});
  }
}

// The colour of money, whatever the sum.
void show_gain(QLabel& label) {
  const double gain = label.text().toDouble();
  QPalette palette = label.palette();
  const QColor colour = theme::profit_colour(gain);
  palette.setColor(QPalette::WindowText, colour.isValid() ? colour : QColor{theme::window_text});
  if (palette != label.palette()) label.setPalette(palette);
}

}  // namespace

FrmlimitorderWindow::FrmlimitorderWindow(frmlimitorder& form, const SymbolCollection& symbols, Screen& screen)
    : form_(form), screen_(screen), binder_(screen, *this), parts_(new QGridLayout{this}) {
  setMinimumWidth(narrowest);
  parts_->setContentsMargins(10, 10, 10, 10);
  parts_->setHorizontalSpacing(12);
  parts_->setVerticalSpacing(8);
  mode_ = make_mode_line();
  entry_ = make_entry(symbols);
  sketch_ = named(new PriceSketchView{[this] { return form_.sketch(); }, screen_}, "price_sketch");
  work_ = make_work();
  arrange(false);
  set_tab_order(*this, {"cblimitordersymbols", "cblimiordertype", "txtlimitorderammount", "CBlimitorderdis",
                        "cmdlimiorderdis", "txtatprice", "txtsl", "txttp", "lvwConClients",
                        "cmdsubmitlimiorder", "cmdcancel", "chkAllClients", "find_account"});
  form_.enter = [this](TextBox& box) {
    price_boxes_.at(&box)->setFocus(Qt::OtherFocusReason);
    price_boxes_.at(&box)->selectAll();
  };
  binder_.show([this] {
    fit_columns();
    follow_edited();
  });
}

QWidget* FrmlimitorderWindow::make_mode_line() {
  auto* mode = named(new QLabel, "mode");
  mode->setProperty("warn", true);
  mode->setTextFormat(Qt::PlainText);
  mode->setWordWrap(true);
  binder_.show([this, mode] {
    const QString text = mode_text();
    if (mode->text() != text) mode->setText(text);
    if (mode->isHidden() == text.isEmpty()) return;
    mode->setVisible(!text.isEmpty());
    if (sketch_ != nullptr) fit_sketch();
  });
  return mode;
}

QWidget* FrmlimitorderWindow::make_entry(const SymbolCollection& symbols) {
  auto* part = new QWidget;
  auto* grid = new QGridLayout{part};
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(6);
  grid->setColumnStretch(1, 1);

  auto* symbol = named(new SymbolBox{form_.cblimitordersymbols, screen_}, "cblimitordersymbols");
  grid->addWidget(make_label(QStringLiteral("Symbol"), symbol), 0, 0);
  grid->addWidget(symbol, 0, 1, 1, 3);
  const auto chosen = [this]() -> std::string_view { return form_.cblimitordersymbols.text(); };
  grid->addWidget(named(new QuotePanel{symbols, screen_, chosen}, "quote"), 1, 0, 1, 4);

  auto* type = make_combo("cblimiordertype");
  binder_.bind(*type, form_.cblimiordertype);
  grid->addWidget(make_label(QStringLiteral("Type"), type), 2, 0);
  txtlimitorderammount_ = named(new QLineEdit, "txtlimitorderammount");
  txtlimitorderammount_->setAlignment(Qt::AlignRight);
  binder_.bind(*txtlimitorderammount_, form_.txtlimitorderammount);
  connect(txtlimitorderammount_, &QLineEdit::returnPressed, this, [this] { distribute(); });
  auto* order = new QHBoxLayout;
  order->setSpacing(8);
  order->addWidget(type, 1);
  order->addWidget(make_label(QStringLiteral("Amount"), txtlimitorderammount_));
  order->addWidget(txtlimitorderammount_, 1);
  grid->addLayout(order, 2, 1, 1, 3);

  auto* rule = make_combo("CBlimitorderdis");
  binder_.bind(*rule, form_.CBlimitorderdis);
  auto* distribute = named(new QPushButton, "cmdlimiorderdis");
  // Leaves the rule its room in the narrowest pane.
  distribute->setStyleSheet(QStringLiteral("QPushButton { padding: 5px 9px; }"));
  binder_.bind(*distribute, form_.cmdlimiorderdis);
  grid->addWidget(make_label(QStringLiteral("Rule"), rule), 3, 0);
  auto* shares = new QHBoxLayout;
  shares->setSpacing(6);
  shares->addWidget(rule, 1);
  shares->addWidget(distribute);
  grid->addLayout(shares, 3, 1, 1, 3);

  add_prices(*grid, 4);
  // No column of the list holds text to be edited, so this box has no place on screen.
  auto* off_screen = new QWidget{part};
  off_screen->hide();
  binder_.bind(*named(new QLineEdit{off_screen}, "txtLvw"), form_.txtLvw);
  return part;
}

void FrmlimitorderWindow::add_prices(QGridLayout& grid, int row) {
  struct Price {
    const char *caption, *box_name, *sign_name, *bound_name, *brings_name;
    TextBox& box;
    Label &sign, &bound;
    Label* brings;  // nullptr for the at-price
  };
  const Price prices[] = {
      {"At price", "txtatprice", "lblpricecondition", "lblcondition", "", form_.txtatprice,
       form_.lblpricecondition, form_.lblcondition, nullptr},
      {"SL", "txtsl", "lblslcondition", "lblslbound", "lblslchanged", form_.txtsl, form_.lblslcondition,
       form_.lblslbound, &form_.lblslchanged},
      {"TP", "txttp", "lbltpcondition", "lbltpbound", "lbltpchanged", form_.txttp, form_.lbltpcondition,
       form_.lbltpbound, &form_.lbltpchanged},
  };
  const auto add_text = [&](const char* name, Label& label, const QString& longest) {
    auto* text = named(new QLabel, name);
    binder_.bind(*text, label);
    keep_room(*text, longest);
    return text;
  };
  for (const Price& price : prices) {
    auto* box = named(new QLineEdit, price.box_name);
    box->setAlignment(Qt::AlignRight);
    binder_.bind(*box, price.box);
    grid.addWidget(make_label(QString::fromLatin1(price.caption), box), row, 0);
    grid.addWidget(box, row, 1);
    auto* condition = new QHBoxLayout;
    condition->setSpacing(4);
    auto* sign = add_text(price.sign_name, price.sign, QStringLiteral("<"));
    auto* bound = add_text(price.bound_name, price.bound, QStringLiteral("00000.00"));
    condition->addWidget(sign);
    condition->addWidget(bound, 1);
    grid.addLayout(condition, row, 2);
    binder_.show([box, sign, bound] { show_broken(*box, *sign, *bound); });
    price_boxes_[&price.box] = box;
    if (price.brings != nullptr) {
      auto* brings = add_text(price.brings_name, *price.brings, QStringLiteral("-00000.00"));
      brings->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
      brings->setToolTip(QStringLiteral(
          "What a close at this price brings for the amount, in account currency of the first account"));
      binder_.show([brings] { show_gain(*brings); });
      grid.addWidget(brings, row, 3);
    }
    ++row;
  }
}

OrderAccounts* FrmlimitorderWindow::make_accounts() {
  return new OrderAccounts{
      order_form_of(form_, form_.txtlimitorderammount, form_.txtEditPrice, "txtEditPrice"), screen_};
}

QWidget* FrmlimitorderWindow::make_work() {
  auto* part = new QWidget;
  auto* column = new QVBoxLayout{part};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(8);
  accounts_ = make_accounts();
  column->addWidget(accounts_, 1);
  column->addLayout(make_buttons());
  return part;
}

QLayout* FrmlimitorderWindow::make_buttons() {
  auto* row = new QHBoxLayout;
  row->setSpacing(8);
  auto* submit = named(new QPushButton, "cmdsubmitlimiorder");
  submit->setProperty("role", QStringLiteral("primary"));
  submit->installEventFilter(new DoubleClickFilter{submit});
  binder_.bind(*submit, form_.cmdsubmitlimiorder);
  // The results are what comes next.
  connect(submit, &QPushButton::clicked, this, [this] {
    if (form_.submitted()) list().setFocus(Qt::OtherFocusReason);
  });
  auto* cancel = named(new QPushButton, "cmdcancel");
  binder_.bind(*cancel, form_.cmdcancel);
  row->addWidget(submit, 1);
  row->addWidget(cancel);
  return row;
}

void FrmlimitorderWindow::arrange(bool wide) {
  for (QWidget* part : {mode_, entry_, static_cast<QWidget*>(sketch_), work_})
    parts_->removeWidget(part);
  auto* work = static_cast<QVBoxLayout*>(work_->layout());
  work->removeWidget(mode_);
  if (wide) {
    work->insertWidget(0, mode_);
    parts_->addWidget(entry_, 1, 0);
    parts_->addWidget(sketch_, 2, 0);
    parts_->addWidget(work_, 1, 1, 2, 1);
  } else {
    parts_->addWidget(mode_, 0, 0);
    parts_->addWidget(entry_, 1, 0);
    parts_->addWidget(sketch_, 2, 0);
    parts_->addWidget(work_, 3, 0);
  }
  parts_->setRowStretch(3, wide ? 0 : 2);
  parts_->setColumnMinimumWidth(0, wide ? entry_width : 0);
  parts_->setColumnStretch(0, wide ? 0 : 1);
  parts_->setColumnStretch(1, wide ? 1 : 0);
  setMinimumHeight(wide ? lowest_side_by_side : lowest);
}

void FrmlimitorderWindow::resizeEvent(QResizeEvent* event) {
  const bool wide = event->size().width() >= side_by_side;
  if (wide != (event->oldSize().width() >= side_by_side)) arrange(wide);
  fit_sketch();
  QWidget::resizeEvent(event);
}

// By the pane's height alone, not by what the layout has left, which the sketch itself would change.
void FrmlimitorderWindow::fit_sketch() {
  const bool wide = width() >= side_by_side;
  const int needed = wide ? sketch_from_side_by_side : sketch_from + (mode_->isHidden() ? 0 : mode_line);
  const bool high = height() >= needed;
  if (sketch_->isHidden() == high) sketch_->setVisible(high);
  parts_->setRowStretch(2, wide || high ? 1 : 0);
}

void FrmlimitorderWindow::fit_columns() {
  const bool wide = list().width() >= wide_list;
  if (wide == wide_list_) return;
  wide_list_ = wide;
  if (wide) {
    form_.Form_Resize();
  } else {
    form_.Form_Load();
  }
  if (!list().columns().widths_dragged()) list().columns().follow_percentages();
}

// The account whose order came to be edited may be far down the list.
void FrmlimitorderWindow::follow_edited() {
  if (std::exchange(edited_, form_.edited()) == form_.edited() || form_.edited() == 0) return;
  if (const Row* row = form_.lvwConClients.find(client_key(form_.edited_account()))) list().go_to(*row);
}

QString FrmlimitorderWindow::mode_text() const {
  const bool stops = form_.mode() == frmlimitorder::edit_stops;
  if (!stops && form_.mode() != frmlimitorder::edit_order) return {};
  return (stops
              ? QStringLiteral("SL/TP of position #%1 of account %2. Submit sends SL and TP; an empty one is "
                               "taken off.")
              : QStringLiteral("Editing order #%1 of account %2. Submit sends price, SL and TP; the amount "
                               "stays."))
      .arg(form_.edited())
      .arg(form_.edited_account());
}

RowListView& FrmlimitorderWindow::list() {
  return accounts_->list();
}

void FrmlimitorderWindow::focus_amount() {
  txtlimitorderammount_->setFocus(Qt::ShortcutFocusReason);
  txtlimitorderammount_->selectAll();
}

void FrmlimitorderWindow::distribute() {
  if (!form_.cmdlimiorderdis.enabled()) return;
  form_.cancel_editor();
  form_.cmdlimiorderdis.click();
  screen_.acted();
}

void FrmlimitorderWindow::submit() {
  if (!form_.cmdsubmitlimiorder.enabled()) return;
  if (form_.txtEditPrice.visible()) form_.commit_editor();
  form_.cmdsubmitlimiorder.click();
  screen_.acted();
}

void FrmlimitorderWindow::cancel() {
  form_.cmdcancel.click();
  screen_.acted();
}

void FrmlimitorderWindow::tick_all() {
  form_.tick_all();
  screen_.acted();
}

}  // namespace tutti
