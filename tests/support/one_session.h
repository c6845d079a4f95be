#pragma once

#include <gtest/gtest.h>

#include <string>

#include "sessions/contract/codes.h"
#include "tests/support/session_rig.h"

namespace tutti::testing {

// Where a session of account 81 writes about order and ticket 12.
inline const std::string in_journal = "journal 81: ", in_pending = "pending 12: ";

// One session on a scripted client that has an order, of number 12, and a position.
struct OneSession {
  OneSession() {
    client.orders = {{.order = 12,
                      .account = 81,
                      .kind = OrderKind::entry,
                      .reference = 13,
                      .operation = operation::buy,
                      .symbol = "EURUSD",
                      .amount = 0.5}};
    client.positions = {{.ticket = 13, .account = 81, .floating_pl = -12.5, .symbol = "EURUSD"}};
  }

  Heard during(const std::function<void()>& step) { return rig.during(step); }
  void writes(const std::function<void()>& step, const Heard& lines) {
    EXPECT_EQ(during(step), sorted(lines));
  }
  void send(Operation side = operation::buy) { session.market_order(side, no_symbol, 0.5); }
  static OrderReport report(int result, int state, Operation operation = operation::buy) {
    return {.number = 12,
            .account = 81,
            .result = ResultCode{result},
            .state = OrderState{state},
            .operation = operation,
            .amount = 0.5,
            .symbol = "EURUSD",
            .price = 1.0845};
  }
  const AccountEntry::Shown& shown() const { return session.ClientListItem().shown; }

  SessionRig rig;
  CClientAPIManager& session = rig.add(81);
  ScriptedClient& client = rig.client(session);
  CLAPICLASS& sink = *client.sink;
};

}  // namespace tutti::testing
