#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "fix/dialect/ask_codec.h"
#include "fix/dialect/news_encoder.h"
#include "fix/dialect/wire_request.h"
#include "fix/server/account_memory.h"
#include "fix/server/server_settings.h"
#include "fix/session/fix_session.h"
#include "fix/wire/byte_receiver.h"
#include "fix/wire/byte_stream.h"
#include "sessions/contract/CLAPICLASS.h"
#include "sessions/contract/ClientAPI.h"

namespace tutti {

// One connection at the server: what comes over it becomes calls of a trading client, and that client's
// events become messages. It sees nothing but the contract.
class FixSeat final : public ByteReceiver, private CLAPICLASS {
 public:
  // What a seat has from its server. All are kept by reference.
  struct Host {
    const ServerSettings& settings;
    const FixDictionary& dictionary;
    const std::function<std::unique_ptr<ClientAPI>()>& make_client;
    const std::function<AccountMemory&(std::int32_t account)>& memory;
    const std::function<void(std::string)>& remark;
    const std::function<void()>& wake;  // something came in
  };

  FixSeat(const Host& host, std::unique_ptr<ByteStream> stream, std::string_view address);
  ~FixSeat() override;

  // About once a second.
  void tick();
  // Nothing comes from it any more, and it may go.
  bool over() const { return over_; }
  bool on() const { return on_; }
  // Logs the account out, in these words.
  void end(std::string_view why);

  void on_open() override {}
  void on_bytes(std::string_view bytes) override;
  void on_closed(std::string_view why) override;

 private:
  void pump();
  void hear(const session_event::LogonAsked& asked);
  void hear(const session_event::LoggedOn&);
  void hear(const session_event::Received& received);
  void hear(const session_event::Rejected& rejected);
  void hear(const session_event::Trouble& trouble);
  void hear(const session_event::Silence&) {}
  void hear(const session_event::Ended& ended);
  void remark(std::string_view text) const;
  void leave();

  void carry_out(const ask::Symbols&, const FixMessage& message);
  void carry_out(const ask::Prices& prices, const FixMessage& message);
  void carry_out(const ask::Positions&, const FixMessage& message);
  void carry_out(const ask::Orders&, const FixMessage& message);
  void carry_out(const ask::Summary&, const FixMessage& message);
  void carry_out(const ask::Request& request, const FixMessage& message);
  void carry_out(const ask::Fills& fills, const FixMessage& message);
  void carry_out(const WireRequest& asked, const FixMessage& message);
  RequestCode perform(WireRequest& request);
  double lots_of(const UnitsAsked& asked) const;
  double size_of(std::string_view symbol) const;
  const OpenPosition* position(std::int64_t ticket) const;
  const PendingOrder* order(std::int64_t number) const;
  news::SymbolEntry entry_of(const Symbol& symbol) const;

  void tell(const WireNews& news, std::string_view stamp = {});
  void tell_price(const Symbol& symbol, std::string_view stamp = {});
  void tell_summary(std::string_view stamp = {});
  void tell_position(const OpenPosition& position, bool gone);
  void tell_order(const PendingOrder& order, bool gone);
  void tell_report(Answer answer, OrderReport report);
  void tell_result(Answer answer, std::int64_t order, ResultCode result, RequestId id);

  void AllDataAreLoaded() override;
  void InvalidUsernamePassword() override;
  void ConnectionState(bool connected) override;
  void SessionDisconnected() override;
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

  const Host host_;
  const std::string address_;
  std::unique_ptr<ByteStream> stream_;
  FixSession session_;
  std::unique_ptr<ClientAPI> client_;
  AccountMemory* memory_ = nullptr;
  std::unique_ptr<NewsEncoder> encoder_;
  std::int32_t account_ = -1;
  int waited_ = 0;  // seconds
  bool on_ = false;
  bool own_fields_ = false;
  bool over_ = false;
  // What the other end wants to be told as it changes.
  std::map<std::string, news::Price, std::less<>> priced_;  // as it was told last
  bool positions_wanted_ = false;
  bool orders_wanted_ = false;
  bool summary_wanted_ = false;
  std::set<std::string, std::less<>> late_prices_;  // that wait until a slow reader has caught up
  bool late_summary_ = false;
  std::set<std::int64_t> offered_;  // orders with a new price that was told
};

}  // namespace tutti
