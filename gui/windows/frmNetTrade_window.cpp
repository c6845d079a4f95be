#include "gui/windows/frmNetTrade_window.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QScrollArea>

#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/row_list_view.h"
#include "gui/list/total_row.h"
#include "gui/windows/exposure_bars.h"
#include "gui/windows/not_connected_line.h"

namespace tutti {

namespace {

using SymbolColumn = frmNetTrade::Column;
using AccountColumn = frmNetTrade::AccountColumn;

constexpr int side_by_side = 800;    // from this width on the details stand beside the symbols
constexpr int three_abreast = 1500;  // and from this one picture and accounts beside each other, too
// Lists narrower than this do without average prices, so that the profit stays in sight.
constexpr int symbols_with_averages = 630;
constexpr int accounts_with_averages = 440;
constexpr int least_picture = 2 * theme::row_height;

QColor symbol_ink(const Row& row, std::size_t column) {
  const double number = row.cell(column).stored_number();
  if (column == SymbolColumn::floating) return theme::profit_colour(number);
  return column == SymbolColumn::net ? theme::side_colour(number) : QColor{};
}

QColor account_ink(const Row& row, std::size_t column) {
  const double number = row.cell(column).stored_number();
  if (column == AccountColumn::of_floating) return theme::profit_colour(number);
  return column == AccountColumn::of_net ? theme::side_colour(number) : QColor{};
}

void show_averages(RowListView& list, std::initializer_list<int> columns, int from_width) {
  const bool narrow = list.width() < from_width;
  if (list.isColumnHidden(*columns.begin()) == narrow) return;
  const bool dragged = list.columns().widths_dragged();
  for (const int column : columns)
    list.setColumnHidden(column, narrow);
  if (!dragged) list.columns().follow_percentages();
}

}  // namespace

FrmNetTradeWindow::FrmNetTradeWindow(frmNetTrade& form, const AccountBook& accounts, Screen& screen)
    : form_(form) {
  // Before the lists' own, so that they show it in the same frame.
  screen.on_refresh(*this, [this] { form_.refresh(); });
  parts_ = new QBoxLayout{QBoxLayout::LeftToRight, this};
  parts_->setContentsMargins(0, 0, 0, 0);
  parts_->setSpacing(4);
  parts_->addWidget(make_symbols(accounts, screen), 3);
  auto* details = new QWidget;
  details_ = new QBoxLayout{QBoxLayout::TopToBottom, details};
  details_->setContentsMargins(0, 0, 0, 0);
  details_->setSpacing(4);
  details_->addWidget(make_picture(screen), 2);
  details_->addWidget(make_accounts(screen), 3);
  parts_->addWidget(details, 2);
  screen.on_refresh(*this, [this] {
    show_head();
    arrange();
  });
  show_head();
  arrange();
  setFocusProxy(list_);
}

QWidget* FrmNetTradeWindow::make_symbols(const AccountBook& accounts, Screen& screen) {
  list_ = named(new RowListView{form_.lvwNet, screen, {1, 2, 3, 4, 5, 6, 7}}, "lvwNet");
  // The accounts of one symbol are listed.
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  list_->set_ink(symbol_ink);
  list_->set_money([](std::size_t at) { return at == SymbolColumn::floating; });
  list_->columns().keep_readable({"Total(All Clients)", "000", "00000.00", "00000.00", "00000.00", "00000.00",
                                  "-0000.00", "-000,000.00"});
  add_empty_hint(*list_, screen, QStringLiteral("No open positions"));
  auto* part = new QWidget;
  auto* column = new QVBoxLayout{part};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(list_, 1);
  column->addWidget(named(new TotalRow{*list_, screen}, "total"));
  column->addWidget(new NotConnectedLine{accounts, screen});
  return part;
}

QWidget* FrmNetTradeWindow::make_picture(Screen& screen) {
  bars_ = new ExposureBars{*list_, screen};
  picture_ = new QScrollArea;
  picture_->setFrameShape(QFrame::NoFrame);
  picture_->setWidgetResizable(true);
  picture_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  picture_->setFocusPolicy(Qt::NoFocus);
  picture_->setMinimumHeight(least_picture);
  picture_->setWidget(bars_);
  bars_->selected = [this](const QRect& box) {
    picture_->ensureVisible(0, box.center().y(), 0, box.height());
  };
  return picture_;
}

QWidget* FrmNetTradeWindow::make_accounts(Screen& screen) {
  accounts_ = named(new RowListView{form_.lvwNetAccounts, screen, {0, 1, 2, 3, 4, 5, 6}}, "lvwNetAccounts");
  accounts_->set_ink(account_ink);
  accounts_->set_money([](std::size_t at) { return at == AccountColumn::of_floating; });
  accounts_->columns().keep_readable(
      {"000000", "000.00", "00000.00", "000.00", "00000.00", "-000.00", "-00,000.00"});
  head_ = named(new ElidedLabel, "accounts_head");
  head_->set_colour(QColor{theme::muted});
  close_ = named(new QPushButton, "close_accounts");
  Binder{screen, *this}.bind(*close_, form_.close_accounts);
  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 3, 10, 3);
  head->setSpacing(12);
  head->addWidget(head_, 1);
  head->addWidget(close_);
  auto* part = new QWidget;
  auto* column = new QVBoxLayout{part};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  column->addWidget(accounts_, 1);
  return part;
}

void FrmNetTradeWindow::show_head() {
  const RowList& accounts = form_.lvwNetAccounts;
  std::string text = "Select a symbol to see its accounts";
  if (!form_.picked().empty()) {
    std::size_t selected = 0;
    for (const Row& row : accounts)
      selected += row.selected() ? 1 : 0;
    text = form_.picked() + ": " + std::to_string(accounts.size()) +
           (accounts.size() == 1 ? " account" : " accounts") +
           (selected == 0 ? "" : ", " + std::to_string(selected) + " selected");
  }
  head_->set_text(QString::fromStdString(text));
  if (close_->isEnabled() != form_.can_close()) close_->setEnabled(form_.can_close());
}

void FrmNetTradeWindow::arrange() {
  const bool wide = width() >= side_by_side;
  const bool three = width() >= three_abreast;
  const auto set_direction = [](QBoxLayout& layout, bool across) {
    const auto wanted = across ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    if (layout.direction() != wanted) layout.setDirection(wanted);
  };
  set_direction(*parts_, wide);
  set_direction(*details_, three);
  // Along the same line, picture and accounts need more than the symbols; across it, less.
  const bool across = wide && !three;
  const int symbols_part = across ? 3 : 2;
  const int details_part = across ? 2 : 3;
  if (parts_->stretch(0) != symbols_part) {
    parts_->setStretch(0, symbols_part);
    parts_->setStretch(1, details_part);
  }
  // Below each other, the picture takes its part of the height, and no more than it needs.
  const int picture = three ? QWIDGETSIZE_MAX : bars_->full_height();
  if (picture_->maximumHeight() != picture) picture_->setMaximumHeight(picture);
  show_averages(*list_, {SymbolColumn::bought_at, SymbolColumn::sold_at}, symbols_with_averages);
  show_averages(*accounts_, {AccountColumn::of_bought_at, AccountColumn::of_sold_at}, accounts_with_averages);
}

void FrmNetTradeWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  arrange();
}

}  // namespace tutti
