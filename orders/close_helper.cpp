#include "orders/close_helper.h"

#include <fmt/format.h>

#include "accounts/frmMain.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

// "row 01 BOB"
std::string row_name(const CClientAPIManager& session) {
  return fmt::format("row {:02} {}", session.key(), upper(session.user()));
}

}  // namespace

bool CloseHelper::close(std::int64_t ticket, double amount, std::int32_t account) {
  CClientAPIManager* session = sessions_.by_account(account);
  if (session == nullptr) return false;
  const auto position = [ticket] { return "Unable to close position #" + std::to_string(ticket); };
  if (!session->ClientAPIF().LoggedIn()) {
    if (const CClientAPIManager* other = sessions_.logged_in(account)) {
      report(position() + ", account " + std::to_string(account) + ": " + row_name(*session) +
                 " of the accounts list is not logged in, only " + row_name(*other) +
                 " is. Closes go by the first row of an account number: log that one in or remove "
                 "it, then close again",
             account);
      return false;
    }
  }
  switch (session->close_position(ticket, amount).request_code) {
    case request::no_privilege:
      report(position() + ", account " + std::to_string(account) + " does not have privilege", account);
      break;
    case request::invalid_lots:
      report(position() + ", The amount: " + number_text(amount) + " is invalid", account);
      break;
    default:
      break;
  }
  return true;
}

void CloseHelper::report(const std::string& text, std::int32_t account) {
  general_.log(text, account);
  general_.queue_message(text);
}

}  // namespace tutti
