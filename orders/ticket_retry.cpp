#include "orders/ticket_retry.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/numbers.h"
#include "views/lot_sums.h"

namespace tutti {
namespace {

// No round of the entry order window: its line of answers counts what was sent from there.
constexpr int no_round = -1;

std::string counted(std::size_t count, const char* one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

}  // namespace

std::string TicketRetry::obstacle(const TicketRequest& request, const CClientAPIManager* session) const {
  if (session == nullptr) return "not connected";
  // A late word may have come that the ledger did not have when it was asked.
  const SentOrder* now = sessions_.requests().find(request.id);
  if (now != nullptr && now->outcome != SentOrder::Outcome::none && !now->had_no_effect())
    return "its first request has had an effect after all";
  const std::int32_t account = request.account.account;
  switch (request.kind) {
    case RequestKind::open:
    case RequestKind::entry:
      return session->GetIDByName(request.symbol) == 0 ? "does not carry " + request.symbol : "";
    case RequestKind::close:
      if (sessions_.close_awaited(request.number, account))
        return fmt::format("the answer to a close of #{} is awaited", request.number);
      [[fallthrough]];
    case RequestKind::stops:
      return books_.positions.find(request.number, account) == nullptr
                 ? fmt::format("position #{} is no longer open", request.number)
                 : "";
    case RequestKind::cancel:
    case RequestKind::update:
      return books_.orders.find(request.number, account) == nullptr
                 ? fmt::format("order #{} is gone", request.number)
                 : "";
    case RequestKind::requote:
      break;
  }
  return "its order has ended";
}

std::vector<TicketRetry::Rest> TicketRetry::rest_of(const std::vector<TicketRequest>& requests,
                                                    const Wanted& wanted,
                                                    std::vector<std::string>& left_out) const {
  std::vector<Rest> out;
  left_out.clear();
  for (const TicketRequest& each : requests) {
    if (!wanted(each) || sent_.contains(each.id)) continue;
    CClientAPIManager* session = sessions_.logged_in(each.account);
    const std::string why = obstacle(each, session);
    if (why.empty()) {
      out.push_back({&each, session});
    } else {
      left_out.push_back(fmt::format("Account {}: {}", each.account.account, why));
    }
  }
  return out;
}

TicketRetry::Plan TicketRetry::plan(std::int64_t ticket, const std::vector<TicketRequest>& requests,
                                    RetryPart part) const {
  std::vector<std::string> left_out;
  Plan out;
  LotSums sums{"request"};
  double lots = 0.0;
  for (const Rest& each : rest_of(requests, of(part), left_out)) {
    out.requests.push_back(each.request->id);
    sums.add(each.request->symbol, each.request->lots);
    lots += each.request->lots;
  }
  const std::string sum = lots > 0.0 ? ", " + number_text(lots_of_sum(lots)) + " lots in all" : "";
  const bool settled = part == RetryPart::settled_by_hand;
  if (out.requests.empty()) {
    out.question = fmt::format("Nothing of ticket {}{} can be sent again", ticket,
                               settled ? " that was settled by hand" : "");
  } else {
    out.question = fmt::format("Send {} of ticket {} again{}{}?", counted(out.requests.size(), "request"),
                               ticket, settled ? " that you settled by hand as not executed" : "", sum);
    out.details = sums.text();
    if (settled) out.details += "\nWhat was executed all the same is executed twice then";
  }
  if (!settled) {
    const auto by_hand = std::count_if(requests.begin(), requests.end(), of(RetryPart::settled_by_hand));
    if (by_hand > 0)
      left_out.push_back(fmt::format("{} settled by hand as not executed: only with the second key",
                                     counted(static_cast<std::size_t>(by_hand), "request")));
  }
  for (const std::string& line : left_out)
    out.details += (out.details.empty() ? "" : "\n") + line;
  return out;
}

std::vector<const SentOrder*> TicketRetry::send(std::int64_t ticket,
                                                const std::vector<TicketRequest>& requests, RetryPart part) {
  const Plan now = plan(ticket, requests, part);
  if (now.requests.empty()) {
    general_.message_box(now.details.empty() ? now.question : now.question + "\n" + now.details);
    return {};
  }
  constexpr int yes = 1;
  if (general_.msg_box.GeneralQuestionMsg(now.question, now.details) != yes) return {};
  // Events went on while the question stood: what it did not name is not sent.
  std::vector<std::string> left_out;
  std::vector<Rest> rest = rest_of(requests, of(part), left_out);
  std::erase_if(rest, [&](const Rest& each) {
    return std::find(now.requests.begin(), now.requests.end(), each.request->id) == now.requests.end();
  });
  if (rest.size() < now.requests.size())
    general_.log(fmt::format("{} of ticket {} could not be sent any more",
                             counted(now.requests.size() - rest.size(), "request"), ticket),
                 no_account);
  return send_again(ticket, rest);
}

std::vector<const SentOrder*> TicketRetry::send_agreed(std::int64_t ticket,
                                                       const std::vector<TicketRequest>& requests,
                                                       RetryPart part) {
  std::vector<std::string> left_out;
  return send_again(ticket, rest_of(requests, of(part), left_out));
}

std::vector<const SentOrder*> TicketRetry::go_on(std::int64_t ticket,
                                                 const std::vector<TicketRequest>& requests) {
  std::vector<std::string> left_out;
  // What was sent again by such an act, and was left behind itself, has no name to leave under.
  const auto leaves_as_it_is = [this](const TicketRequest& each) {
    return each.state == LedgerState::stored && sessions_.requests().find(each.id) != nullptr;
  };
  const std::vector<Rest> stored = rest_of(requests, leaves_as_it_is, left_out);
  std::vector<std::string> not_again;
  const std::vector<Rest> never = rest_of(
      requests,
      [&](const TicketRequest& each) {
        return each.may_be_retried() && (each.state == LedgerState::never || each.was_left_behind()) &&
               !leaves_as_it_is(each);
      },
      not_again);
  left_out.insert(left_out.end(), not_again.begin(), not_again.end());
  std::vector<const SentOrder*> sent;
  const auto unknown_before = [this](const TicketRequest& request) {
    const bool opens = request.kind == RequestKind::open || request.kind == RequestKind::entry;
    const SymbolHandle symbol = books_.symbols.find(request.symbol);
    const auto unknown = sessions_.requests().all_unknown();
    return opens && std::any_of(unknown.begin(), unknown.end(), [&](const SentOrder* each) {
             return each->account == request.account.account &&
                    (each->symbol == symbol || each->symbol == no_symbol);
           });
  };
  for (const Rest& each : stored) {
    if (sessions_.admission().lacks(each.session->sender())) {
      left_out.push_back(fmt::format("Account {}: the ledger lacks requests that the server has taken",
                                     each.request->account.account));
      continue;
    }
    if (unknown_before(*each.request)) {
      left_out.push_back(fmt::format("Account {}: the outcome of an earlier request of {} is unknown",
                                     each.request->account.account, each.request->symbol));
      continue;
    }
    sent_.insert(each.request->id);
    sent.push_back(&send_stored(each));
  }
  const std::vector<const SentOrder*> again = send_again(ticket, never);
  sent.insert(sent.end(), again.begin(), again.end());
  for (const std::string& line : left_out)
    general_.log("Not sent. " + line, no_account);
  return sent;
}

std::vector<const SentOrder*> TicketRetry::send_again(std::int64_t ticket, const std::vector<Rest>& rest) {
  std::vector<const SentOrder*> sent;
  if (rest.empty()) return sent;
  LedgerTicket of_all;
  of_all.retry_of = ticket;
  sessions_.as_one_ticket(
      [&] {
        for (const Rest& each : rest) {
          sent_.insert(each.request->id);
          if (each.request->was_left_behind()) sessions_.drop_stored(each.request->id);
          sessions_.as_retry_of(each.request->id, [&] { sent.push_back(&send(each)); });
        }
      },
      of_all);
  return sent;
}

const SentOrder& TicketRetry::send_stored(const Rest& rest) {
  const TicketRequest& request = *rest.request;
  SentOrder as = *sessions_.requests().find(request.id);
  as.symbol = books_.symbols.find(request.symbol);
  as.symbol_id = rest.session->symbol_id(as.symbol);
  as.stops = request.stops;
  if (request.kind == RequestKind::cancel) {
    const auto* order = books_.orders.find(request.number, request.account.account);
    as.stops_of_position = order != nullptr && order->kind == OrderKind::stops;
  }
  return rest.session->send_stored(std::move(as));
}

const SentOrder& TicketRetry::send(const Rest& rest) {
  const TicketRequest& request = *rest.request;
  CClientAPIManager& session = *rest.session;
  const SymbolHandle symbol = books_.symbols.find(request.symbol);
  switch (request.kind) {
    case RequestKind::close:
      return session.close_position(request.number, request.lots);
    case RequestKind::cancel: {
      const auto* order = books_.orders.find(request.number, request.account.account);
      return session.cancel_order(request.number, order != nullptr && order->kind == OrderKind::stops);
    }
    case RequestKind::entry: {
      const bool stop = request.side == operation::buy_stop || request.side == operation::sell_stop;
      return session.place_entry({.side = buys(request.side) ? operation::buy : operation::sell,
                                  .kind = stop ? EntryKind::stop : EntryKind::limit,
                                  .symbol_id = session.symbol_id(symbol),
                                  .amount = request.lots,
                                  .price = request.price,
                                  .stop_loss = request.stops.stop_loss,
                                  .take_profit = request.stops.take_profit,
                                  .has_stop_loss = request.stops.has_stop_loss,
                                  .has_take_profit = request.stops.has_take_profit},
                                 symbol, no_round);
    }
    case RequestKind::update:
      return session.update_entry(request.number, request.price, request.stops, no_round);
    case RequestKind::stops:
      return session.set_stops(request.number, request.stops, no_round);
    case RequestKind::open:
    case RequestKind::requote:
      break;
  }
  return session.market_order(request.side, symbol, request.lots);
}

}  // namespace tutti
