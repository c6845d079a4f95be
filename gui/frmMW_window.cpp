#include "gui/frmMW_window.h"

#include <QVBoxLayout>

#include "gui/row_list_view.h"

namespace tutti {

FrmMWWindow::FrmMWWindow(frmMW& form, Screen& screen) {
  using Column = frmMW::Column;
  symbols_ =
      new RowListView{form.lvwMW,
                      screen,
                      {Column::bid, Column::ask, Column::spread, Column::high, Column::low, Column::time}};
  symbols_->setObjectName(QStringLiteral("lvwMW"));
  symbols_->keep_readable({"NZDCAD.m", "00000.00", "00000.00", "0000", "00000.00", "00000.00", "00:00"});
  symbols_->setSelectionMode(QAbstractItemView::SingleSelection);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(symbols_);
}

}  // namespace tutti
