#include "orders/order_answer.h"

#include <utility>

namespace tutti {

OrderAnswer answer_from(SentOrder::Outcome outcome) {
  switch (outcome) {
    case SentOrder::Outcome::held:
      return OrderAnswer::held;
    case SentOrder::Outcome::queued:
    case SentOrder::Outcome::waiting:
    case SentOrder::Outcome::pending:
    case SentOrder::Outcome::partly:
      return OrderAnswer::waiting;
    case SentOrder::Outcome::accepted:
      return OrderAnswer::accepted;
    case SentOrder::Outcome::refused:
    case SentOrder::Outcome::dropped:
      return OrderAnswer::refused;
    default:
      return OrderAnswer::unknown;
  }
}

void OrderAnswers::count(OrderAnswer answer) {
  switch (answer) {
    case OrderAnswer::accepted:
      ++accepted;
      break;
    case OrderAnswer::refused:
      ++refused;
      break;
    case OrderAnswer::held:
      ++held;
      break;
    case OrderAnswer::waiting:
      ++waiting;
      break;
    case OrderAnswer::unknown:
      ++unknown;
      break;
    default:
      break;
  }
}

std::string unknown_before_text(int count) {
  return count > 0 ? std::to_string(count) + " unknown of earlier rounds" : "";
}

std::string OrderAnswers::text() const {
  std::string out;
  for (const auto& [count, word] :
       {std::pair{accepted, " accepted"}, std::pair{refused, " refused"}, std::pair{held, " held"},
        std::pair{waiting, " waiting"}, std::pair{unknown, " unknown"}}) {
    if (count > 0) out += (out.empty() ? "" : ", ") + std::to_string(count) + word;
  }
  const std::string before = unknown_before_text(unknown_before);
  return out + (out.empty() || before.empty() ? "" : ", ") + before;
}

}  // namespace tutti
