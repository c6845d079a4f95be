#include "ledger/stored_form.h"

#include <algorithm>

#include "core/numbers.h"

namespace tutti {
namespace {

constexpr int most_decimals = 8;  // of any lots

void note_what_was_there(LedgerRequest& out, std::int32_t account, const Books& books) {
  books.positions.each_of_account(account, [&](const OpenPosition& each) {
    out.greatest_before = std::max(out.greatest_before, each.ticket);
    if (each.symbol == out.symbol) out.net_before += buys(each.side) ? each.amount : -each.amount;
  });
  out.net_before = round_half_even(out.net_before, most_decimals);
  books.orders.each_of_account(account, [&](const PendingOrder& each) {
    out.greatest_before = std::max(out.greatest_before, each.order);
  });
}

LedgerRequest stored_form(SentOrder& request, const Books& books) {
  LedgerRequest out{.id = request.id,
                    .sender = request.sender,
                    .kind = request.kind,
                    .side = request.side,
                    .lots = request.amount,
                    .price = request.price,
                    .stops = request.stops,
                    .reference = request.number,
                    .retry_of = request.retry_of,
                    .accepts = request.accepts,
                    .era = request.era};
  if (request.symbol != no_symbol) out.symbol = books.symbols.entry(request.symbol).name;
  switch (request.kind) {
    case RequestKind::open:
    case RequestKind::entry:
      break;
    case RequestKind::close:
    case RequestKind::stops:
      if (const auto* position = books.positions.find(request.number, request.account)) {
        out.symbol = position->symbol;
        out.side = opposite(position->side);
      }
      break;
    case RequestKind::cancel:
    case RequestKind::update:
    case RequestKind::requote:
      if (const auto* order = books.orders.find(request.number, request.account)) {
        out.symbol = order->symbol;
        out.side = order->operation;
      }
      break;
  }
  note_what_was_there(out, request.account, books);
  request.greatest_before = out.greatest_before;
  return out;
}

}  // namespace

std::vector<LedgerRequest> stored_form(Ledger::Requests requests, const Books& books) {
  std::vector<LedgerRequest> out;
  out.reserve(requests.size());
  for (SentOrder* each : requests)
    out.push_back(stored_form(*each, books));
  return out;
}

LedgerTicket ticket_of(LedgerTicket about, const std::vector<LedgerRequest>& requests) {
  for (const LedgerRequest& each : requests)
    about.total += each.lots;
  // What the fractions add up to beyond any share's decimals is none of the operator's.
  about.total = round_half_even(about.total, most_decimals);
  const auto all_have = [&](auto member) {
    return std::all_of(requests.begin(), requests.end(),
                       [&](const LedgerRequest& each) { return each.*member == requests.front().*member; });
  };
  about.kind = requests.front().kind;
  if (all_have(&LedgerRequest::symbol)) about.symbol = requests.front().symbol;
  if (all_have(&LedgerRequest::side)) about.side = requests.front().side;
  return about;
}

LedgerEvent answer_of(const SentOrder& request) {
  const bool taken = request.request_code == request::taken;
  return {.request = request.id,
          .sender = request.sender,
          .state = taken ? LedgerState::taken : LedgerState::refused,
          .reason = taken ? "" : "request code",
          .code = format_as(request.request_code)};
}

}  // namespace tutti
