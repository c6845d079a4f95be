#include "apps/sent_lines.h"

#include <algorithm>
#include <utility>

#include "apps/stored_fill.h"
#include "apps/terminal.h"
#include "core/numbers.h"
#include "ledger/ledger_words.h"
#include "sessions/gate_texts.h"
#include "views/ticket_texts.h"

namespace tutti {
namespace {

bool is_accepted(const TicketRequest& request) {
  if (request.state == LedgerState::hand) return request.reason == hand_filled;
  return request.state == LedgerState::filled || request.state == LedgerState::working ||
         request.state == LedgerState::done;
}

SentLines::Line line_of(const TicketRequest& request) {
  const std::string_view outcome =
      ticket_texts::outcome(request.kind, request.state, request.reason, request.code);
  const std::string_view kept_back =
      outcome == "not sent" ? gate_texts::row_of(request.reason) : std::string_view{};
  SentLines::Line out{
      .request = request.id,
      .account = request.account.account,
      .kind = request.kind,
      .share = request.lots,
      .accepted = is_accepted(request),
      .unknown = outcome == "unknown" || outcome == "waiting" || request.state == LedgerState::part,
      .result = kept_back.empty() ? ticket_texts::why(request) : std::string{kept_back}};
  if (request.reason == "request code") {
    out.request_code = request.code;
  } else if (outcome != "not sent") {
    out.request_code = format_as(request::taken);
  }
  if (out.accepted) out.result = "done";
  if (out.unknown) out.result = "unknown";
  if (out.result.empty()) out.result = outcome == "refused" ? "rejected" : outcome;
  return out;
}

}  // namespace

SentLines SentLines::of(std::vector<TicketRequest> requests) {
  SentLines out;
  for (TicketRequest& each : requests) {
    out.lines.push_back(line_of(each));
    out.stored.emplace(each.id, std::move(each));
  }
  return out;
}

int SentLines::status(const std::vector<TicketRequest>& of_ticket, RetryPart part) const {
  if (std::any_of(lines.begin(), lines.end(), [](const Line& each) { return each.unknown; }))
    return exit_status::some_unknown;
  const auto wanted = std::count_if(of_ticket.begin(), of_ticket.end(),
                                    [part](const TicketRequest& each) { return each.may_be_retried(part); });
  const auto done = std::count_if(lines.begin(), lines.end(), [](const Line& each) { return each.accepted; });
  return done == wanted ? exit_status::all_accepted : exit_status::some_refused;
}

std::string SentLines::report(OutputForm form, const Json& more,
                              const std::function<std::string()>& behind) const {
  Records records{
      {"account", "kind", "share", "request_code", "accepted", "result", "order", "filled", "price", "time"}};
  TextTable table{
      {{"Account", true}, {"What"}, {"Share", true}, {"Order", true}, {"Price", true}, {"Result"}}};
  for (const Line& each : lines) {
    const StoredFill fill{stored, each.request};
    std::vector<Json> values{each.account,
                             std::string{ledger_words::of(each.kind)},
                             each.share > 0.0 ? json_number(each.share) : Json{},
                             each.request_code,
                             each.accepted,
                             each.result,
                             fill.order()};
    fill.add_to(values);
    records.add(std::move(values));
    table.add({std::to_string(each.account), std::string{ticket_texts::what(each.kind)},
               each.share > 0.0 ? number_text(each.share) : "", fill.order_text(), fill.price_text(),
               each.result});
  }
  return report_text(form, "requests", records, more, [&] { return table.text() + behind(); });
}

}  // namespace tutti
