#include "sessions/ticket_judge.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace tutti {
namespace {

constexpr std::chrono::hours longest_memory{1};  // of a limit over time
constexpr std::chrono::minutes minute{1};

bool opens(const SentOrder& request) {
  return request.kind == RequestKind::open || request.kind == RequestKind::entry;
}

}  // namespace

TicketJudge::TicketJudge(const Books& books, const RequestBook& book, const Clock& clock,
                         const Ledger& ledger, ClientOf client_of)
    : books_(books), book_(book), clock_(clock), ledger_(ledger), client_of_(std::move(client_of)) {}

std::string TicketJudge::symbol_of(const SentOrder& request) const {
  if (request.symbol != no_symbol) return books_.symbols.entry(request.symbol).name;
  if (request.kind == RequestKind::close || request.kind == RequestKind::stops) {
    const auto* position = books_.positions.find(request.number, request.account);
    return position == nullptr ? std::string{} : position->symbol;
  }
  const auto* order = books_.orders.find(request.number, request.account);
  return order == nullptr ? std::string{} : order->symbol;
}

std::string TicketJudge::symbol_of_unknown(const SentOrder& request) const {
  const auto& earlier = ledger_.unknown();
  const auto at = std::find_if(earlier.begin(), earlier.end(),
                               [&](const LedgerUnknown& known) { return known.id == request.id; });
  return at != earlier.end() && !at->symbol.empty() ? at->symbol : symbol_of(request);
}

bool TicketJudge::unknown_before(const SentOrder& request, const Unknown& unknown) const {
  if (unknown.empty() || !opens(request) || request.symbol == no_symbol) return false;
  return std::any_of(unknown.begin(), unknown.end(), [&](const SentOrder* each) {
    if (each->account != request.account) return false;
    if (each->symbol != no_symbol) return each->symbol == request.symbol;
    return symbol_of_unknown(*each) == books_.symbols.entry(request.symbol).name;
  });
}

limits::RequestFigures TicketJudge::market_figures(const SentOrder& request, const LedgerTicket& about,
                                                   double& newest) const {
  limits::RequestFigures out{.account = request.account, .lots = request.amount, .points = 0.0};
  const SymbolHandle symbol =
      request.symbol != no_symbol ? request.symbol : books_.symbols.find(symbol_of(request));
  const SymbolCollection::Entry* quoted = symbol == no_symbol ? nullptr : &books_.symbols.entry(symbol);
  newest = 0.0;
  if (quoted != nullptr && quoted->bid > 0.0 && quoted->quote_time != TimePoint{}) {
    newest = buys(request.side) ? quoted->ask : quoted->bid;
    out.quote_age = std::max(clock_.now() - quoted->quote_time, std::chrono::milliseconds{0});
  }
  if (request.kind == RequestKind::open) {
    out.points.reset();
    if (about.price_at_click > 0.0 && newest > 0.0)
      out.points = std::fabs(newest - about.price_at_click) * std::pow(10.0, quoted->digits);
  }
  return out;
}

limits::RequestFigures TicketJudge::figures(const SentOrder& request, const LedgerTicket& about) const {
  double newest = 0.0;
  limits::RequestFigures out = market_figures(request, about, newest);
  if (!opens(request)) return out;
  if (limits::wants_equity(limits_)) {
    const SummaryAnswer answer = client_of_(request.sender).GetAccountSummary(request.account);
    if (answer.result == result::succeeded) out.equity = answer.values.equity;
  }
  if (limits::wants_value(limits_)) {
    const double price = request.kind == RequestKind::entry ? request.price : newest;
    // What a lot gains while its price doubles is what it is worth.
    double worth = 0.0;
    client_of_(request.sender)
        .EvaluateSLTPPrice(request.symbol_id, price, evaluate::take_profit, 2.0 * price, worth);
    if (std::fabs(worth) > 0.0) out.value = std::fabs(worth) * request.amount;
  }
  return out;
}

limits::TicketFigures TicketJudge::figures(Requests ticket, const LedgerTicket& about) const {
  limits::TicketFigures out{.total = about.typed_total};
  const std::chrono::milliseconds now = clock_.elapsed();
  const auto same = [&](std::chrono::milliseconds since) {
    out.since_same = out.since_same ? std::min(*out.since_same, since) : since;
  };
  const std::uint64_t own = limits_[Limit::same_ticket] ? digest(ticket) : 0;
  for (const Past& each : past_) {
    if (now - each.time < minute) ++out.tickets_in_minute;
    if (each.digest == own) same(now - each.time);
  }
  for (const LedgerPastTicket& each : ledger_.recent()) {
    // Of a clock that was set back it was just now.
    const auto since = std::max(clock_.now() - each.time, std::chrono::milliseconds{0});
    if (since < minute) ++out.tickets_in_minute;
    if (may_be(each, ticket)) same(since);
  }
  return out;
}

bool TicketJudge::may_be(const LedgerPastTicket& earlier, Requests ticket) const {
  const SentOrder& first = *ticket.front();
  double total = 0.0;
  for (const SentOrder* each : ticket)
    total += each->amount;
  return earlier.kind == first.kind && earlier.count == ticket.size() && earlier.side == first.side &&
         earlier.symbol == symbol_of(first) && std::fabs(earlier.total - total) <= RequestBook::same_lots;
}

std::uint64_t TicketJudge::digest(Requests ticket) {
  std::uint64_t out = 14695981039346656037U;
  const auto add = [&out](std::uint64_t value) { out = (out ^ value) * 1099511628211U + (value >> 32); };
  for (const SentOrder* each : ticket) {
    add(static_cast<std::uint64_t>(each->kind));
    add(static_cast<std::uint64_t>(each->account));
    add(static_cast<std::uint64_t>(each->symbol));
    add(static_cast<std::uint64_t>(format_as(each->side)));
    add(static_cast<std::uint64_t>(each->number));
    for (const double value : {each->amount, each->price, each->stops.stop_loss, each->stops.take_profit})
      add(std::bit_cast<std::uint64_t>(value));
  }
  return out;
}

TicketJudge::Breaches TicketJudge::judge(Requests ticket, const LedgerTicket& about) const {
  std::vector<limits::RequestFigures> requests;
  requests.reserve(ticket.size());
  std::vector<limits::RequestFigures> changes;  // have no lots of their own
  for (const SentOrder* each : ticket) {
    if (!judged(*each)) continue;
    (opens(*each) ? requests : changes).push_back(figures(*each, about));
  }
  Breaches out;
  if (requests.empty() && changes.empty()) return out;
  out = limits::judge(limits_, figures(ticket, about), requests);
  for (const limits::RequestFigures& each : changes)
    if (auto breach = limits::judge_leaving(limits_, each)) out.push_back(*breach);
  return out;
}

std::optional<limits::Breach> TicketJudge::judge_leaving(const SentOrder& request,
                                                         const LedgerTicket& about) const {
  if (!judged(request) || (!limits_[Limit::quote_age] && !limits_[Limit::price_distance]))
    return std::nullopt;
  double newest = 0.0;
  return limits::judge_leaving(limits_, market_figures(request, about, newest));
}

void TicketJudge::note(Requests ticket) {
  if (std::none_of(ticket.begin(), ticket.end(), [](const SentOrder* each) { return judged(*each); })) return;
  const std::chrono::milliseconds now = clock_.elapsed();
  while (!past_.empty() && past_.front().time + longest_memory < now)
    past_.pop_front();
  past_.push_back({now, digest(ticket)});
}

}  // namespace tutti
