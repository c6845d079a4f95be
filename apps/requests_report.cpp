#include "apps/requests_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "apps/output.h"
#include "apps/stored_fill.h"
#include "core/texts.h"
#include "sessions/gate_texts.h"

namespace tutti {

const SentOrder* RequestsReport::sent(const Asked& asked) const {
  // Where a number stands in two rows either session may have sent it.
  for (const auto& session : context_.main().sessions().Children()) {
    if (session->account() != asked.account) continue;
    if (const SentOrder* request = session->sent_request(kind_, asked.number)) return request;
  }
  return nullptr;
}

bool RequestsReport::answered(const Asked& asked) const {
  const SentOrder* request = sent(asked);
  return request == nullptr || request->settled();
}

bool RequestsReport::accepted(const Asked& asked) const {
  const SentOrder* request = sent(asked);
  return request != nullptr && request->outcome == SentOrder::Outcome::accepted;
}

std::string RequestsReport::result(const SentOrder* request) {
  if (request == nullptr) return "not sent";
  switch (request->outcome) {
    case SentOrder::Outcome::accepted:
      return "done";
    case SentOrder::Outcome::refused:
      break;
    case SentOrder::Outcome::dropped:
      return std::string{gate_texts::row(*request)};
    default:
      return "unknown";
  }
  if (request->result_code != ResultCode::none && request->result_code != tutti::result::succeeded) {
    return std::string{trim(CClientAPIManager::ResultDescription(request->result_code))};
  }
  const std::string_view text = trim(request::text(request->request_code));
  if (!text.empty()) return std::string{text};
  return request->request_code == request::taken
             ? "rejected"
             : fmt::format("refused, request code {}", request->request_code);
}

int RequestsReport::status(const std::vector<Asked>& all) const {
  const auto is_unknown = [this](const Asked& asked) {
    const SentOrder* request = sent(asked);
    return request != nullptr && (!request->settled() || request->outcome == SentOrder::Outcome::unknown);
  };
  if (std::any_of(all.begin(), all.end(), is_unknown)) return exit_status::some_unknown;
  const bool done =
      std::all_of(all.begin(), all.end(), [this](const Asked& asked) { return accepted(asked); });
  return done && !all.empty() ? exit_status::all_accepted : exit_status::some_refused;
}

void RequestsReport::print(std::vector<Asked> all) const {
  std::sort(all.begin(), all.end(), [](const Asked& a, const Asked& b) {
    return std::pair{a.account, a.number} < std::pair{b.account, b.number};
  });
  std::vector<RequestId> requests;
  for (const Asked& asked : all)
    if (const SentOrder* request = sent(asked)) requests.push_back(request->id);
  // Only a close fills.
  const bool fills = kind_ == RequestKind::close;
  const auto stored = fills ? context_.stored(requests) : std::map<RequestId, TicketRequest>{};
  std::vector<std::string> fields{name_, "account", "request_code", "accepted", "result"};
  std::vector<TextTable::Head> heads{{name_, true}, {"account", true}};
  if (fills) {
    fields.insert(fields.end(), {"filled", "price", "time"});
    heads.push_back({"price", true});
  }
  heads.push_back({"result"});
  Records records{std::move(fields)};
  TextTable table{std::move(heads)};
  for (const Asked& asked : all) {
    const SentOrder* request = sent(asked);
    std::vector<Json> values{asked.number, asked.account, request ? Json(request->request_code) : Json{},
                             accepted(asked), result(request)};
    std::vector<std::string> cells{std::to_string(asked.number), std::to_string(asked.account)};
    if (fills) {
      const StoredFill fill{stored, request == nullptr ? 0 : request->id};
      fill.add_to(values);
      cells.push_back(fill.price_text());
    }
    cells.push_back(result(request));
    records.add(std::move(values));
    table.add(std::move(cells));
  }
  context_.print(list_name_, records, context_.totals_and_journal(), [&] {
    Main& main = context_.main();
    return fmt::format("{}{}\n\n{}", table.text(), main.window().totals_pane(), journal_text(main));
  });
}

}  // namespace tutti
