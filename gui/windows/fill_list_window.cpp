#include "gui/windows/fill_list_window.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

using FillColumn = FillList::Column;

Side side(const Row& row, std::size_t column) {
  if (column != FillColumn::side || row.cell(column).empty()) return Side::none;
  return row.reads(column, "Buy") ? Side::buy : Side::sell;
}

QColor ink(const Row& row, std::size_t column) {
  if (column == FillColumn::side) return theme::side_colour(side(row, column));
  if (column != FillColumn::profit || row.cell(column).empty()) return {};
  return theme::profit_colour(row.cell(column).stored_number());
}

}  // namespace

FillListWindow::FillListWindow(FillList& form, Screen& screen)
    : list_(
          named(new RowListView{form.lvwFills,
                                screen,
                                {FillColumn::ticket, FillColumn::account, FillColumn::lots, FillColumn::price,
                                 FillColumn::order, FillColumn::profit, FillColumn::commission}},
                "lvwFills")) {
  list_->set_sides(side);
  list_->set_ink(ink);
  list_->set_money([](std::size_t at) { return at == FillColumn::profit || at == FillColumn::commission; });
  list_->columns().keep_readable({"0000-00-00 00:00:00", "0000", "000000", "Close", "Sell00", "000.00",
                                  "AUDNZD", "00000.00", "00000000", "-0,000.00", "-00.00", "USD"});
  add_empty_hint(*list_, screen, QStringLiteral("No fills"));
  Binder binder{screen, *this};
  auto* period = make_combo("period");
  binder.bind(*period, form.period);
  auto* sums = named(new ElidedLabel, "fill_sums");
  binder.show([&form, sums] { sums->set_text(QString::fromStdString(form.sums.text())); });
  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 6, 10, 6);
  head->setSpacing(12);
  head->addWidget(period);
  head->addWidget(sums, 1);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  column->addWidget(list_, 1);
  setFocusProxy(list_);
}

}  // namespace tutti
