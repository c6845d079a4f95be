#include "apps/named_act.h"

#include <fmt/format.h>

#include <algorithm>

#include "apps/requote_answer.h"
#include "apps/sent_lines.h"

namespace tutti {
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
  if (!context_.requests_of(ticket.number)) return exit_status::unreadable_data;
  const auto sent = context_.main().ticket_retry().go_on(ticket.number, outcomes(ticket.number));
  run_answering(context_, requote, [&] {
    return std::all_of(sent.begin(), sent.end(), [](const SentOrder* each) { return each->settled(); });
  });
  context_.journal_unanswered();
  const SentLines all = SentLines::of(outcomes(ticket.number));
  const auto planned = static_cast<std::size_t>(ticket.planned);
  context_.console().tell("--id {} was asked for before, as ticket {}: {} of its {} requests were sent now",
                          id_, ticket.number, sent.size(), ticket.planned);
  if (all.lines.size() < planned)
    context_.console().fail("{} requests of it were never stored, and are not sent under this name",
                            planned - all.lines.size());
  context_.print(all);
  const auto is = [&](bool SentLines::Line::*what) {
    return std::count_if(all.lines.begin(), all.lines.end(),
                         [&](const SentLines::Line& each) { return each.*what; });
  };
  if (is(&SentLines::Line::unknown) > 0) return exit_status::some_unknown;
  return static_cast<std::size_t>(is(&SentLines::Line::accepted)) == planned ? exit_status::all_accepted
                                                                             : exit_status::some_refused;
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
