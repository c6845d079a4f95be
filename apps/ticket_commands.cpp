// The operator's acts: what became of each, and sending the rest of one again.

#include <fmt/format.h>

#include <algorithm>

#include "apps/commands.h"
#include "apps/output.h"
#include "apps/requests_report.h"
#include "apps/requote_answer.h"
#include "apps/sent_lines.h"
#include "apps/times.h"
#include "core/numbers.h"
#include "ledger/ledger_reader.h"
#include "ledger/ledger_words.h"
#include "views/ticket_texts.h"

namespace tutti {
namespace {

Json text_or_null(std::string_view text) {
  return text.empty() ? Json{} : Json(std::string{text});
}

SentLines lines_of(CommandContext& context, const std::vector<const SentOrder*>& sent) {
  SentLines out;
  std::vector<RequestId> ids;
  for (const SentOrder* each : sent) {
    ids.push_back(each->id);
    out.lines.push_back({.request = each->id,
                         .account = each->account,
                         .kind = each->kind,
                         .share = each->amount,
                         .request_code = format_as(each->request_code),
                         .accepted = each->outcome == SentOrder::Outcome::accepted,
                         .unknown = !each->settled() || each->outcome == SentOrder::Outcome::unknown,
                         .result = RequestsReport::result(each)});
  }
  out.stored = context.stored(ids);
  return out;
}

}  // namespace

int tickets_command(const HomeContext& context, int count) {
  const auto tickets = LedgerReader{context.terminal.home, context.terminal.key_file}.newest_tickets(count);
  if (!tickets) {
    context.console.fail(tickets.error().text());
    return exit_status::unreadable_data;
  }
  Records records{
      {"ticket", "time", "kind", "side", "symbol", "amount", "price", "by", "retry_of", "result"}};
  TextTable table{{{"Ticket", true},
                   {"Time"},
                   {"What"},
                   {"Side"},
                   {"Symbol"},
                   {"Lots", true},
                   {"Price", true},
                   {"Result"}}};
  for (const TicketRecord& each : *tickets) {
    const double price = each.kind == RequestKind::entry ? each.price : each.price_at_click;
    const std::string result = ticket_texts::summary(each);
    records.add({each.number, utc_text(each.time), std::string{ledger_words::of(each.kind)},
                 text_or_null(ledger_words::of(each.side)), text_or_null(each.symbol),
                 each.total > 0.0 ? json_number(each.total) : Json{},
                 price != 0.0 ? json_number(price) : Json{}, text_or_null(each.by),
                 each.retry_of != 0 ? Json(each.retry_of) : Json{}, result});
    table.add({std::to_string(each.number), utc_text(each.time), std::string{ticket_texts::what(each.kind)},
               ticket_texts::side(each.kind, each.side), each.symbol,
               each.total > 0.0 ? number_text(lots_of_sum(each.total)) : "",
               price != 0.0 ? number_text(price) : "", result});
  }
  context.console.print(report_text(context.form, "tickets", records, Json::object(), [&] {
    return (tickets->empty() ? "" : table.text()) + fmt::format("{} tickets\n", tickets->size());
  }));
  return exit_status::all_accepted;
}

void tell_settled(Console& console, const SettleArguments& arguments) {
  console.tell("Request {} was settled as {}", arguments.request,
               arguments.executed ? hand_filled : hand_not_executed);
}

int settle_command(CommandContext& context, const SettleArguments& arguments) {
  if (!context.main().sessions().settle_by_hand(arguments.request, arguments.executed, arguments.note)) {
    context.console().fail("Request {} is none whose outcome is unknown: tuttictl unknown names them",
                           arguments.request);
    return exit_status::usage;
  }
  tell_settled(context.console(), arguments);
  return exit_status::all_accepted;
}

int retry_command(CommandContext& context, const RetryArguments& arguments) {
  const auto requests = context.requests_of(arguments.ticket);
  if (!requests) return exit_status::unreadable_data;
  if (requests->empty()) {
    context.console().fail("There is no ticket {}: tuttictl tickets names them", arguments.ticket);
    return exit_status::usage;
  }
  context.main().sessions().admission().override_limits(arguments.over_limits);
  const auto sent = context.main().ticket_retry().send(arguments.ticket, *requests, arguments.part);
  context.refuse_held();
  run_answering(context, arguments.requote.value_or(RequoteReply::reject), [&] {
    return std::all_of(sent.begin(), sent.end(), [](const SentOrder* each) { return each->settled(); });
  });
  context.journal_unanswered();
  const SentLines lines = lines_of(context, sent);
  context.print(lines);
  return lines.status(*requests, arguments.part);
}

}  // namespace tutti
