#include "sessions/admission.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "sessions/gate_texts.h"

namespace tutti {
namespace {

std::string stopped_text(std::size_t count) {
  return fmt::format("{} not sent: trading is stopped. End the stop first",
                     count == 1 ? "1 request was" : fmt::format("{} requests were", count));
}

}  // namespace

Admission::Admission(RequestBook& book, MGeneral& general, const Books& books, Ledger& ledger, StopSign& stop,
                     TicketJudge::ClientOf client_of)
    : book_(book),
      general_(general),
      books_(books),
      ledger_(ledger),
      stop_(stop),
      judge_(books, book, general.clock, ledger, std::move(client_of)) {}

void Admission::admit(LedgerTicket& about, AskedRequests& asked) {
  quote_at_click(about, *asked.requests.front());
  if (!key_.empty() && !general_.in_handler()) {
    about.key = std::exchange(key_, {});
    about.plan = std::exchange(plan_, {});
  }
  if (stop_.stopped()) {
    const AskedRequests refused =
        asked.take_out([&](const SentOrder& each) { return !passes_stop(each, about); });
    refuse(about, refused, NotSent::stopped);
    if (!refused.empty()) tell(stopped_text(refused.size()));
    // What passes is not looked at any further.
    return;
  }
  TicketJudge::Breaches breaches = judge_.judge(asked.requests, about);
  const NotSent why = breaches.empty() ? NotSent::home_lacks : NotSent::limit;
  for (limits::Breach& each : lacking(asked))
    breaches.push_back(each);
  const bool whole = !breaches.empty();
  const auto unknown_before = [this, unknown = judge_.unknown()](const SentOrder& each) {
    return judge_.unknown_before(each, unknown);
  };
  for (const SentOrder* each : asked.requests)
    if (unknown_before(*each)) breaches.push_back({Limit::unknown, each->account});
  if (!breaches.empty() && override_.empty()) {
    if (whole) return hold(about, std::exchange(asked, {}), std::move(breaches), why);
    // The rest has the ticket's name.
    LedgerTicket of_held = about;
    of_held.key.clear();
    of_held.plan.clear();
    hold(std::move(of_held), asked.take_out(unknown_before), std::move(breaches), NotSent::unknown_before);
  } else if (!breaches.empty()) {
    about.override_reason = override_;
    accept_missing(asked, breaches);
    general_.log(fmt::format("Sent over a limit ({}): {}", override_, limits::text(breaches.front())),
                 no_account);
  }
  if (!asked.empty()) judge_.note(asked.requests);
}

void Admission::quote_at_click(LedgerTicket& about, const SentOrder& request) const {
  if (about.price_at_click > 0.0 || request.kind != RequestKind::open || request.symbol == no_symbol) return;
  const SymbolCollection::Entry& quoted = books_.symbols.entry(request.symbol);
  about.price_at_click = buys(request.side) ? quoted.ask : quoted.bid;
  about.quote_age = std::max(general_.clock.now() - quoted.quote_time, std::chrono::milliseconds{0});
}

bool Admission::passes_stop(const SentOrder& request, const LedgerTicket& about) const {
  if (about.origin == TicketOrigin::stop) return true;
  if (request.kind != RequestKind::requote) return false;
  // To reject sends nothing into the market, and a close in dealing was on its way before.
  const auto* order = books_.orders.find(request.number, request.account);
  return !request.accepts || (order != nullptr && order->kind == OrderKind::close);
}

std::optional<Admission::Refusal> Admission::leaving(const SentOrder& request,
                                                     const LedgerTicket& about) const {
  if (stop_.stopped() && !passes_stop(request, about))
    return Refusal{NotSent::stopped, "trading is stopped. End the stop first"};
  if (!about.override_reason.empty()) return std::nullopt;
  if (const auto breach = judge_.judge_leaving(request, about))
    return Refusal{NotSent::market, limits::text(*breach)};
  return std::nullopt;
}

void Admission::hold(LedgerTicket about, AskedRequests asked, TicketJudge::Breaches breaches, NotSent why) {
  held_.push_back({++last_number_, std::move(about), std::move(breaches), std::move(asked)});
  const HeldTicket& ticket = held_.back();
  general_.log(fmt::format("{} held, nothing of it was sent: {}",
                           ticket.asked.size() == 1 ? "1 request is"
                                                    : fmt::format("{} requests are", ticket.asked.size()),
                           ticket.text()),
               no_account);
  for (std::size_t place = 0; place < ticket.asked.size(); ++place) {
    book_.note_kept(*ticket.asked.requests[place], SentOrder::Outcome::held, why);
    ticket.asked.tell(place);
  }
  held_changed();
}

std::optional<HeldTicket> Admission::let_go(int number, std::string_view reason) {
  const auto at = std::find_if(held_.begin(), held_.end(),
                               [number](const HeldTicket& each) { return each.number == number; });
  if (at == held_.end()) return std::nullopt;
  if (look_at_stop() && at->about.origin != TicketOrigin::stop) return std::nullopt;
  TicketJudge::Breaches now = judge_.judge(at->asked.requests, at->about);
  const auto seen = [&](const limits::Breach& breach) {
    return std::any_of(at->breaches.begin(), at->breaches.end(),
                       [&](const limits::Breach& each) { return each.limit == breach.limit; });
  };
  if (!std::all_of(now.begin(), now.end(), seen)) {
    at->breaches = std::move(now);
    held_changed();
    return std::nullopt;
  }
  HeldTicket out = std::move(*at);
  held_.erase(at);
  out.about.override_reason = reason;
  general_.log(fmt::format("Sent over a limit ({}): {}", reason, out.text()), no_account);
  for (SentOrder* each : out.asked.requests)
    book_.note_goes(*each, general_.clock.elapsed());
  accept_missing(out.asked, out.breaches);
  judge_.note(out.asked.requests);
  held_changed();
  return out;
}

void Admission::home_lacks(Sender sender, std::int32_t account, std::int64_t requests) {
  if (requests <= 0) {
    missing_.erase(sender);
    return;
  }
  const bool first = missing_.empty();
  missing_[sender] = requests;
  general_.log(
      fmt::format("The server has taken {} requests of this terminal that its ledger lacks", requests),
      account);
  // One for all accounts.
  if (first)
    general_.queue_message(
        "The server has taken requests of this terminal that its ledger lacks: the application folder was "
        "put "
        "back from a backup, or a copy of it is in use. What was filled since is read back. Compare "
        "positions "
        "with the broker's: the next order is held until you let it go");
}

TicketJudge::Breaches Admission::lacking(const AskedRequests& asked) const {
  TicketJudge::Breaches out;
  if (missing_.empty()) return out;
  std::set<Sender> told;
  for (const SentOrder* each : asked.requests) {
    const auto at = missing_.find(each->sender);
    if (at == missing_.end() || !TicketJudge::judged(*each) || !told.insert(each->sender).second) continue;
    out.push_back({Limit::restored, each->account, static_cast<double>(at->second)});
  }
  return out;
}

void Admission::accept_missing(const AskedRequests& asked, const TicketJudge::Breaches& breaches) {
  if (std::none_of(breaches.begin(), breaches.end(),
                   [](const limits::Breach& each) { return each.limit == Limit::restored; }))
    return;
  for (const SentOrder* each : asked.requests) {
    const auto at = missing_.find(each->sender);
    if (at == missing_.end()) continue;
    general_.log(fmt::format("Trading goes on although {} requests are missing here", at->second),
                 each->account);
    ledger_.accept_missing(each->sender, at->second);
    missing_.erase(at);
  }
}

bool Admission::holds_close(std::int64_t ticket, std::int32_t account) const {
  const auto is_of_it = [&](const SentOrder* each) {
    return each->kind == RequestKind::close && each->number == ticket && each->account == account;
  };
  return std::any_of(held_.begin(), held_.end(), [&](const HeldTicket& each) {
    return std::any_of(each.asked.requests.begin(), each.asked.requests.end(), is_of_it);
  });
}

void Admission::hold_not_stored(LedgerTicket about, AskedRequests asked) {
  TicketJudge::Breaches breaches;
  for (const SentOrder* each : asked.requests)
    breaches.push_back({Limit::not_stored, each->account});
  hold(std::move(about), std::move(asked), std::move(breaches), NotSent::not_stored);
}

void Admission::refuse(int number) {
  const auto at = std::find_if(held_.begin(), held_.end(),
                               [number](const HeldTicket& each) { return each.number == number; });
  if (at == held_.end()) return;
  const HeldTicket ticket = std::move(*at);
  held_.erase(at);
  general_.log(fmt::format("What was held is not sent, {} requests: {}", ticket.asked.size(), ticket.text()),
               no_account);
  refuse(ticket, ticket.asked, ticket.asked.requests.front()->not_sent);
  held_changed();
}

void Admission::drop_held(Sender sender) {
  bool changed = false;
  for (auto ticket = held_.begin(); ticket != held_.end();) {
    const AskedRequests gone =
        ticket->asked.take_out([sender](const SentOrder& each) { return each.sender == sender; });
    changed = changed || !gone.empty();
    refuse(*ticket, gone, NotSent::account_gone);
    ticket = ticket->asked.empty() ? held_.erase(ticket) : std::next(ticket);
  }
  if (changed) held_changed();
}

bool Admission::look_at_stop() {
  if (!stop_.stopped()) return false;
  std::size_t count = 0;
  // What carries the stop out waits for its own answer.
  for (auto ticket = held_.begin(); ticket != held_.end();) {
    const AskedRequests stopped =
        ticket->asked.take_out([&](const SentOrder& each) { return !passes_stop(each, ticket->about); });
    refuse(*ticket, stopped, NotSent::stopped);
    count += stopped.size();
    ticket = ticket->asked.empty() ? held_.erase(ticket) : std::next(ticket);
  }
  if (count == 0) return true;
  tell(stopped_text(count));
  held_changed();
  return true;
}

void Admission::refuse(const HeldTicket& ticket, const AskedRequests& asked, NotSent why) {
  refuse(ticket.about, asked, why, !ticket.not_stored());
}

void Admission::refuse(const LedgerTicket& about, const AskedRequests& asked, NotSent why, bool stores) {
  if (asked.empty()) return;
  if (stores) ledger_.store(about, asked.requests, asked.requests, Ledger::Mark{0}, books_);
  for (std::size_t place = 0; place < asked.size(); ++place) {
    SentOrder& request = *asked.requests[place];
    book_.note_dropped(request, why);
    ledger_.note({.request = request.id,
                  .sender = request.sender,
                  .state = LedgerState::refused_here,
                  .evidence = LedgerEvidence::clock,
                  .reason = std::string{gate_texts::reason(why)}});
    asked.tell(place);
  }
}

void Admission::tell(const std::string& text) {
  general_.log(text, no_account);
  general_.queue_message(text);
}

}  // namespace tutti
