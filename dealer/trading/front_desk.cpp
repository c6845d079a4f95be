#include "dealer/trading/front_desk.h"

#include <fmt/format.h>

#include "core/checksum.h"

namespace tutti {

RequestCode FrontDesk::send(TradingAccount& account, const Instruction& wanted, TimePoint now) {
  if (wanted.id <= 0) return desk_.send(account, wanted, now);
  const StopPrices& stops = wanted.stops;
  const std::string digest = checksum(fmt::format(
      "{} {} {} {} {} {} {} {} {} {} {} {}", account.config().number, name_of(wanted.kind), wanted.reference,
      wanted.symbol ? market_.symbol(*wanted.symbol).name : "", wanted.side, wanted.entry == EntryKind::stop,
      wanted.amount, wanted.price, stops.has_stop_loss, stops.has_stop_loss ? stops.stop_loss : 0.0,
      stops.has_take_profit, stops.has_take_profit ? stops.take_profit : 0.0));
  return once({.id = wanted.id, .digest = digest, .ledger = wanted.ledger}, account, RequestState::waiting,
              [&] { return desk_.send(account, wanted, now); });
}

RequestCode FrontDesk::answer_requote(TradingAccount& account, std::int64_t order, bool accept, RequestId id,
                                      TimePoint now) {
  const auto answer = [&] { return desk_.answer_requote(account, order, accept, now); };
  if (id <= 0) return answer();
  const std::string digest =
      checksum(fmt::format("{} {} {}", account.config().number, accept ? "accept" : "reject", order));
  return once({.id = id, .digest = digest}, account, RequestState::executed, answer);
}

RequestCode FrontDesk::once(RequestRecord record, TradingAccount& account, RequestState taken,
                            const std::function<RequestCode()>& act) {
  const std::int32_t number = record.account = account.config().number;
  const RequestId id = record.id;
  if (const RequestRecord* known = history_.find(number, id)) return repeat(account, *known, record.digest);
  history_.add(std::move(record));
  const RequestCode code = act();
  history_.set_code(number, id, code);
  history_.set_state(number, id, code == request::taken ? taken : RequestState::refused);
  return code;
}

RequestCode FrontDesk::repeat(const TradingAccount& account, const RequestRecord& known,
                              const std::string& digest) {
  if (known.digest.empty()) return request::id_burnt;
  if (known.digest != digest) return request::other_request;
  AccountListener* listener = account.listener();
  if (listener != nullptr && known.answer)
    listener->tell_answer(*known.answer);
  else if (listener != nullptr && known.code == request::taken && known.ended())
    listener->tell_request({known.id, known.state, known.lots()});
  return known.code;
}

void FrontDesk::ask(const TradingAccount& account, RequestId id, bool this_book) {
  const std::int32_t number = account.config().number;
  RequestTold told{id, RequestState::another_book, 0.0};
  if (const RequestRecord* known = history_.find(number, id)) {
    told.state = known->state;
    told.lots = known->lots();
  } else if (this_book) {
    told.state = RequestState::never_taken;
    history_.add({.id = id, .account = number, .code = request::id_burnt, .state = told.state});
  }
  if (AccountListener* listener = account.listener()) listener->tell_request(told);
}

void FrontDesk::ask_fills(const TradingAccount& account, TimePoint since) const {
  AccountListener* listener = account.listener();
  if (listener == nullptr) return;
  listener->tell_fills({history_.fills(account.config().number, since), since >= history_.fills_since()});
}

}  // namespace tutti
