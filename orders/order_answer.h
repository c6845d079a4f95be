#pragma once

#include <string>

#include "books/sent_order.h"

namespace tutti {

// What became of an account's orders of one round of an order window. Orders at the dealer's hand are
// waiting.
enum class OrderAnswer {
  none,      // no order in this round
  left_out,  // no order: the account was refused before anything was sent, Result says why
  waiting,
  accepted,
  refused,
  unknown,  // the connection was lost before the result came, or none came in time
  held,     // over a limit: it leaves when the operator says so
};

OrderAnswer answer_from(SentOrder::Outcome outcome);

// "2 unknown of earlier rounds"; empty for 0.
std::string unknown_before_text(int count);

// How many accounts have each answer, those whose row has gone meanwhile among them.
struct OrderAnswers {
  int accepted = 0;
  int refused = 0;
  int held = 0;
  int waiting = 0;
  int unknown = 0;
  int unknown_before = 0;  // requests of earlier rounds

  // One account more; `none` and `left_out` are not counted.
  void count(OrderAnswer answer);
  // "487 accepted, 9 refused, 4 waiting, 2 unknown, 1 unknown of earlier rounds", without the parts that are
  // 0.
  std::string text() const;
};

}  // namespace tutti
