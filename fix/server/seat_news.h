#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "fix/dialect/news_encoder.h"
#include "fix/server/account_memory.h"
#include "fix/server/seat_wire.h"
#include "fix/server/server_settings.h"
#include "sessions/contract/CLAPICLASS.h"
#include "sessions/contract/ClientAPI.h"

namespace tutti {

// What the trading client of a seat tells, as messages. Until it is begun, only how the login ends is passed
// on.
class SeatNews final : public CLAPICLASS {
 public:
  // All are kept by reference. `own_fields`: the other end knows the fields of our own.
  SeatNews(const ServerSettings& settings, ClientAPI& client, AccountMemory& memory, std::int32_t account,
           bool own_fields, SeatWire& wire);

  // From now on everything is told; and nothing any more.
  void begin() { on_ = true; }
  void end() { on_ = false; }
  bool on() const { return on_; }

  // What the other end wants to be told as it changes.
  void want_price(const std::string& symbol) { priced_[symbol] = {}; }
  void want_positions() { positions_wanted_ = true; }
  void want_orders() { orders_wanted_ = true; }
  void want_summary() { summary_wanted_ = true; }
  // Tells what waited until a slow reader had caught up. Once a second.
  void catch_up();

  void tell(const WireNews& news, std::string_view stamp = {});
  void tell_price(const Symbol& symbol, std::string_view stamp = {});
  void tell_summary(std::string_view stamp = {});
  double size_of(std::string_view symbol) const;

 private:
  const PendingOrder* order(std::int64_t number) const;
  bool slow() const { return wire_.unsent() > settings_.slow_from; }
  void tell_position(const OpenPosition& position, bool gone);
  void tell_order(const PendingOrder& order, bool gone);
  void tell_report(Answer answer, OrderReport report);
  void tell_result(Answer answer, std::int64_t order, ResultCode result, RequestId id);

  void AllDataAreLoaded() override {
    if (!on_) wire_.on_loaded();
  }
  void InvalidUsernamePassword() override { wire_.on_refused("BAD_PASSWORD"); }
  void ConnectionState(bool connected) override {
    if (!connected && !on_) wire_.on_refused("UNAVAILABLE");
  }
  void SessionDisconnected() override { wire_.on_ended(); }
  void SymbolPricesChanged(const Symbol& symbol) override { tell_price(symbol); }
  void SymbolHighLowChanged(const Symbol& symbol) override { tell_price(symbol); }
  void NewOpenPosition(const OpenPosition& position) override { tell_position(position, false); }
  void UpdateOpenPosition(const OpenPosition& position) override { tell_position(position, false); }
  void DeleteOpenPosition(const OpenPosition& position) override { tell_position(position, true); }
  void NewPendingOrder(const PendingOrder& order) override { tell_order(order, false); }
  void DeletePendingOrder(const PendingOrder& order) override { tell_order(order, true); }
  void NewOrderResult(const OrderReport& report) override { tell_report(Answer::order, report); }
  void CloseOrderResult(const OrderReport& report) override { tell_report(Answer::close, report); }
  void MarketOrderAccepted(const OrderReport& report) override { tell_report(Answer::accepted, report); }
  void MarketOrderRejected(const OrderReport& report) override { tell_report(Answer::rejected, report); }
  void LimitOrderAccepted(const OrderReport& report) override { tell_report(Answer::entry_done, report); }
  void NewLimitOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    tell_result(Answer::entry, order, result, id);
  }
  void UpdateLimitOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    tell_result(Answer::update_entry, order, result, id);
  }
  void DeleteLimitOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    tell_result(Answer::cancel_entry, order, result, id);
  }
  void NewSLTPOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    tell_result(Answer::new_stops, order, result, id);
  }
  void UpdateSLTPOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    tell_result(Answer::update_stops, order, result, id);
  }
  void DeleteSLTPOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    tell_result(Answer::cancel_stops, order, result, id);
  }
  void LimitOrderCanceledCannotHdg(std::int64_t order, std::int32_t) override {
    tell_result(Answer::entry_no_hedging, order, result::hedging_not_allowed, 0);
  }
  void LimitOrderCanceledNoMoney(std::int64_t order, std::int32_t) override {
    tell_result(Answer::entry_no_money, order, result::not_enough_money, 0);
  }
  void SlTpOrderAccepted(std::int64_t order) override {
    tell_result(Answer::stops_done, order, result::succeeded, 0);
  }
  void SlTpOrderCanceledNoMoney(std::int64_t order) override {
    tell_result(Answer::stops_no_money, order, result::not_enough_money, 0);
  }
  void OrderTimer(const Requote& requote) override;
  void ServerTime(TimePoint time) override { tell(news::Time{time}); }
  void SummariesChanged(const AccountSummary&) override;
  void RequestTold(RequestId id, RequestState state, double lots) override;
  void RequestRefused(RequestId id, RequestCode code, std::string_view text) override;
  void ExecutionsTold(std::span<const Execution> fills, bool complete) override;

  const ServerSettings& settings_;
  ClientAPI& client_;
  AccountMemory& memory_;
  SeatWire& wire_;
  NewsEncoder encoder_;
  const std::int32_t account_;
  const bool own_fields_;
  bool on_ = false;
  std::map<std::string, news::Price, std::less<>> priced_;  // as it was told last
  bool positions_wanted_ = false;
  bool orders_wanted_ = false;
  bool summary_wanted_ = false;
  std::set<std::string, std::less<>> late_prices_;  // that wait until a slow reader has caught up
  bool late_summary_ = false;
  std::set<std::int64_t> offered_;  // orders with a new price that was told
};

}  // namespace tutti
