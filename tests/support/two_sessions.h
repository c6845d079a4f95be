#pragma once

#include <gtest/gtest.h>

#include <chrono>

#include "tests/support/one_session.h"

namespace tutti::testing {

// Two sessions on scripted clients, whose answers name requests or don't.
struct Requests : ::testing::Test {
  Requests() {
    for (const auto& session : rig.sessions.Children()) {
      rig.client(*session).symbols = {{.id = 3, .name = "EURUSD"}};
      rig.during([&] { rig.client(*session).sink->SymbolsLoaded(); });
    }
  }
  CLAPICLASS& sink(CClientAPIManager& session) { return *rig.client(session).sink; }
  const SentOrder& buy(CClientAPIManager& session, double lots = 0.5) {
    return session.market_order(operation::buy, rig.books.symbols.find("EURUSD"), lots);
  }
  // An answer to an order of half a lot, as it names the request.
  void answer(CClientAPIManager& session, RequestId id, std::int64_t number,
              OrderState state = order_state::executed, double left = 0.0) {
    OrderReport report = OneSession::report(1, format_as(state));
    report.number = number;
    report.account = session.account();
    report.id = id;
    report.left = left;
    heard = rig.during([&] { sink(session).NewOrderResult(report); });
  }
  // Half a minute goes by; what is written then.
  Heard wait(std::chrono::milliseconds time = 30s) {
    rig.clock.advance(time);
    return rig.during([&] { rig.sessions.look_at_the_clock(); });
  }

  SessionRig rig;
  CClientAPIManager& one = rig.add(81);
  CClientAPIManager& two = rig.add(82);
  Heard heard;
};

}  // namespace tutti::testing
