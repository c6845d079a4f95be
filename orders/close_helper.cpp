#include "orders/close_helper.h"

#include <fmt/format.h>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

// "row 01 BOB"
std::string row_name(const CClientAPIManager& session) {
  return fmt::format("row {:02} {}", session.key(), upper(session.user()));
}

std::string unable(std::int64_t ticket) {
  return "Unable to close position #" + std::to_string(ticket);
}

}  // namespace

bool CloseHelper::close(std::int64_t ticket, double amount, std::int32_t account) {
  CClientAPIManager* session = sessions_.by_account(account);
  if (session == nullptr) return false;
  if (!session->ClientAPIF().LoggedIn()) {
    if (const CClientAPIManager* other = sessions_.logged_in(account)) {
      report(unable(ticket) + ", account " + std::to_string(account) + ": " + row_name(*session) +
                 " of the accounts list is not logged in, only " + row_name(*other) +
                 " is. Closes go by the first row of an account number: log that one in or remove "
                 "it, then close again",
             account);
      return false;
    }
  }
  session->close_position(ticket, amount, [this](const SentOrder& sent) { report_refusal(sent); });
  return true;
}

void CloseHelper::report_refusal(const SentOrder& sent) {
  switch (sent.request_code) {
    case request::no_privilege:
      return report(
          unable(sent.number) + ", account " + std::to_string(sent.account) + " does not have privilege",
          sent.account);
    case request::invalid_lots:
      return report(unable(sent.number) + ", The amount: " + number_text(sent.amount) + " is invalid",
                    sent.account);
    default:
      return;
  }
}

void CloseHelper::report(const std::string& text, std::int32_t account) {
  notices_.log(text, account);
  notices_.queue_message(text);
}

}  // namespace tutti
