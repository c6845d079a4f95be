// Market orders and closes that are with the dealer, and their requotes.

#include <algorithm>
#include <utility>

#include "dealer/trading/order_desk.h"
#include "sessions/contract/codes.h"

namespace tutti {
namespace {

using Stage = TradeRequest::Stage;
constexpr std::chrono::seconds one_second{1};

}  // namespace

void OrderDesk::deal(Flight flight, TimePoint at) {
  if (!flight.requoted && flight.mishap.requote_seconds > 0) {
    const std::int16_t seconds = flight.mishap.requote_seconds;
    flight.requoted = true;
    flight.seconds_left = seconds;
    flight.deadline = at + seconds * one_second;
    flight.new_price =
        rules_.worse_price(flight.request, rules_.price(flight.request), flight.mishap.requote_points);
    return tick(std::move(flight), at);
  }
  if (!flight.requoted) return finish(flight, verdict(flight), at);
  if (flight.seconds_left == 0) return finish(flight, ResultCode::none, at);
  --flight.seconds_left;
  tick(std::move(flight), at);
}

void OrderDesk::tick(Flight flight, TimePoint at) {
  const TradeRequest& request = flight.request;
  AccountListener* listener = flight.account->listener();
  if (listener != nullptr && !flight.mishap.silent) {
    Requote requote;
    requote.order = request.known_as();
    requote.account = request.account;
    requote.operation = request.operation;
    requote.amount = request.amount;
    requote.symbol = request.symbol;
    requote.price = request.price;
    requote.new_price = flight.new_price;
    requote.seconds_left = flight.seconds_left;
    requote.seconds_all = flight.mishap.requote_seconds;
    listener->tell_requote(requote);
  }
  flights_.emplace(at + one_second, std::move(flight));
}

OrderDesk::Flights::iterator OrderDesk::find_requote(const TradingAccount& account, std::int64_t order) {
  return std::find_if(flights_.begin(), flights_.end(), [&](const auto& entry) {
    const Flight& flight = entry.second;
    return flight.account == &account && flight.requoted && flight.request.stage == Stage::dealing &&
           flight.request.known_as() == order;
  });
}

RequestCode OrderDesk::answer_requote(TradingAccount& account, std::int64_t order, bool accept,
                                      TimePoint now) {
  if (shut_) return request::silent;
  const auto at = find_requote(account, order);
  if (at == flights_.end()) return no_requote(account, order);
  if (accept && now >= at->second.deadline) return request::timer_expired;
  if (accept) at->second.request.price = at->second.new_price;
  leave_dealing(at, accept ? Stage::accepted : Stage::rejected, now);
  return request::taken;
}

// The last thing that happened to the number says whether there was a requote that ran out.
RequestCode OrderDesk::no_requote(const TradingAccount& account, std::int64_t order) const {
  const auto& outcomes = recorder_.outcomes();
  const auto last = std::find_if(outcomes.rbegin(), outcomes.rend(), [&](const Outcome& outcome) {
    return outcome.number == order && outcome.account == account.config().number;
  });
  return last != outcomes.rend() && last->expired ? request::timer_expired : request::invalid_order_id;
}

// The operator has decided: it waits for the dealer's confirmation only, and is pending no more.
void OrderDesk::leave_dealing(Flights::iterator at, Stage stage, TimePoint now) {
  Flight flight = std::move(flights_.extract(at).mapped());
  flight.requoted = false;
  flight.request.stage = stage;
  TradeExecution::remove_row(*flight.account, flight.request.known_as());
  recorder_.note_change(*flight.account);
  const TimePoint due = now + flight.latency;
  flights_.emplace(due, std::move(flight));
}

}  // namespace tutti
