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
  limits::RequestFigures out{.account = request.account, .lots = request.amount};
  double newest = 0.0;
  if (limits::wants_quote(limits_) || limits::wants_value(limits_))
    out = market_figures(request, about, newest);
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
  // What is sent again of a ticket is meant to be the same.
  const auto same = [&](std::chrono::milliseconds since) {
    if (about.retry_of != 0) return;
    out.since_same = out.since_same ? std::min(*out.since_same, since) : since;
  };
  if (limits_[Limit::same_ticket]) {
    if (const auto at = last_same_.find(digest(ticket)); at != last_same_.end()) same(now - at->second);
  }
  if (limits_[Limit::tickets_per_minute]) {
    const auto earlier = [&](const Past& each) { return now - each.time >= minute; };
    const auto first = std::find_if(past_.rbegin(), past_.rend(), earlier);
    out.tickets_in_minute = static_cast<int>(first - past_.rbegin());
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
  // Of each request alone and then added up, so that none waits for the one before.
  const auto mixed = [](std::uint64_t value, std::uint64_t by) {
    const std::uint64_t product = value * by;
    return product ^ product >> 29;
  };
  const auto of_figure = [&](double value, std::uint64_t by) {
    return mixed(std::bit_cast<std::uint64_t>(value), by);
  };
  std::uint64_t out = ticket.size();
  for (const SentOrder* each : ticket) {
    const auto account = static_cast<std::uint64_t>(each->account) << 32;
    const auto kind = static_cast<std::uint64_t>(each->kind) << 32;
    std::uint64_t own = mixed(account | static_cast<std::uint32_t>(each->symbol), 0x9E3779B97F4A7C15U) +
                        mixed(kind | static_cast<std::uint32_t>(format_as(each->side)), 0xC2B2AE3D27D4EB4FU) +
                        of_figure(each->amount, 0xD6E8FEB86659FD93U);
    if (each->kind != RequestKind::open) {
      own += mixed(static_cast<std::uint64_t>(each->number), 0xFF51AFD7ED558CCDU) +
             of_figure(each->price, 0xC4CEB9FE1A85EC53U) +
             of_figure(each->stops.stop_loss, 0x87C37B91114253D5U) +
             of_figure(each->stops.take_profit, 0x4CF5AD432745937FU);
    }
    out += mixed(own, 0x9E3779B97F4A7C15U);
  }
  return out;
}

TicketJudge::Breaches TicketJudge::judge(Requests ticket, const LedgerTicket& about) const {
  if (limits_ == Limits{}) return {};
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
  if (!judged(request) || !limits::wants_quote(limits_)) return std::nullopt;
  double newest = 0.0;
  return limits::judge_leaving(limits_, market_figures(request, about, newest));
}

void TicketJudge::note(Requests ticket) {
  if (std::none_of(ticket.begin(), ticket.end(), [](const SentOrder* each) { return judged(*each); })) return;
  const std::chrono::milliseconds now = clock_.elapsed();
  forget_before(now - longest_memory);
  past_.push_back({now, digest(ticket)});
  last_same_[past_.back().digest] = now;
}

void TicketJudge::forget_before(std::chrono::milliseconds time) {
  for (; !past_.empty() && past_.front().time < time; past_.pop_front()) {
    const auto at = last_same_.find(past_.front().digest);
    // It may have been sent again since.
    if (at != last_same_.end() && at->second == past_.front().time) last_same_.erase(at);
  }
}

}  // namespace tutti
