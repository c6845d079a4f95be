#include "orders/ticket_orders.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/numbers.h"
#include "views/lot_sums.h"
#include "views/ticket_texts.h"

namespace tutti {
namespace {

// No round of the entry order window: its line of answers counts what was sent from there.
constexpr int no_round = -1;

std::string orders(std::size_t count) {
  return fmt::format("{} order{}", count, count == 1 ? "" : "s");
}

void add_price(std::string& text, const char* name, const std::optional<double>& price) {
  if (!price) return;
  text += fmt::format("{}{} {}", text.empty() ? ": " : ", ", name,
                      *price == 0.0 ? std::string{"taken off"} : number_text(*price));
}

std::string text_of(const OrderChange& to) {
  std::string out;
  add_price(out, "price", to.price);
  add_price(out, "SL", to.stop_loss);
  add_price(out, "TP", to.take_profit);
  return out;
}

// There was never an order to be reached.
bool never_placed(LedgerState state) {
  return state == LedgerState::refused || state == LedgerState::refused_here || state == LedgerState::never ||
         state == LedgerState::dropped;
}

// A request of this kind for the order has left, and its answer is awaited or unknown.
bool awaited(const CClientAPIManager& session, RequestKind kind, std::int64_t order) {
  const SentOrder* sent = session.sent_request(kind, order);
  return sent != nullptr && (!sent->settled() || sent->outcome == SentOrder::Outcome::unknown);
}

}  // namespace

std::string TicketOrders::obstacle(const TicketRequest& request, const CClientAPIManager* session) const {
  if (request.state != LedgerState::working)
    return std::string{ticket_texts::outcome(request.kind, request.state, request.reason, request.code)};
  if (session == nullptr) return "not connected";
  if (books_.orders.find(request.number, request.account.account) == nullptr)
    return fmt::format("order #{} is gone", request.number);
  for (const RequestKind kind : {RequestKind::update, RequestKind::cancel})
    if (awaited(*session, kind, request.number))
      return fmt::format("the answer to a {} of order #{} is awaited",
                         kind == RequestKind::update ? "change" : "cancel", request.number);
  return "";
}

TicketOrders::Reach TicketOrders::reach(const std::vector<TicketRequest>& requests) const {
  Reach out;
  for (const TicketRequest& each : requests) {
    if (each.kind != RequestKind::entry || never_placed(each.state)) continue;
    CClientAPIManager* session = sessions_.logged_in(each.account);
    const std::string why = obstacle(each, session);
    if (!why.empty()) {
      out.left_out.push_back(fmt::format("Account {}: {}", each.account.account, why));
      continue;
    }
    const double lots = books_.orders.find(each.number, each.account.account)->amount;
    out.orders.push_back({each.number, &each, session, lots});
    out.lots += lots;
  }
  // Requests come in the order in which they were sent, accounts in none.
  std::sort(out.left_out.begin(), out.left_out.end());
  return out;
}

std::string TicketOrders::reach_text(std::int64_t ticket, const std::vector<TicketRequest>& requests) const {
  const Reach now = reach(requests);
  return fmt::format("{} of {} of ticket {} can be reached, {} lots in all", now.orders.size(),
                     orders(now.orders.size() + now.left_out.size()), ticket,
                     number_text(lots_of_sum(now.lots)));
}

template <class Send>
std::vector<const SentOrder*> TicketOrders::send(std::int64_t ticket,
                                                 const std::vector<TicketRequest>& requests, const char* what,
                                                 const std::string& to, const Send& send) {
  std::vector<const SentOrder*> sent;
  const Reach before = reach(requests);
  LotSums sums{"order"};
  for (const Reached& each : before.orders)
    sums.add(each.request->symbol, each.lots);
  std::string details = before.orders.empty() ? "" : sums.text();
  for (const std::string& line : before.left_out)
    details += (details.empty() ? "" : "\n") + line;
  if (before.orders.empty()) {
    general_.message_box(fmt::format("No order of ticket {} can be reached", ticket) +
                         (details.empty() ? "" : "\n" + details));
    return sent;
  }
  constexpr int yes = 1;
  const std::string question =
      fmt::format("{} {} of ticket {}, {} lots in all{}?", what, orders(before.orders.size()), ticket,
                  number_text(lots_of_sum(before.lots)), to);
  if (general_.msg_box.GeneralQuestionMsg(question, details) != yes) return sent;
  // Events went on while the question stood: what came within reach meanwhile was not asked about.
  const Reach now = reach(requests);
  sessions_.as_one_ticket([&] {
    for (const Reached& each : now.orders) {
      const bool asked = std::any_of(before.orders.begin(), before.orders.end(),
                                     [&](const Reached& other) { return other.request == each.request; });
      if (asked) sent.push_back(&send(each));
    }
  });
  for (const std::string& line : now.left_out)
    general_.log(fmt::format("{} of ticket {}: not sent. {}", what, ticket, line), no_account);
  return sent;
}

std::vector<const SentOrder*> TicketOrders::change(std::int64_t ticket,
                                                   const std::vector<TicketRequest>& requests,
                                                   const OrderChange& to) {
  return send(ticket, requests, "Change", text_of(to),
              [&](const Reached& order) -> const SentOrder& { return update(order, to); });
}

std::vector<const SentOrder*> TicketOrders::cancel(std::int64_t ticket,
                                                   const std::vector<TicketRequest>& requests) {
  return send(ticket, requests, "Cancel", "", [](const Reached& order) -> const SentOrder& {
    return order.session->cancel_order(order.number, false);
  });
}

const SentOrder& TicketOrders::update(const Reached& order, const OrderChange& to) {
  const PendingOrder& now = *books_.orders.find(order.number, order.request->account.account);
  const double stop_loss = to.stop_loss.value_or(now.stop_loss);
  const double take_profit = to.take_profit.value_or(now.take_profit);
  return order.session->update_entry(order.number, to.price.value_or(now.price),
                                     {.stop_loss = stop_loss,
                                      .take_profit = take_profit,
                                      .has_stop_loss = stop_loss != 0.0,
                                      .has_take_profit = take_profit != 0.0},
                                     no_round);
}

}  // namespace tutti
