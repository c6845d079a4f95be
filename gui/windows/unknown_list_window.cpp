#include "gui/windows/unknown_list_window.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/row_list_view.h"

namespace tutti {

UnknownListWindow::UnknownListWindow(UnknownList& form, Screen& screen)
    : list_(named(new RowListView{form.lvwUnknown,
                                  screen,
                                  {UnknownList::account, UnknownList::lots, UnknownList::number,
                                   UnknownList::request}},
                  "lvwUnknown")) {
  // The operator's word is about one.
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  list_->columns().keep_readable({"0000-00-00 00:00:00", "000000", "ALDERS", "Market order", "Sell limit",
                                  "000.00", "AUDNZD", "00000000", "crash", "000000000000000000"});
  add_empty_hint(*list_, screen, QStringLiteral("The outcome of everything is known"));
  Binder binder{screen, *this};
  auto* head_text = named(new ElidedLabel, "unknown_head");
  head_text->set_colour(QColor{theme::muted});
  binder.show([&form, head_text] { head_text->set_text(QString::fromStdString(form.head.text())); });
  auto* note = named(new QLineEdit, "settle_note");
  note->setPlaceholderText(QStringLiteral("How do you know?"));
  note->setMaximumWidth(260);
  binder.bind(*note, form.note);
  auto* executed = named(new QPushButton, "executed");
  binder.bind(*executed, form.executed);
  auto* not_executed = named(new QPushButton, "not_executed");
  binder.bind(*not_executed, form.not_executed);
  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 6, 10, 6);
  head->setSpacing(12);
  head->addWidget(head_text, 1);
  head->addWidget(note, 1);
  head->addWidget(executed);
  head->addWidget(not_executed);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  column->addWidget(list_, 1);
  setFocusProxy(list_);
}

}  // namespace tutti
