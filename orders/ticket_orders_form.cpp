#include "orders/ticket_orders_form.h"

#include <fmt/format.h>

#include <utility>

#include "accounts/frmMain.h"
#include "core/numbers.h"

namespace tutti {

TicketOrdersForm::TicketOrdersForm(MGeneral& general, TicketOrders& orders)
    : general_(general), orders_(orders) {
  for (TextBox* box : {&price, &stop_loss, &take_profit})
    box->on_key = frmMain::askycodekeypress;
  change.on_click = [this] { press(); };
  close.on_click = [this] { Displayed(false); };
}

void TicketOrdersForm::open(std::int64_t ticket, std::vector<TicketRequest> requests) {
  ticket_ = ticket;
  requests_ = std::move(requests);
  for (TextBox* box : {&price, &stop_loss, &take_profit})
    box->set_text("");
  head.set_text(orders_.reach_text(ticket_, requests_));
  Displayed(true);
}

void TicketOrdersForm::press() {
  OrderChange to;
  const struct {
    const char* name;
    const TextBox& box;
    std::optional<double>& into;
    bool may_be_zero;
  } fields[] = {{"At price", price, to.price, false},
                {"SL", stop_loss, to.stop_loss, true},
                {"TP", take_profit, to.take_profit, true}};
  for (const auto& [name, box, into, may_be_zero] : fields) {
    if (box.text().empty()) continue;
    into = parse_number(box.text());
    if (!into || *into < 0.0 || (*into == 0.0 && !may_be_zero))
      return general_.message_box(
          fmt::format("{}: must be a number above 0{}", name, may_be_zero ? ", or 0 to take it off" : ""));
  }
  if (!to.price && !to.stop_loss && !to.take_profit)
    return general_.message_box("Nothing is changed: type a price, SL or TP");
  if (!orders_.change(ticket_, requests_, to).empty()) return Displayed(false);
  head.set_text(orders_.reach_text(ticket_, requests_));
}

}  // namespace tutti
