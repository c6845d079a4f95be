#include "gui/windows/ticket_board_window.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QSplitter>

#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

using TicketColumn = TicketBoard::Column;
using RequestColumn = TicketBoard::RequestColumn;

constexpr int side_by_side = 900;  // from this width on the requests stand beside the tickets

Side side(const Row& row, std::size_t column) {
  if (column != TicketColumn::side) return Side::none;
  const std::string text = row.text(column);
  return text.empty() ? Side::none : text.starts_with("Buy") ? Side::buy : Side::sell;
}

}  // namespace

TicketBoardWindow::TicketBoardWindow(TicketBoard& form, Screen& screen) : form_(form) {
  list_ = named(
      new RowListView{
          form.lvwTickets, screen, {TicketColumn::ticket, TicketColumn::lots, TicketColumn::price}},
      "lvwTickets");
  // The requests of one are listed.
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  list_->set_sides(side);
  list_->set_ink([](const Row& row, std::size_t column) { return theme::side_colour(side(row, column)); });
  list_->columns().keep_readable({"0000-00-00 00:00:00", "Sell limit00", "AUDNZD", "00000.00",
                                  "000 filled 000.0 lots at 0.00000", "Change of orders", "00000.00",
                                  "00000"});
  add_empty_hint(*list_, screen, QStringLiteral("Nothing was sent yet"));
  auto* older = named(new QPushButton, "older");
  Binder{screen, *this}.bind(*older, form.older);
  auto* tickets = new QWidget;
  auto* left = new QVBoxLayout{tickets};
  left->setContentsMargins(0, 0, 0, 0);
  left->setSpacing(0);
  left->addWidget(list_, 1);
  left->addWidget(older, 0, Qt::AlignLeft);

  parts_ = new QSplitter{Qt::Horizontal};
  parts_->setChildrenCollapsible(false);
  parts_->addWidget(tickets);
  QWidget* requests = make_requests(screen);
  parts_->addWidget(requests);
  parts_->setStretchFactor(0, 11);
  parts_->setStretchFactor(1, 9);
  // Until a ticket is opened the tickets have all the room.
  Binder{screen, *this}.show([&form, requests] {
    if (requests->isHidden() == (form.opened() != 0)) requests->setVisible(form.opened() != 0);
  });
  requests->hide();
  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(parts_);
  setFocusProxy(list_);
}

QWidget* TicketBoardWindow::make_requests(Screen& screen) {
  requests_ = named(new RowListView{form_.lvwRequests,
                                    screen,
                                    {RequestColumn::account, RequestColumn::share, RequestColumn::fill_price,
                                     RequestColumn::slippage, RequestColumn::answered, RequestColumn::order}},
                    "lvwRequests");
  requests_->columns().keep_readable({"filled in part", "000000", "ALDERS", "000.00", "0.00000", "-0.00000",
                                      "00000", "00000000", "Invalid Price"});
  auto* head_text = named(new ElidedLabel, "ticket_head");
  head_text->set_colour(QColor{theme::muted});
  Binder binder{screen, *this};
  binder.show([this, head_text] { head_text->set_text(QString::fromStdString(form_.head.text())); });
  auto* retry = named(new QPushButton, "retry");
  binder.bind(*retry, form_.retry);
  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 3, 10, 3);
  head->setSpacing(12);
  head->addWidget(head_text, 1);
  head->addWidget(retry);
  auto* part = new QWidget;
  auto* column = new QVBoxLayout{part};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  column->addWidget(requests_, 1);
  return part;
}

void TicketBoardWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const auto wanted = width() >= side_by_side ? Qt::Horizontal : Qt::Vertical;
  if (parts_->orientation() != wanted) parts_->setOrientation(wanted);
}

}  // namespace tutti
