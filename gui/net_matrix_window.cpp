#include "gui/net_matrix_window.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <algorithm>
#include <string>
#include <tuple>

#include "core/numbers.h"
#include "gui/binder.h"
#include "gui/elided_label.h"
#include "gui/empty_hint.h"
#include "gui/frozen_column.h"
#include "gui/row_list_view.h"
#include "gui/screen.h"
#include "gui/theme.h"
#include "gui/total_row.h"
#include "gui/window_parts.h"

namespace tutti {

namespace {

constexpr int shown_width = 110;
constexpr int money_decimals = 2;

QColor cell_ink(const Row& row, std::size_t column) {
  return column == NetMatrix::account ? QColor{} : theme::side_colour(row.cell(column).stored_number());
}

std::string counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

NetMatrixWindow::NetMatrixWindow(NetMatrix& form, Screen& screen) : form_(form), screen_(screen) {
  // Before the list's own, so that it shows it in the same frame.
  screen.on_refresh(*this, [this] {
    if (isVisible()) form_.refresh();
  });
  make_list();
  auto* shown = make_combo("shown");
  shown->setFixedWidth(shown_width);
  Binder{screen, *this}.bind(*shown, form_.shown);
  line_ = named(new ElidedLabel, "selection_line");
  line_->set_colour(QColor{theme::muted});
  close_ = named(new QPushButton{QStringLiteral("Close...")}, "close_block");
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
  screen.on_refresh(*this, [this] { follow(); });
  follow();
  setFocusProxy(list_);
}

void NetMatrixWindow::make_list() {
  list_ = named(new RowListView{form_.lvwNetMatrix, screen_, {}}, "lvwNetMatrix");
  list_->setSelectionBehavior(QAbstractItemView::SelectItems);
  list_->set_ink(cell_ink);
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
  list_->keep_readable({"", profit_widths_ ? "-000000.00" : "-0000.00"});
  list_->set_columns_vary(profit_widths_ ? "-00000.00" : "-000.00");
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
  QItemSelection again;
  for (const NetMatrix::Picked& cell : picked_) {
    const Row* row = form_.lvwNetMatrix.find(client_key(cell.account));
    const int place = row == nullptr ? -1 : list_->rows().place_of(row);
    if (place < 0) continue;
    const QModelIndex index = list_->model()->index(place, static_cast<int>(cell.column));
    again.select(index, index);
  }
  if (again.isEmpty()) return;
  list_->selectionModel()->setCurrentIndex(again.front().topLeft(), QItemSelectionModel::NoUpdate);
  list_->selectionModel()->select(again, QItemSelectionModel::ClearAndSelect);
}

void NetMatrixWindow::follow() {
  if (profit_widths_ != form_.shows_profit()) keep_readable();
  if (selection_changed_) take_selection();
  line_->set_text(selection_text());
  const bool any = !picked_.empty();
  if (close_->isEnabled() != any) close_->setEnabled(any);
}

// What the form makes of the selection: the Account and Total columns stand for all symbols, and empty cells
// for nothing.
QString NetMatrixWindow::selection_text() const {
  if (form_.lvwNetMatrix.empty()) return {};
  if (picked_.empty()) return QStringLiteral("Nothing selected");
  const std::size_t columns = form_.lvwNetMatrix.columns().size();
  std::vector<bool> symbols(columns);
  std::size_t accounts = 0;
  double sum = 0.0;
  for (auto cell = picked_.begin(); cell != picked_.end();) {
    const auto end =
        std::find_if(cell, picked_.end(), [&](const auto& other) { return other.account != cell->account; });
    const Row* row = form_.lvwNetMatrix.find(client_key(cell->account));
    bool any = false;
    const auto count = [&](std::size_t column) {
      if (row == nullptr || column >= row->columns() || row->cell(column).empty()) return;
      any = true;
      symbols[column] = true;
      sum += row->cell(column).stored_number();
    };
    if (cell->column < NetMatrix::first_symbol) {
      for (std::size_t column = NetMatrix::first_symbol; column < columns; ++column)
        count(column);
    } else {
      std::for_each(cell, end, [&](const auto& each) { count(each.column); });
    }
    accounts += any ? 1 : 0;
    cell = end;
  }
  if (accounts == 0) return QStringLiteral("No positions selected");
  const auto of = static_cast<std::size_t>(std::count(symbols.begin(), symbols.end(), true));
  return QString::fromStdString(counted(accounts, "account") + ", " + counted(of, "symbol") + ", " +
                                (form_.shows_profit() ? "P/L " + fixed_text(sum, money_decimals)
                                                      : number_text(lots_of_sum(sum)) + " lots net"));
}

void NetMatrixWindow::close_selected() {
  screen_.settle();
  take_selection();
  std::vector<NetMatrix::Picked> held;
  for (const NetMatrix::Picked& cell : picked_) {
    const Row* row = form_.lvwNetMatrix.find(client_key(cell.account));
    if (row != nullptr && !row->cell(cell.column).empty()) held.push_back(cell);
  }
  form_.close_picked(held);
  screen_.acted();
}

}  // namespace tutti
