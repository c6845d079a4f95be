#pragma once

#include <QDialog>

#include "orders/ticket_orders_form.h"

class QLineEdit;

namespace tutti {

class Screen;

// New prices for the entry orders of a ticket, in front of the main window. Esc closes it.
class TicketOrdersWindow final : public QDialog {
 public:
  TicketOrdersWindow(TicketOrdersForm& form, Screen& screen, QWidget* parent);

  // Esc, and the frame's close button.
  void reject() override;

 private:
  void follow();

  TicketOrdersForm& form_;
  Screen& screen_;
  QLineEdit* price_ = nullptr;
};

}  // namespace tutti
