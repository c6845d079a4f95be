#include "benchmarks/gui_rivals.h"

#include <QHeaderView>

#include "accounts/frmMain.h"
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

CoalescedRival::CoalescedRival(RowListView& like)
    : list_(like.rows()), view_(new QTableView), model_(list_.rowCount(), list_.columnCount()) {
  dirty_.resize(static_cast<std::size_t>(list_.rowCount()));
  for (int row = 0; row < list_.rowCount(); ++row)
    for (int column = 0; column < list_.columnCount(); ++column)
      model_.setItem(row, column, new QStandardItem{list_.index(row, column).data().toString()});
  view_->setModel(&model_);
  look_like(*view_, like);
  window_.setCentralWidget(view_);
  paints_ = std::make_unique<PaintCount>(*view_);
  show_window(window_);
  screen_.on_refresh(*view_, [this] {
    for (std::size_t place = 0; place < dirty_.size(); ++place)
      if (dirty_[place]) write(place);
  });
}

void CoalescedRival::write(std::size_t place) {
  dirty_[place] = false;
  const Row& row = *list_.row_at(static_cast<int>(place));
  for (const std::size_t column : {frmMain::balance, frmMain::floating, frmMain::credit, frmMain::equity,
                                   frmMain::used_margin, frmMain::margin_level, frmMain::free_margin})
    model_.item(static_cast<int>(place), static_cast<int>(column))
        ->setText(QString::fromStdString(row.text(column)));
}

StockView::StockView(RowListView& like) : view_(new QTableView) {
  view_->setModel(&like.rows());
  look_like(*view_, like);
  window_.setCentralWidget(view_);
  show_window(window_);
  window_.resize(window_.size() + like.viewport()->size() - view_->viewport()->size());
}

}  // namespace tutti::bench
