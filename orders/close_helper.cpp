#include "orders/close_helper.h"

#include "core/numbers.h"

namespace tutti {

void CloseHelper::close(std::int64_t ticket, double amount, std::int32_t account) {
  CClientAPIManager* session = sessions_.by_account(account);
  if (session == nullptr) return;
  const std::string position = "Unable to close position #" + std::to_string(ticket);
  switch (session->close_position(ticket, amount)) {
    case request::no_privilege:
      report(position + ", account " + std::to_string(account) + " does not have privilege", account);
      break;
    case request::invalid_lots:
      report(position + ", The amount: " + number_text(amount) + " is invalid", account);
      break;
    default:
      break;
  }
}

void CloseHelper::report(const std::string& text, std::int32_t account) {
  general_.log(text, account);
  general_.queue_message(text);
}

}  // namespace tutti
