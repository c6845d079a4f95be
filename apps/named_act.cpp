#include "apps/named_act.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "apps/requote_answer.h"
#include "apps/sent_report.h"
#include "views/ticket_texts.h"

namespace tutti {
namespace {

bool accepted(const TicketRequest& request) {
  switch (request.state) {
    case LedgerState::filled:
    case LedgerState::part:
    case LedgerState::part_filled:
    case LedgerState::working:
    case LedgerState::done:
      return true;
    case LedgerState::hand:
      return request.reason == hand_filled;
    default:
      return false;
  }
}

bool open(const TicketRequest& request) {
  switch (request.state) {
    case LedgerState::taken:
    case LedgerState::pending:
    case LedgerState::unknown:
    case LedgerState::gone:
      return true;
    default:
      return false;
  }
}

SentLine line(const TicketRequest& request) {
  std::string result{ticket_texts::outcome(request.kind, request.state, request.reason, request.code)};
  const std::string why = ticket_texts::why(request);
  if (!accepted(request) && !why.empty()) result += ": " + why;
  return {.request = request.id,
          .account = request.account.account,
          .kind = request.kind,
          .lots = request.lots,
          .code = std::nullopt,
          .accepted = accepted(request),
          .result = std::move(result)};
}

}  // namespace

NamedAct& NamedAct::with(const std::string& name, const std::string& value) {
  // A value ends where its length says, whatever it holds.
  plan_ += fmt::format("\n{} {} {}", name, value.size(), value);
  return *this;
}

template <class Number>
NamedAct& NamedAct::with(const std::string& name, std::vector<Number> numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return with(name, fmt::format("{}", fmt::join(numbers, ",")));
}

template NamedAct& NamedAct::with(const std::string& name, std::vector<std::int32_t> numbers);
template NamedAct& NamedAct::with(const std::string& name, std::vector<std::int64_t> numbers);

std::optional<int> NamedAct::repeated(RequoteReply requote) {
  if (id_.empty()) return std::nullopt;
  const auto found = context_.named(id_, plan_);
  if (!found) return exit_status::unreadable_data;
  if (!*found) {
    context_.main().sessions().admission().name_next(id_, plan_);
    return std::nullopt;
  }
  if (!(*found)->same_plan) {
    context_.console().fail(
        "--id {} was given to another plan before, ticket {}: nothing was sent. tuttictl tickets shows it",
        id_, (*found)->number);
    return exit_status::usage;
  }
  return go_on(**found, requote);
}

int NamedAct::go_on(const NamedTicket& ticket, RequoteReply requote) {
  const auto before = context_.requests_of(ticket.number);
  if (!before) return exit_status::unreadable_data;
  const auto sent = context_.main().ticket_retry().go_on(ticket.number, *before);
  run_answering(context_, requote, [&] {
    return std::all_of(sent.begin(), sent.end(), [](const SentOrder* each) { return each->settled(); });
  });
  context_.journal_unanswered();
  const std::vector<TicketRequest> all = outcomes(ticket.number);
  std::vector<SentLine> lines;
  for (const TicketRequest& each : all)
    lines.push_back(line(each));
  context_.console().tell("--id {} was asked for before, as ticket {}: {} of its {} requests were sent now",
                          id_, ticket.number, sent.size(), ticket.planned);
  if (all.size() < static_cast<std::size_t>(ticket.planned))
    context_.console().fail("{} requests of it were never stored, and are not sent under this name",
                            static_cast<std::size_t>(ticket.planned) - all.size());
  print_sent(context_, lines);
  if (std::any_of(all.begin(), all.end(), open)) return exit_status::some_unknown;
  const bool done =
      all.size() == static_cast<std::size_t>(ticket.planned) && std::all_of(all.begin(), all.end(), accepted);
  return done ? exit_status::all_accepted : exit_status::some_refused;
}

std::vector<TicketRequest> NamedAct::outcomes(std::int64_t ticket) const {
  std::vector<TicketRequest> all = context_.requests_of(ticket).value_or(std::vector<TicketRequest>{});
  for (TicketRequest& each : all) {
    while (each.retried_by != 0) {
      auto later = context_.stored({each.retried_by});
      const auto at = later.find(each.retried_by);
      if (at == later.end()) break;
      each = std::move(at->second);
    }
  }
  return all;
}

}  // namespace tutti
