#include "apps/requests_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "apps/output.h"
#include "core/texts.h"

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

std::string RequestsReport::result(const Asked& asked) const {
  const SentOrder* request = sent(asked);
  if (request == nullptr) return "not sent";
  switch (request->outcome) {
    case SentOrder::Outcome::accepted:
      return "done";
    case SentOrder::Outcome::refused:
      break;
    case SentOrder::Outcome::dropped:
      return std::string{RequestGate::not_sent};
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
  Records records{{name_, "account", "request_code", "accepted", "result"}};
  TextTable table{{{name_, true}, {"account", true}, {"result"}}};
  for (const Asked& asked : all) {
    const SentOrder* request = sent(asked);
    records.add({asked.number, asked.account, request ? Json(request->request_code) : Json{}, accepted(asked),
                 result(asked)});
    table.add({std::to_string(asked.number), std::to_string(asked.account), result(asked)});
  }
  context_.print(list_name_, records, context_.totals_and_journal(), [&] {
    Main& main = context_.main();
    return fmt::format("{}{}\n\n{}", table.text(), main.window().totals_pane(), journal_text(main));
  });
}

}  // namespace tutti
