#include "gui/windows/net_matrix_window.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <algorithm>
#include <string>
#include <tuple>

#include "core/numbers.h"
#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/frozen_column.h"
#include "gui/list/row_list_view.h"
#include "gui/list/selection_builder.h"
#include "gui/list/total_row.h"
#include "gui/windows/not_connected_line.h"

namespace tutti {

namespace {

constexpr int shown_width = 110;
constexpr int money_decimals = 2;

std::string counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

NetMatrixWindow::NetMatrixWindow(NetMatrix& form, const AccountBook& accounts, Screen& screen)
    : form_(form), screen_(screen) {
  // Before the list's own, so that it shows it in the same frame.
  screen.on_refresh(*this, [this] { form_.refresh(); });
  make_list();
  auto* shown = make_combo("shown");
  shown->setFixedWidth(shown_width);
  Binder{screen, *this}.bind(*shown, form_.shown);
  line_ = named(new ElidedLabel, "selection_line");
  line_->set_colour(QColor{theme::muted});
  close_ = named(new QPushButton{QStringLiteral("Close...")}, "close_block");
  close_->setEnabled(false);
  connect(close_, &QPushButton::clicked, this, [this] { close_selected(); });

  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 3, 10, 3);
  head->setSpacing(12);
  head->addWidget(shown);
  head->addWidget(line_, 1);
  head->addWidget(close_);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  column->addWidget(list_, 1);
  column->addWidget(named(new TotalRow{*list_, screen}, "total"));
  column->addWidget(new NotConnectedLine{accounts, screen});
  screen.on_refresh(*this, [this] { follow(); });
  setFocusProxy(list_);
}

void NetMatrixWindow::make_list() {
  list_ = named(new RowListView{form_.lvwNetMatrix, screen_, {}}, "lvwNetMatrix");
  list_->setSelectionBehavior(QAbstractItemView::SelectItems);
  list_->set_ink([this](const Row& row, std::size_t column) {
    const double number = row.cell(column).stored_number();
    return column == NetMatrix::account ? QColor{}
           : form_.shows_profit()       ? theme::profit_colour(number)
                                        : theme::side_colour(number);
  });
  list_->set_money([this](std::size_t at) { return at != NetMatrix::account && form_.shows_profit(); });
  list_->activate = [this](Row&, std::size_t) { close_selected(); };
  freeze_first_column(*list_, "Total(All Clients)");
  keep_readable();
  add_empty_hint(*list_, screen_, QStringLiteral("No open positions"));
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          [this] { selection_changed(); });
  connect(&list_->rows(), &QAbstractItemModel::modelReset, this, [this] { restore_selection(); });
}

void NetMatrixWindow::keep_readable() {
  profit_widths_ = form_.shows_profit();
  list_->columns().keep_readable({"", profit_widths_ ? "-000,000.00" : "-0000.00"});
  list_->columns().set_columns_vary(profit_widths_ ? "-00,000.00" : "-000.00");
}

// Rows come and go: what the selection stands on is known when all have.
void NetMatrixWindow::selection_changed() {
  if (list_->rows().settled()) return take_selection();
  selection_changed_ = true;
}

void NetMatrixWindow::take_selection() {
  selection_changed_ = false;
  picked_.clear();
  for (const QItemSelectionRange& range : list_->selectionModel()->selection()) {
    for (int place = range.top(); place <= range.bottom(); ++place) {
      const Row* row = list_->rows().row_at(place);
      if (row == nullptr) continue;
      for (int column = range.left(); column <= range.right(); ++column)
        picked_.push_back({static_cast<std::int32_t>(row->key().number()), static_cast<std::size_t>(column)});
    }
  }
  std::sort(picked_.begin(), picked_.end(), [](const auto& a, const auto& b) {
    return std::tie(a.account, a.column) < std::tie(b.account, b.column);
  });
}

// With a new symbol all rows are new, but columns never move: what was selected still is the same.
void NetMatrixWindow::restore_selection() {
  selection_changed_ = true;
  SelectionBuilder picked{*list_->model()};
  const auto before = [](const NetMatrix::Picked& a, const NetMatrix::Picked& b) {
    return a.account < b.account;
  };
  for (int place = 0; place < list_->rows().rowCount(); ++place) {
    const Row* row = list_->rows().row_at(place);
    if (row == nullptr) continue;
    const NetMatrix::Picked account{static_cast<std::int32_t>(row->key().number()), 0};
    const auto [first, last] = std::equal_range(picked_.begin(), picked_.end(), account, before);
    std::for_each(first, last, [&](const NetMatrix::Picked& each) {
      picked.add(place, static_cast<int>(each.column), static_cast<int>(each.column));
    });
  }
  const QItemSelection again = picked.selection();
  if (again.isEmpty()) return;
  list_->selectionModel()->setCurrentIndex(again.front().topLeft(), QItemSelectionModel::NoUpdate);
  list_->selectionModel()->select(again, QItemSelectionModel::ClearAndSelect);
}

bool NetMatrixWindow::can_close() const {
  return form_.can_close(picked_);
}

void NetMatrixWindow::follow() {
  if (profit_widths_ != form_.shows_profit()) keep_readable();
  if (selection_changed_) take_selection();
  line_->set_text(selection_text());
  line_->set_money(profit_widths_);
  const bool any = can_close();
  if (close_->isEnabled() != any) close_->setEnabled(any);
}

QString NetMatrixWindow::selection_text() const {
  if (form_.lvwNetMatrix.empty()) return {};
  if (picked_.empty()) return QStringLiteral("Nothing selected");
  const NetMatrix::Summary of = form_.summary(picked_);
  if (of.accounts == 0) return QStringLiteral("No positions selected");
  return QString::fromStdString(counted(of.accounts, "account") + ", " + counted(of.symbols, "symbol") +
                                ", " +
                                (form_.shows_profit() ? "P/L " + fixed_text(of.sum, money_decimals)
                                                      : number_text(lots_of_sum(of.sum)) + " lots net"));
}

void NetMatrixWindow::close_selected() {
  screen_.settle();
  take_selection();
  form_.close_picked(picked_);
  screen_.acted();
}

}  // namespace tutti
