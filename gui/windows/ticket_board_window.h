#pragma once

#include <QWidget>

#include "views/ticket_board.h"

class QSplitter;

namespace tutti {

class RowListView;
class Screen;
class TicketPictureView;

// Ticket board: the tickets, and beside or below them the requests of the one that is selected with a picture
// of its fills, where there is room for it.
class TicketBoardWindow final : public QWidget {
 public:
  TicketBoardWindow(TicketBoard& form, Screen& screen);

  RowListView& list() { return *list_; }
  RowListView& requests() { return *requests_; }
  TicketPictureView& picture() { return *picture_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* make_requests(Screen& screen);
  // The picture below or beside the requests.
  void fit_picture();

  TicketBoard& form_;
  QSplitter* parts_;
  RowListView* list_;
  RowListView* requests_;
  QSplitter* opened_;  // the requests and the picture
  TicketPictureView* picture_;
};

}  // namespace tutti
