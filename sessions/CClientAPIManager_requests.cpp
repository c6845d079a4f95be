// What an account session sent, and what became of it.

#include <algorithm>

#include "core/numbers.h"
#include "sessions/CClientAPIManager.h"

namespace tutti {
namespace {

using Outcome = SentOrder::Outcome;

Outcome outcome_of_request(std::int32_t code) {
  return code == request::taken ? Outcome::waiting : Outcome::refused;
}

// "BUY 0.5 EURUSD"
std::string words(const SentOrder& order, const SymbolCollection& symbols) {
  return (order.side > 0 ? "BUY " : "SELL ") + number_text(order.amount) + " " +
         (order.symbol == no_symbol ? "" : symbols.entry(order.symbol).name);
}

}  // namespace

void CClientAPIManager::note_new(NewOrders& orders, const SentOrder& order) {
  if (!orders.empty() && orders.back().settled()) orders.pop_back();
  orders.push_back(order);
}

const SentOrder& CClientAPIManager::last_of(const NewOrders& orders) {
  static const SentOrder none;
  return orders.empty() ? none : orders.back();
}

std::int32_t CClientAPIManager::close_position(std::int64_t ticket, double amount) {
  return note_request({.kind = RequestKind::close, .number = ticket, .amount = amount},
                      client_->ClosePosition(std::to_string(ticket), number_text(amount), "", 0));
}

std::int32_t CClientAPIManager::cancel_order(std::int64_t order, bool stops_of_position) {
  return note_request(
      {.kind = RequestKind::cancel, .number = order},
      stops_of_position ? client_->DeleteSLTPOrder(order, 0) : client_->DeleteEntryOrder(order, 0));
}

std::int32_t CClientAPIManager::place_entry(const EntryOrder& order, SymbolHandle symbol, int round) {
  const std::int32_t code = client_->NewEntryOrder(order, 0);
  const bool stop = order.kind == EntryKind::stop;
  note_new(entries_, {.kind = RequestKind::entry,
                      .amount = order.amount,
                      .price = order.price,
                      .side = order.side > 0 ? (stop ? operation::buy_stop : operation::buy)
                                             : (stop ? operation::sell_stop : operation::sell),
                      .symbol = symbol,
                      .request_code = code,
                      .outcome = outcome_of_request(code),
                      .round = round});
  return code;
}

std::int32_t CClientAPIManager::update_entry(std::int64_t order, double price, const StopPrices& stops,
                                             int round) {
  return note_request({.kind = RequestKind::update, .number = order, .price = price, .round = round},
                      client_->UpdateEntryOrder(order, price, stops, 0));
}

std::int32_t CClientAPIManager::set_stops(std::int64_t ticket, const StopPrices& stops, int round) {
  SentOrder request{.kind = RequestKind::stops, .number = ticket, .round = round};
  for (int index = 1; index <= client_->PendingOrderCount(); ++index) {
    const PendingOrder* item = client_->PendingOrderItem(index);
    if (item != nullptr && item->kind == "ST" && item->reference == ticket) request.stops_order = item->order;
  }
  return note_request(request, client_->UpdateSLTP(ticket, stops, 0));
}

std::int32_t CClientAPIManager::note_request(SentOrder request, std::int32_t code) {
  const auto same = [&](const SentOrder& other) {
    return other.kind == request.kind && other.number == request.number;
  };
  // A repetition that is refused does not end what is still on its way.
  if (code != request::taken && std::any_of(requests_.begin(), requests_.end(), [&](const SentOrder& other) {
        return same(other) && !other.settled();
      }))
    return code;
  std::erase_if(requests_, [&](const SentOrder& other) { return same(other) && other.settled(); });
  request.request_code = code;
  request.outcome = outcome_of_request(code);
  requests_.push_back(request);
  return code;
}

const SentOrder* CClientAPIManager::sent_request(RequestKind kind, std::int64_t number) const {
  const auto last = std::find_if(requests_.rbegin(), requests_.rend(), [&](const SentOrder& request) {
    return request.kind == kind && request.number == number;
  });
  return last == requests_.rend() ? nullptr : &*last;
}

void CClientAPIManager::settle(SentOrder& order, std::int32_t code, Outcome outcome) {
  order.outcome = outcome;
  if (code != 0) order.result_code = code;
  const bool of_entry_window = order.kind == RequestKind::entry || order.kind == RequestKind::update ||
                               order.kind == RequestKind::stops;
  if (of_entry_window) desk_.entry_order->request_settled(order, account_);
}

bool CClientAPIManager::settle_order(const OrderReport& report, Outcome outcome) {
  // Waiting for it may have been given up when the connection was lost, and now it comes after all.
  const auto meant = [&](const SentOrder& o) {
    return (!o.settled() || o.outcome == Outcome::unknown) && o.number != 0 && o.number == report.number;
  };
  return settle_open(std::find_if(orders_.begin(), orders_.end(), meant), report, outcome);
}

bool CClientAPIManager::settle_new_order(const OrderReport& report, Outcome outcome) {
  if (settle_order(report, outcome)) return true;
  // A second answer must not settle the next order that was sent in the same way.
  if (answered_.contains(report.number)) return false;
  const SymbolHandle symbol = symbols_.find(report.symbol);
  const auto meant = [&](const SentOrder& o) {
    return !o.settled() && o.number == 0 && o.symbol == symbol && o.amount == report.amount &&
           (o.side > 0) == (report.operation > 0);
  };
  return settle_open(std::find_if(orders_.begin(), orders_.end(), meant), report, outcome);
}

bool CClientAPIManager::settle_open(NewOrders::iterator at, const OrderReport& report, Outcome outcome) {
  if (at == orders_.end()) return false;
  at->number = report.number;
  settle(*at, report.result, outcome);
  if (!at->settled()) return true;
  if (report.number != 0) answered_.insert(report.number);
  if (at + 1 != orders_.end()) orders_.erase(at);
  return true;
}

// The answer names no more than a number. That of a success is known to the server, as an order or as the
// position it has become; which request was meant is read from there. A number that nobody knows, and one
// that was answered before, settle nothing: better a request that stays open than one that is taken for done.
// Of several open requests nobody knows which one was refused, until as many are refused as are open.
bool CClientAPIManager::settle_entry(std::int64_t order, std::int32_t code) {
  if (order != 0 && !answered_.insert(order).second) return false;
  const auto open = [&] {
    return std::count_if(entries_.begin(), entries_.end(), [](const SentOrder& o) { return !o.settled(); });
  };
  bool meant = open() > 0;
  if (code == result::succeeded) {
    meant = settle_placed(order);
  } else if (meant) {
    refused_entries_.push_back({order, code});
  }
  if (open() == 0 || open() > static_cast<std::ptrdiff_t>(refused_entries_.size())) return meant;
  for (SentOrder& each : entries_) {
    if (each.settled()) continue;
    const auto [number, reason] = refused_entries_.front();
    refused_entries_.erase(refused_entries_.begin());
    each.number = number;
    settle(each, reason, Outcome::refused);
  }
  refused_entries_.clear();
  if (entries_.size() > 1) entries_.erase(entries_.begin(), entries_.end() - 1);
  return meant;
}

bool CClientAPIManager::settle_placed(std::int64_t order) {
  const auto oldest = [&](auto&& meant) {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const SentOrder& o) { return !o.settled() && meant(o); });
  };
  auto at = entries_.end();
  if (const PendingOrder* placed = pending_order(order)) {
    const SymbolHandle symbol = symbols_.find(placed->symbol);
    const auto alike = [&](const SentOrder& o) {
      return o.symbol == symbol && o.side == placed->operation && o.amount == placed->amount;
    };
    at = oldest([&](const SentOrder& o) { return alike(o) && o.price == placed->price; });
    if (at == entries_.end()) at = oldest(alike);
  } else if (const OpenPosition* executed = open_position(order)) {
    const SymbolHandle symbol = symbols_.find(executed->symbol);
    at = oldest([&](const SentOrder& o) {
      return o.symbol == symbol && (o.side > 0) == (executed->side > 0) && o.amount == executed->amount;
    });
  }
  if (at == entries_.end()) return false;
  at->number = order;
  settle(*at, result::succeeded, Outcome::accepted);
  if (at + 1 != entries_.end()) entries_.erase(at);
  return true;
}

// An SL/TP order that was there when the request was sent may be gone when it is refused.
bool CClientAPIManager::settle_stops(std::int64_t order, std::int32_t code) {
  const auto oldest = [&](auto&& meant) {
    return std::find_if(requests_.begin(), requests_.end(), [&](const SentOrder& o) {
      return o.kind == RequestKind::stops && !o.settled() && meant(o);
    });
  };
  auto at = oldest([&](const SentOrder& o) { return o.stops_order == order; });
  if (at == requests_.end()) {
    if (const PendingOrder* placed = pending_order(order)) {
      at = oldest([&](const SentOrder& o) { return o.number == placed->reference; });
    } else if (code != result::succeeded) {
      const auto meant = [&](const SentOrder& o) {
        return o.kind == RequestKind::stops && !o.settled() &&
               (o.stops_order == 0 || pending_order(o.stops_order) == nullptr);
      };
      if (std::count_if(requests_.begin(), requests_.end(), meant) == 1) at = oldest(meant);
    }
  }
  return at != requests_.end() &&
         settle_request(RequestKind::stops, at->number, code, SentOrder::outcome_of(code));
}

bool CClientAPIManager::settle_request(RequestKind kind, std::int64_t number, std::int32_t code,
                                       Outcome outcome) {
  const auto same = [&](const SentOrder& o) { return o.kind == kind && o.number == number; };
  const auto at = std::find_if(requests_.begin(), requests_.end(),
                               [&](const SentOrder& o) { return same(o) && !o.settled(); });
  if (at == requests_.end()) {
    // Waiting for it was given up, and now it comes after all.
    const auto last = std::find_if(requests_.rbegin(), requests_.rend(), same);
    if (last == requests_.rend() || last->outcome != Outcome::unknown) return false;
    settle(*last, code, outcome);
    return true;
  }
  settle(*at, code, outcome);
  if (at->settled() && std::any_of(at + 1, requests_.end(), same)) requests_.erase(at);
  return true;
}

int CClientAPIManager::unanswered() const {
  const auto open = [](const std::vector<SentOrder>& sent) {
    return std::count_if(sent.begin(), sent.end(), [](const SentOrder& order) { return !order.settled(); });
  };
  return static_cast<int>(open(orders_) + open(entries_) + open(requests_));
}

void CClientAPIManager::journal_unknown(const std::string& what) {
  log(what + " was sent, but no result came: the outcome is unknown, check the positions of account " +
      std::to_string(account_));
}

void CClientAPIManager::journal_unanswered() {
  const auto give_up = [&](std::vector<SentOrder>& sent, auto&& what) {
    for (SentOrder& order : sent) {
      if (order.settled()) continue;
      settle(order, 0, Outcome::unknown);
      journal_unknown(what(order));
    }
  };
  give_up(orders_, [&](const SentOrder& order) { return "Order " + words(order, symbols_); });
  give_up(entries_, [&](const SentOrder& order) {
    return "Entry order " + words(order, symbols_) + " at " + number_text(order.price);
  });
  give_up(requests_,
          [](const SentOrder& request) { return "The request for #" + std::to_string(request.number); });
  refused_entries_.clear();
  for (NewOrders* sent : {&orders_, &entries_}) {
    if (sent->size() > 1) sent->erase(sent->begin(), sent->end() - 1);
  }
}

}  // namespace tutti
