#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/clock.h"
#include "dealer/link/event_queue.h"
#include "dealer/market/market.h"
#include "dealer/trading/fault_script.h"
#include "dealer/trading/trading_account.h"
#include "sessions/contract/CLAPICLASS.h"

namespace tutti {

// The connection of one trading client, as the server sees it: how far it is logged in, the symbols its
// account carries, and the news on their way to the event sink.
//
// An event that only says that something moved is queued at most once; its values are read when it arrives.
class DealerSession final : public AccountListener {
 public:
  enum class Link : std::uint8_t { off, connecting, on };

  // Keeps references to all three.
  DealerSession(EventQueue& queue, const Market& market, FaultScript& faults);
  ~DealerSession() override;
  DealerSession(const DealerSession&) = delete;
  DealerSession& operator=(const DealerSession&) = delete;

  // Without a sink nothing is queued; what waits for the old one is taken back.
  void set_sink(CLAPICLASS* sink);

  Link link() const { return link_; }
  // Account number of the last login, owned or not.
  std::int32_t number() const { return number_; }
  // The account that is logged in; nullptr when none, or when the user does not own the number.
  TradingAccount* account() const { return account_; }
  // Record by place in the market; its id is 0 when the account does not carry it. Good until the next one is
  // asked for.
  const Symbol& symbol(std::size_t index) const { return asked_.fill(*this, index); }
  // Whether the account that is logged in carries it.
  bool carries(std::size_t index) const { return account_ != nullptr && account_->symbol_id(index) != 0; }
  std::optional<std::size_t> place_of(std::string_view symbol) const { return market_.find(symbol); }

  // The steps of a connection, each with its news.
  void connect(std::int32_t number);
  void refuse();
  void open(TradingAccount* account);
  // `dropped`: the server ended it. A login that is still running ends too.
  void end(bool dropped);

  // News while `on`.
  void tell_prices();
  void tell_time(TimePoint time);
  void tell_position(PositionChange change, const OpenPosition& position) override;
  void tell_order(bool gone, const PendingOrder& order) override;
  void tell_requote(const Requote& requote) override;
  void tell_answer(const AnswerNews& answer) override;
  void tell_request(const RequestTold& told) override;
  void tell_fills(FillsTold told) override;
  void tell_summary(bool anew) override;
  void tell_floating() override;

  // Hands one event to the sink, if it has not become void. The sink may destroy this session.
  void deliver(const News& news);
  // Hands the next one of the prices that moved to the sink, which may destroy this session; false when all
  // are told.
  bool deliver_price();

 private:
  // Sessions differ in the symbols' numbers alone: a record is made when somebody wants it.
  struct Shown {
    Symbol record;
    std::size_t place = ~std::size_t{0};

    const Symbol& fill(const DealerSession& session, std::size_t index);
  };

  // How far the prices that moved are told.
  struct PricePass {
    enum class Part : std::uint8_t { spoilt, price, high_low };

    std::uint64_t before = 0;  // step of the market up to which the last pass told
    std::uint64_t until = 0;   // and this one; a symbol that moves later may be told once more
    std::size_t place = 0;     // of the symbol that is next
    Part part = Part::spoilt;
  };

  void post(News news);
  void forget_waiting();
  void pass(CLAPICLASS& sink, Signal signal);
  void pass(CLAPICLASS& sink, WaitingNews news);
  void pass(CLAPICLASS& sink, ConnectionNews news);
  void pass(CLAPICLASS&, PricesNews) {}  // told one by one, by deliver_price()
  void pass(CLAPICLASS& sink, FloatingNews news);
  void pass(CLAPICLASS& sink, SummaryNews news);
  void pass(CLAPICLASS& sink, TimeNews news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<PositionNews>& news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<OrderNews>& news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<AnswerNews>& news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<Requote>& news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<RequestTold>& news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<FillsTold>& news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<SpoiltFloating>& news);
  void pass(CLAPICLASS& sink, const std::unique_ptr<SpoiltSummary>& news);

  EventQueue& queue_;
  const Market& market_;
  FaultScript& faults_;
  CLAPICLASS* sink_ = nullptr;
  Link link_ = Link::off;
  std::int32_t number_ = -1;
  TradingAccount* account_ = nullptr;
  mutable Shown asked_;
  Shown told_;  // of the event that is being delivered
  PricePass pass_;
  bool prices_waiting_ = false;
  bool summary_waiting_ = false;
  bool time_waiting_ = false;
  // The news that a list is loaded is in the queue; what changes before is part of that list.
  bool positions_waiting_ = false;
  bool orders_waiting_ = false;
  TimePoint time_{};
};

}  // namespace tutti
