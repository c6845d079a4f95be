#include "sessions/contract/codes.h"

namespace tutti::request {

std::string_view text(RequestCode code) {
  switch (code) {
    case no_privilege:
      return "No Privilege ";
    case invalid_account:
      return "Invalid Account ";
    case cannot_change_price:
      return "Cannot Change Price ";
    case timer_expired:
      return "Timer Expired";
    case invalid_ticket:
      return "Invalid Ticket";
    case invalid_lots:
      return "Invalid Lots";
    case invalid_order_id:
      return "Invalid Order ID";
    case invalid_price:
      return "Invalid Price";
    default:
      return "";
  }
}

}  // namespace tutti::request
