#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/numbers.h"
#include "dealer/link/dealing_server.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"

namespace tutti {

using Words = std::vector<std::string>;
inline constexpr std::int32_t first = 500'100;  // number of the first sample account
inline constexpr auto buy = operation::buy, sell = operation::sell;

// Name for one request more.
inline RequestId next_id() {
  static RequestId last = 0;
  return ++last;
}

// Writes down what a session is told: the events as words, the reports and positions as they came.
class DealerRecorder final : public CLAPICLASS {
 public:
  Words events;  // without prices, floating profits and times
  std::vector<OrderReport> reports;
  std::vector<OpenPosition> opened;
  std::vector<PendingOrder> orders;
  std::vector<Requote> requotes;
  std::vector<AccountSummary> summaries;
  std::vector<Execution> fills;
  int prices = 0;
  int floats = 0;
  double last_bid = 0.0;
  std::function<void()> on_report;

  void WaitingMode(ConnectionMode mode) override {
    events.push_back("waiting " + std::to_string(static_cast<int>(mode)));
  }
  void ConnectionState(bool connected) override {
    events.push_back(connected ? "connected" : "disconnected");
  }
  void SymbolsLoaded() override { events.emplace_back("symbols"); }
  void OpenPositionsLoaded() override { events.emplace_back("positions"); }
  void PendingOrdersLoaded() override { events.emplace_back("orders"); }
  void AllDataAreLoaded() override { events.emplace_back("all"); }
  void InvalidUsernamePassword() override { events.emplace_back("invalid"); }
  void SessionDisconnected() override { events.emplace_back("dropped"); }
  void PosFloatingPLChanged(const OpenPosition&) override { ++floats; }
  void SummariesChanged(const AccountSummary& summary) override {
    events.emplace_back("summary");
    summaries.push_back(summary);
  }
  void SymbolPricesChanged(const Symbol& symbol) override {
    ++prices;
    if (symbol.name == "EURUSD") last_bid = symbol.bid;
  }
  void NewOrderResult(const OrderReport& report) override { take("order ", report); }
  void CloseOrderResult(const OrderReport& report) override { take("close ", report); }
  void MarketOrderAccepted(const OrderReport& report) override { take("accepted ", report); }
  void MarketOrderRejected(const OrderReport& report) override { take("rejected ", report); }
  void NewLimitOrderResult(std::int64_t order, ResultCode code, RequestId id) override {
    note("entry ", order, code, id);
  }
  void DeleteLimitOrderResult(std::int64_t order, ResultCode code, RequestId id) override {
    note("cancel ", order, code, id);
  }
  void DeleteSLTPOrderResult(std::int64_t order, ResultCode code, RequestId id) override {
    note("stops ", order, code, id);
  }
  void UpdateLimitOrderResult(std::int64_t order, ResultCode code, RequestId id) override {
    note("update ", order, code, id);
  }
  void NewSLTPOrderResult(std::int64_t order, ResultCode code, RequestId id) override {
    note("new stops ", order, code, id);
  }
  void UpdateSLTPOrderResult(std::int64_t order, ResultCode code, RequestId id) override {
    note("update stops ", order, code, id);
  }
  void LimitOrderAccepted(const OrderReport& report) override { take("executed ", report); }
  void LimitOrderCanceledCannotHdg(std::int64_t id, std::int32_t) override {
    note("no hedging ", id, ResultCode::none);
  }
  void LimitOrderCanceledNoMoney(std::int64_t order, std::int32_t) override {
    note("no money ", order, ResultCode::none);
  }
  void SlTpOrderAccepted(std::int64_t order) override { note("stopped ", order, ResultCode::none); }
  void SlTpOrderCanceledNoMoney(std::int64_t order) override {
    note("not stopped ", order, ResultCode::none);
  }
  void NewPendingOrder(const PendingOrder& order) override {
    events.push_back("+" + std::string{order_kind::text(order.kind)});
    orders.push_back(order);
  }
  void DeletePendingOrder(const PendingOrder& order) override {
    events.push_back("-" + std::string{order_kind::text(order.kind)});
  }
  void OrderTimer(const Requote& requote) override {
    events.push_back("tick " + std::to_string(requote.seconds_left));
    requotes.push_back(requote);
  }
  void NewOpenPosition(const OpenPosition& position) override {
    events.emplace_back("opened");
    opened.push_back(position);
  }
  void UpdateOpenPosition(const OpenPosition&) override { events.emplace_back("changed"); }
  void DeleteOpenPosition(const OpenPosition&) override { events.emplace_back("deleted"); }
  void RequestTold(RequestId, RequestState state, double lots) override {
    const char* words[] = {"not told", "never taken", "waiting",   "working",     "partly",
                           "executed", "refused",     "cancelled", "another book"};
    events.push_back(std::string{words[static_cast<std::size_t>(state)]} + " " + number_text(lots));
  }
  void RequestRefused(RequestId, RequestCode code, std::string_view) override {
    events.push_back("refused " + std::to_string(format_as(code)));
  }
  void RequestUnsent(RequestId) override { events.emplace_back("unsent"); }
  void ExecutionsTold(std::span<const Execution> told, bool complete) override {
    events.emplace_back(complete ? "fills" : "some fills");
    fills.assign(told.begin(), told.end());
  }

 private:
  void note(const char* word, std::int64_t order, ResultCode result, RequestId id = 0) {
    OrderReport report;
    report.number = order;
    report.result = result;
    report.id = id;
    take(word, report);
  }
  void take(const char* word, const OrderReport& report) {
    const bool pending = report.state == order_state::pending;
    events.push_back(word + (pending ? "pending" : std::to_string(format_as(report.result))));
    reports.push_back(report);
    if (on_report) on_report();
  }
};

// A dealing server under a clock that is turned by hand.
struct DealerRig {
  // A client with its recorder; the client goes first.
  struct Seat {
    std::unique_ptr<DealerRecorder> seen = std::make_unique<DealerRecorder>();
    std::unique_ptr<ClientAPI> client;
  };

  explicit DealerRig(DealerConfig config, TimePoint start = ManualClock{}.now())
      : clock(start), server(std::move(config), clock) {}

  // Time goes by in one piece, and nothing of it is delivered yet.
  void let_pass(std::chrono::milliseconds time) {
    clock.advance(time);
    server.advance();
  }
  // Lets time go by, then delivers all there is.
  void run(std::int64_t milliseconds) {
    let_pass(std::chrono::milliseconds{milliseconds});
    drain();
  }
  // What a client was told since the last call and in the time that goes by now.
  Words heard(const Seat& seat, std::int64_t milliseconds) {
    run(milliseconds);
    return std::exchange(seat.seen->events, {});
  }
  void drain() {
    while (server.deliver_next()) {
    }
  }
  Seat seat(const LoginData& data) {
    Seat seat;
    seat.client = server.make_client();
    seat.client->set_sink(seat.seen.get());
    seat.client->SetLoginData(data);
    seat.client->Login();
    return seat;
  }
  // Logged in and quiet, nothing recorded.
  Seat trader(std::size_t account) {
    const AccountConfig& config = server.config().accounts[account];
    Seat result = seat({config.user, config.password, config.number, {}});
    run(300);
    *result.seen = {};
    return result;
  }
  static RequestCode send(const Seat& seat, Operation side, const char* symbol, double amount) {
    const Symbol* found = seat.client->FindSymbol(symbol);
    return seat.client->NewMarketOrder(side, found != nullptr ? found->id : 0, amount, "", "", next_id());
  }

  ManualClock clock;
  DealingServer server;
};

// Prices that only move by hand: one far tick stands for the random walk.
inline DealerConfig still_market(int accounts = 3) {
  DealerConfig config = DealerConfig::sample(accounts);
  config.ticks = {{std::chrono::hours{24}, "EURUSD", 2.0, 2.0002}};
  return config;
}

inline FaultConfig fault(FaultKind kind, std::vector<FaultPoint> on, int code = 0,
                         std::chrono::milliseconds wait = {}, std::vector<std::int32_t> accounts = {}) {
  FaultConfig fault;
  fault.kind = kind;
  fault.accounts = std::move(accounts);
  fault.on = std::move(on);
  fault.code = code;
  fault.wait = wait;
  return fault;
}

// What a successful login tells.
inline const Words login_words = {"waiting 2", "connected", "symbols",   "positions",
                                  "orders",    "summary",   "waiting 0", "all"};

// 0 is none.
inline StopPrices stop_prices(double stop_loss, double take_profit) {
  return {stop_loss, take_profit, stop_loss != 0.0, take_profit != 0.0};
}

inline RequestCode enter(const DealerRig::Seat& seat, Operation side, EntryKind kind, double amount,
                         double price, double stop_loss = 0, double take_profit = 0,
                         const char* symbol = "EURUSD") {
  return seat.client->NewEntryOrder({side, kind, seat.client->FindSymbol(symbol)->id, amount, price,
                                     stop_loss, take_profit, stop_loss != 0, take_profit != 0},
                                    next_id());
}

// A position of half a lot and its ticket; nothing is recorded.
inline std::int64_t open_half(DealerRig& rig, const DealerRig::Seat& seat, Operation side) {
  DealerRig::send(seat, side, "EURUSD", 0.5);
  rig.run(200);
  *seat.seen = {};
  return seat.client->OpenPositionItem(1)->ticket;
}

}  // namespace tutti
