#include "gui/windows/ticket_board_window.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>

#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/row_list_view.h"
#include "gui/windows/ticket_picture_view.h"

namespace tutti {

namespace {

using TicketColumn = TicketBoard::Column;
using RequestColumn = TicketBoard::RequestColumn;

constexpr int side_by_side = 900;  // from this width on the requests stand beside the tickets
// Of the requests: from this height on the picture stands below them, from this width on else beside them.
constexpr int picture_below = 200;
constexpr int picture_beside = 620;

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
  auto* change = named(new QPushButton, "change_orders");
  binder.bind(*change, form_.change_orders);
  auto* cancel = named(new QPushButton, "cancel_orders");
  binder.bind(*cancel, form_.cancel_orders);
  auto* retry = named(new QPushButton, "retry");
  binder.bind(*retry, form_.retry);
  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 3, 10, 3);
  head->setSpacing(12);
  head->addWidget(head_text, 1);
  head->addWidget(change);
  head->addWidget(cancel);
  head->addWidget(retry);
  // Another key than the one that presses everything else, and none that comes by the way.
  auto* settled = named(new QPushButton, "retry_settled");
  settled->setToolTip(QStringLiteral("Ctrl+F10"));
  settled->setFocusPolicy(Qt::NoFocus);
  binder.bind(*settled, form_.retry_settled);
  head->addWidget(settled);
  auto* key = new QShortcut{QKeySequence{Qt::CTRL | Qt::Key_F10}, this};
  key->setContext(Qt::WidgetWithChildrenShortcut);
  key->setAutoRepeat(false);
  connect(key, &QShortcut::activated, this, [this, &screen] {
    form_.retry_settled.click();
    screen.acted();
  });
  auto* part = new QWidget;
  auto* column = new QVBoxLayout{part};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  picture_ = new TicketPictureView{form_, screen};
  opened_ = new QSplitter{Qt::Vertical};
  opened_->setChildrenCollapsible(false);
  opened_->addWidget(requests_);
  opened_->addWidget(picture_);
  picture_->hide();
  opened_->setStretchFactor(0, 1);
  opened_->setStretchFactor(1, 1);
  column->addWidget(opened_, 1);
  binder.show([this] { fit_picture(); });
  return part;
}

void TicketBoardWindow::fit_picture() {
  const bool below = opened_->height() >= picture_below;
  const bool beside = !below && opened_->width() >= picture_beside;
  const auto wanted = beside ? Qt::Horizontal : Qt::Vertical;
  if (opened_->orientation() != wanted) opened_->setOrientation(wanted);
  const bool room = below || beside;
  if (picture_->isHidden() == room) picture_->setVisible(room);
}

void TicketBoardWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const auto wanted = width() >= side_by_side ? Qt::Horizontal : Qt::Vertical;
  if (parts_->orientation() != wanted) parts_->setOrientation(wanted);
}

}  // namespace tutti
