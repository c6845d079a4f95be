#include "gui/windows/frmPending_window.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/list_count.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

using Column = frmPending::Column;

const std::vector<std::size_t> numbers{Column::order_number, Column::account,   Column::amount,
                                       Column::price,        Column::stop_loss, Column::take_profit};

Side side(const frmPending::Record* order, std::size_t column) {
  const Operation does =
      order != nullptr && column == Column::type ? frmPending::side(*order) : Operation::none;
  return does == Operation::none ? Side::none : buys(does) ? Side::buy : Side::sell;
}

}  // namespace

FrmPendingWindow::FrmPendingWindow(frmPending& form, Screen& screen)
    : form_(form), screen_(screen), list_(new RowListView{form.lvwPending, screen, numbers, true}) {
  list_->setObjectName(QStringLiteral("lvwPending"));
  list_->columns().keep_readable({"00000000", "000000", "SL/TP (00000000)000", "00.00", "AUDNZD", "00000.00",
                                  "00000.00", "00000.00", "0000-00-00 00:00:00"});
  const auto side_of = [&form](const Row& row, std::size_t column) {
    return side(form.record_of(row), column);
  };
  list_->set_sides(side_of);
  list_->set_ink(
      [side_of](const Row& row, std::size_t column) { return theme::side_colour(side_of(row, column)); });
  list_->set_tip([&form](const Row& row, std::size_t) {
    const std::string note = frmPending::note(row);
    const auto* order = form.record_of(row);
    return (order == nullptr ? "" : frmPending::side_text(*order)) + (note.empty() ? "" : "\n") + note;
  });

  Binder binder{screen, *this};
  auto* cancel = new QPushButton;
  cancel->setObjectName(QStringLiteral("lbbCancel"));
  binder.bind(*cancel, form.lbbCancel);

  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 6, 10, 6);
  head->setSpacing(12);
  head->addWidget(cancel);
  head->addWidget(ListCount::of_ticked(form.lvwPending, screen), 1);

  auto* note = new ElidedLabel;
  note->setObjectName(QStringLiteral("note"));
  note->set_colour(QColor{theme::muted});
  binder.show([this, note] { note->set_text(current_note()); });

  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  column->addWidget(list_, 1);
  column->addLayout(make_foot(note));
  setFocusProxy(list_);
}

QString FrmPendingWindow::current_note() const {
  const Row* row = form_.lvwPending.current();
  if (row == nullptr) return {};
  const std::string note = frmPending::note(*row);
  if (note.empty()) return {};
  return QStringLiteral("Order %1: ").arg(row->key().number()) + QString::fromStdString(note);
}

void FrmPendingWindow::cancel_selected() {
  form_.lbbCancel.click();
  screen_.acted();
}

void FrmPendingWindow::edit_current() {
  if (Row* row = form_.lvwPending.current()) form_.edit(*row);
  screen_.acted();
}

}  // namespace tutti
