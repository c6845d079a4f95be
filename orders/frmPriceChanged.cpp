#include "orders/frmPriceChanged.h"

#include "core/dead_time.h"
#include "core/numbers.h"
#include "sessions/gate_texts.h"

namespace tutti {
namespace {
constexpr std::string_view accepted_word = " Accepted";
constexpr std::string_view rejected_word = " rejected";

// A new market order, not a close.
bool is_new_order(const PendingOrder& order) {
  return order.kind == OrderKind::open;
}

}  // namespace

frmPriceChanged::frmPriceChanged(MGeneral& general, frmorder& market_order, frmPending& pending,
                                 const OrderBook& orders)
    : general_(general), market_order_(market_order), pending_(pending), orders_(orders) {
  cmdAccept.on_click = [this] { cmdAccept_Click(); };
  cmdReject.on_click = [this] { cmdReject_Click(); };
}

void frmPriceChanged::tick(CClientAPIManager& session, const Requote& requote) {
  const bool first_tick = requote.seconds_left == requote.seconds_all;
  if (take_over && to_be_answered(session, requote.order, first_tick) && take_over(session, requote)) return;
  SetData(session, requote.order, session.account(), requote.operation, requote.amount, requote.symbol,
          requote.price, requote.new_price, requote.seconds_left, requote.seconds_all);
}

bool frmPriceChanged::to_be_answered(const CClientAPIManager& session, std::int64_t order, bool first_tick) {
  if (first_tick) answered_.erase({&session, order});
  return !answered_.contains({&session, order});
}

void frmPriceChanged::SetData(CClientAPIManager& session, std::int64_t order, std::int32_t account,
                              Operation side, double amount, std::string_view symbol, double price,
                              double new_price, std::int16_t seconds_left, std::int16_t seconds_all) {
  const bool first_tick = seconds_left == seconds_all;
  if (!to_be_answered(session, order, first_tick)) return;
  if (order != order_ || &session != session_) {
    order_ = order;
    session_ = &session;
    account_ = account;
    lblOrder.set_text(std::string{side == operation::buy ? "Buy" : "Sell"} + " " + number_text(amount) + " " +
                      std::string{symbol} + " at " + number_text(price));
    lblNewPrice.set_text(number_text(new_price));
    shown_since_ = general_.clock.elapsed();
    Displayed(true);
  }
  caption_ = std::to_string(seconds_left) + " / " + std::to_string(seconds_all);
  const OrderBook::Record* listed = orders_.find(order, account);
  if (listed != nullptr && is_new_order(*listed)) {
    in_rows_[account] = {&session, order};
    market_order_.show_requote(
        account, "Requote " + number_text(new_price) + ", " + std::to_string(seconds_left) + " s");
  }
  if (first_tick) general_.play_sound("\\sounds\\PriceChanged.wav");
  if (seconds_left > 0) return;

  answered_.insert({session_, order_});
  session.answer_requote(order, false);
  hide();
  const std::string text = "Timer Expired - Order number " + std::to_string(order) + " rejected";
  general_.message_box(text);
  general_.log(text, account);
  settle(order, account, rejected_word);
}

bool frmPriceChanged::buttons_dead() const {
  return in_dead_time(general_.clock, shown_since_);
}

void frmPriceChanged::cmdAccept_Click() {
  answer_shown(true);
}

void frmPriceChanged::cmdReject_Click() {
  answer_shown(false);
}

void frmPriceChanged::answer_shown(bool accept) {
  if (session_ == nullptr || buttons_dead()) return;
  answer(*session_, order_, account_, accept);
}

void frmPriceChanged::answer(CClientAPIManager& session, std::int64_t order, std::int32_t account,
                             bool accept) {
  answered_.insert({&session, order});
  if (&session == session_ && order == order_) hide();
  const bool row_written = settle(order, account, accept ? accepted_word : rejected_word);
  session.answer_requote(order, accept, [this, row_written](const SentOrder& sent) {
    // The dealer may not have taken the answer; the row then says why instead.
    const std::string_view kept = gate_texts::row(sent);
    const std::string_view refusal = kept.empty() ? request::text(sent.request_code) : kept;
    if (refusal.empty()) return;
    general_.log("Order number " + std::to_string(sent.number) + ": " + std::string{refusal}, sent.account);
    if (row_written) market_order_.UpdateResult(refusal, sent.account);
  });
}

void frmPriceChanged::hide() {
  session_ = nullptr;
  order_ = 0;
  Displayed(false);
}

bool frmPriceChanged::settle(std::int64_t order, std::int32_t account, std::string_view word) {
  end_requote(order, account);
  const OrderBook::Record* listed = orders_.find(order, account);
  if (listed == nullptr) return false;
  const bool new_order = is_new_order(*listed);
  pending_.Removeorder(order, account);
  if (!new_order) return false;
  const Row* row = market_order_.account_row(account);
  if (row == nullptr || !row->checked()) return false;
  market_order_.UpdateResult("Order number " + std::to_string(order) + std::string{word}, account);
  return true;
}

void frmPriceChanged::forget_if_held(std::int64_t order, std::int32_t account) {
  if (order == order_ && account == account_) hide();
  // It may have counted down behind the one on show.
  end_requote(order, account);
}

void frmPriceChanged::end_requote(std::int64_t order, std::int32_t account) {
  const auto at = in_rows_.find(account);
  if (at == in_rows_.end() || at->second.second != order) return;
  in_rows_.erase(at);
  market_order_.end_requote(account);
}

void frmPriceChanged::API_MarketOrderAccepted(std::int64_t order, std::int32_t account) {
  forget_if_held(order, account);
  pending_.MarketOrderAccepted(order, account);
}

void frmPriceChanged::API_MarketOrderRejected(std::int64_t order, std::int32_t account) {
  forget_if_held(order, account);
  pending_.MarketOrderRejected(order, account);
}

void frmPriceChanged::session_gone(const CClientAPIManager& session) {
  if (&session == session_) hide();
  const auto at = in_rows_.find(session.account());
  if (at != in_rows_.end() && at->second.first == &session) end_requote(at->second.second, at->first);
  std::erase_if(answered_, [&](const Id& id) { return id.first == &session; });
}

}  // namespace tutti
