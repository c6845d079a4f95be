#include "gui/windows/frmMW_window.h"

#include <QAction>
#include <QVBoxLayout>

#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"
#include "gui/list/row_list_view.h"

namespace tutti {

FrmMWWindow::FrmMWWindow(frmMW& form, Screen& screen) : form_(form), screen_(screen) {
  using Column = frmMW::Column;
  symbols_ =
      new RowListView{form.lvwMW,
                      screen,
                      {Column::bid, Column::ask, Column::spread, Column::high, Column::low, Column::time}};
  symbols_->setObjectName(QStringLiteral("lvwMW"));
  symbols_->columns().keep_readable(
      {"NZDCAD.m", "00000.00", "00000.00", "0000", "00000.00", "00000.00", "00:00"});
  symbols_->columns().set_first_to_go({Column::high, Column::low});
  symbols_->setSelectionMode(QAbstractItemView::SingleSelection);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(symbols_);
  add_action("to_market_order", QStringLiteral("Market order"), form.to_market_order);
  add_action("to_entry_order", QStringLiteral("Entry order"), form.to_entry_order);
}

void FrmMWWindow::add_action(const char* name, const QString& text,
                             const std::function<void(std::string_view)>& take) {
  auto* action = named(new QAction{text, symbols_}, name);
  connect(action, &QAction::triggered, this, [this, &take] {
    screen_.settle();
    const Row* row = form_.lvwMW.current();
    if (row != nullptr && take) take(form_.symbol_of(*row));
    screen_.acted();
  });
  symbols_->addAction(action);
}

}  // namespace tutti
