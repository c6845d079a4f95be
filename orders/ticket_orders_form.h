#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/button.h"
#include "core/displayable.h"
#include "core/label.h"
#include "core/text_box.h"
#include "orders/ticket_orders.h"

namespace tutti {

// New prices for the entry orders of a ticket, typed once. An empty box leaves what each order has; 0 takes
// its stop loss or take profit off.
class TicketOrdersForm final : public Displayable {
 public:
  TicketOrdersForm(MGeneral& general, TicketOrders& orders);

  // Which orders.
  Label head;
  TextBox price;
  TextBox stop_loss;
  TextBox take_profit;
  Button change{"Change..."};
  Button close{"Close"};

  // Empties the boxes and shows itself. `requests`: all of the ticket's, as the ledger has them.
  void open(std::int64_t ticket, std::vector<TicketRequest> requests);

 private:
  void press();

  MGeneral& general_;
  TicketOrders& orders_;
  std::int64_t ticket_ = 0;
  std::vector<TicketRequest> requests_;
};

}  // namespace tutti
