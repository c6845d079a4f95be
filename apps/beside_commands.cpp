// What a running terminal does for the command line, in the folder that it has.

#include <fmt/format.h>

#include <algorithm>

#include "apps/commands.h"
#include "apps/console_prompt.h"
#include "apps/sent_lines.h"
#include "ledger/ledger_reader.h"

namespace tutti {
namespace {

constexpr auto acts = TerminalLink::Effect::acts;

LedgerReader reader(const HomeContext& context) {
  return {context.terminal.home, context.terminal.key_file};
}

// What the ledger has by now of the requests of one act, which have these ids and those between, and were
// sent again for requests of a ticket.
tl::expected<std::vector<TicketRequest>, FileError> sent_again(const HomeContext& context,
                                                               std::int64_t ticket, RequestId first,
                                                               RequestId last) {
  const auto of_act = [=](RequestId id) { return id >= first && id <= last; };
  const auto before = reader(context).requests_of(ticket);
  if (!before) return tl::unexpected(before.error());
  std::vector<RequestId> ids;
  for (const TicketRequest& each : *before)
    if (of_act(each.retried_by)) ids.push_back(each.retried_by);
  auto out = reader(context).with_tickets_of(ids);
  if (out) std::erase_if(*out, [&](const TicketRequest& each) { return !of_act(each.id); });
  return out;
}

// Waits until they have ended, or the time is over.
tl::expected<SentLines, TerminalLink::Fault> outcome(const HomeContext& context, std::int64_t ticket,
                                                     const Json& sent) {
  const auto count = sent.at("count").get<std::size_t>();
  tl::expected<SentLines, TerminalLink::Fault> out;
  context.link.until([&] {
    if (const auto stored = context.link.ask({{"do", "flush"}}); !stored) {
      out = tl::unexpected(stored.error());
      return true;
    }
    auto found =
        sent_again(context, ticket, sent.at("first").get<RequestId>(), sent.at("last").get<RequestId>());
    if (found && found->size() == count) {
      out = SentLines::of(std::move(*found));
      return std::none_of(out->lines.begin(), out->lines.end(),
                          [](const SentLines::Line& each) { return each.unknown; });
    }
    out = tl::unexpected(
        TerminalLink::Fault{found ? "The ledger does not have all of it" : found.error().text()});
    return true;
  });
  return out;
}

}  // namespace

std::optional<int> settle_beside(const HomeContext& context, const SettleArguments& arguments) {
  const auto settled = context.link.ask({{"do", "settle"},
                                         {"request", arguments.request},
                                         {"executed", arguments.executed},
                                         {"note", arguments.note}},
                                        acts);
  if (!settled && settled.error().nobody) return std::nullopt;
  if (!settled) return tell_fault(context.console, settled.error());
  tell_settled(context.console, arguments);
  return exit_status::all_accepted;
}

std::optional<int> retry_beside(const HomeContext& context, const RetryArguments& arguments) {
  Json question{{"do", "retry"}, {"ticket", arguments.ticket}};
  if (arguments.part == RetryPart::settled_by_hand) question["settled"] = true;
  const auto plan = context.link.ask(question);
  if (!plan && plan.error().nobody) return std::nullopt;
  if (!plan) return tell_fault(context.console, plan.error());
  if (arguments.requote) {
    context.console.fail(
        "Requotes are answered in the window of the terminal that runs: leave --requote away");
    return exit_status::usage;
  }
  const auto before = reader(context).requests_of(arguments.ticket);
  if (!before) {
    context.console.fail(before.error().text());
    return exit_status::unreadable_data;
  }
  const auto asks = plan->at("question").get<std::string>();
  const auto details = plan->at("details").get<std::string>();
  SentLines lines;
  if (plan->at("count").get<std::size_t>() == 0) {
    context.console.tell(details.empty() ? asks : asks + "\n" + details);
  } else if (agreed(context.console, context.terminal.yes, asks, details)) {
    Json act = question;
    act["plan"] = plan->at("plan");
    act["override"] = arguments.over_limits;
    const auto sent = context.link.ask(act, acts);
    if (!sent) return tell_fault(context.console, sent.error());
    for (const Json& each : sent->at("refused"))
      context.console.fail(each.get<std::string>());
    auto found = outcome(context, arguments.ticket, *sent);
    if (!found) {
      context.console.fail("What became of it can't be told: {}", found.error().text);
      return exit_status::some_unknown;
    }
    lines = std::move(*found);
  }
  const auto totals = context.link.ask({{"do", "totals"}});
  const Json more{{"totals", totals ? totals->at("totals") : Json{}}, {"journal", Json::array()}};
  context.console.print(lines.report(context.form, more, [&] {
    return totals ? totals->at("line").get<std::string>() + "\n" : std::string{};
  }));
  return lines.status(*before, arguments.part);
}

}  // namespace tutti
