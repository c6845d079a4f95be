#include "sessions/contract/codes.h"

namespace tutti {
namespace {

struct KindText {
  OrderKind kind = OrderKind::none;
  std::string_view text;
};
constexpr KindText kind_texts[] = {
    {OrderKind::open, "OP"},
    {OrderKind::close, "CP"},
    {OrderKind::entry, "LO"},
    {OrderKind::stops, "ST"},
};

}  // namespace

std::string_view order_kind::text(OrderKind kind) {
  for (const KindText& each : kind_texts)
    if (each.kind == kind) return each.text;
  return {};
}

OrderKind order_kind::of_text(std::string_view text) {
  for (const KindText& each : kind_texts)
    if (each.text == text) return each.kind;
  return OrderKind::none;
}

std::string_view request::text(RequestCode code) {
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

}  // namespace tutti
