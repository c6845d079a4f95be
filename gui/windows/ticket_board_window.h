#pragma once

#include <QWidget>

#include "views/ticket_board.h"

class QSplitter;

namespace tutti {

class RowListView;
class Screen;

// Ticket board: the tickets, and beside or below them the requests of the one that is selected.
class TicketBoardWindow final : public QWidget {
 public:
  TicketBoardWindow(TicketBoard& form, Screen& screen);

  RowListView& list() { return *list_; }
  RowListView& requests() { return *requests_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* make_requests(Screen& screen);

  TicketBoard& form_;
  QSplitter* parts_;
  RowListView* list_;
  RowListView* requests_;
};

}  // namespace tutti
