#include "orders/frmHeld.h"

#include <fmt/format.h>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

frmHeld::frmHeld(MGeneral& general, CClientAPIManagers& sessions) : general_(general), sessions_(sessions) {
  cmdSend.on_click = [this] { answer(true); };
  cmdDrop.on_click = [this] { answer(false); };
}

void frmHeld::refresh() {
  const auto& held = sessions_.admission().held();
  lvwHeld.clear();
  if (held.empty()) {
    number_ = 0;
    return Displayed(false);
  }
  const HeldTicket& ticket = held.front();
  if (ticket.number != number_) txtReason.set_text("");
  number_ = ticket.number;
  shown_since_ = general_.clock.elapsed();
  double lots = 0.0;
  for (const SentOrder* each : ticket.asked.requests)
    lots += each->amount;
  lblHeld.set_text(fmt::format(
      "Nothing of {} was sent: {} request{}, {} lots together{}",
      ticket.breaches.front().limit == Limit::unknown ? "what concerns these accounts" : "this order",
      ticket.asked.size(), ticket.asked.size() == 1 ? "" : "s", number_text(lots_of_sum(lots)),
      held.size() > 1 ? fmt::format(". {} more wait behind it", held.size() - 1) : ""));
  for (const limits::Breach& each : ticket.breaches) {
    Row& row = *lvwHeld.add({});
    if (each.account != no_account) row.set_whole(Column::account, each.account);
    const std::string text = limits::text(each);
    const auto colon = each.account == no_account ? std::string::npos : text.find(": ");
    row.set_text(Column::why, colon == std::string::npos ? text : text.substr(colon + 2));
  }
  Displayed(true);
}

void frmHeld::answer(bool send) {
  if (number_ == 0 || buttons_dead()) return;
  if (!send) return sessions_.admission().refuse(number_);
  const std::string reason{trim(txtReason.text())};
  sessions_.send_held(number_, reason.empty() ? "second key" : reason);
}

}  // namespace tutti
