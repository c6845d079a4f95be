#include "benchmarks/gui_rivals.h"

#include <QHeaderView>

#include "accounts/frmMain.h"
#include "benchmarks/event_driver.h"
#include "gui/kit/theme.h"

namespace tutti::bench {
namespace {

void look_like(QTableView& view, const RowListView& like) {
  view.setShowGrid(false);
  view.setAlternatingRowColors(true);
  view.setWordWrap(false);
  view.setSelectionBehavior(QAbstractItemView::SelectRows);
  view.verticalHeader()->hide();
  view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  view.verticalHeader()->setDefaultSectionSize(theme::row_height);
  for (int column = 0; column < like.model()->columnCount(); ++column)
    view.setColumnWidth(column, like.columnWidth(column));
}

}  // namespace

TableRival::TableRival(const RowListView& like)
    : table_(new QTableWidget{like.model()->rowCount(), like.model()->columnCount()}),
      paints_(*table_),
      values_(changing_summaries()) {
  const QAbstractItemModel& model = *like.model();
  for (int column = 0; column < model.columnCount(); ++column) {
    table_->setHorizontalHeaderItem(
        column, new QTableWidgetItem{model.headerData(column, Qt::Horizontal).toString()});
    for (int row = 0; row < model.rowCount(); ++row)
      table_->setItem(row, column, new QTableWidgetItem{model.index(row, column).data().toString()});
  }
  look_like(*table_, like);
  window_.setCentralWidget(table_);
  show_window(window_);
}

void TableRival::rows(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const AccountSummary& values = values_[next_];
    if (++next_ == values_.size()) next_ = 0;
    const auto show = [this](std::size_t column, double value) {
      table_->item(row_, static_cast<int>(column))->setText(QString::number(value, 'f', 2));
    };
    show(frmMain::balance, values.balance);
    show(frmMain::floating, values.floating_pl);
    show(frmMain::credit, values.credit);
    show(frmMain::equity, values.equity);
    show(frmMain::used_margin, values.used_margin * -1.0);
    show(frmMain::margin_level, values.margin_level * 100.0);
    show(frmMain::free_margin, values.free_margin);
    if (++row_ == table_->rowCount()) row_ = 0;
  }
}

StockView::StockView(RowListView& like) : view_(new QTableView) {
  view_->setModel(&like.rows());
  look_like(*view_, like);
  window_.setCentralWidget(view_);
  show_window(window_);
  window_.resize(window_.size() + like.viewport()->size() - view_->viewport()->size());
}

}  // namespace tutti::bench
