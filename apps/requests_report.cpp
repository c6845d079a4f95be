#include "apps/requests_report.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "apps/output.h"
#include "core/texts.h"

namespace tutti {

const SentOrder* RequestsReport::sent(const Asked& asked) const {
  const CClientAPIManager* session = context_.main().accounts().sessions().by_account(asked.account);
  return session == nullptr ? nullptr : session->sent_request(kind_, asked.number);
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
    default:
      return "unknown";
  }
  if (request->result_code != 0 && request->result_code != tutti::result::succeeded) {
    return std::string{CClientAPIManager::ResultDescription(request->result_code)};
  }
  const std::string_view text = trim(request::text(request->request_code));
  if (!text.empty()) return std::string{text};
  return request->request_code == request::taken
             ? "rejected"
             : fmt::format("refused, request code {}", request->request_code);
}

void RequestsReport::print(const std::vector<Asked>& all) const {
  Main& main = context_.main();
  Console& console = context_.console();
  if (context_.form() == OutputForm::json) {
    nlohmann::json lines = nlohmann::json::array();
    for (const Asked& asked : all) {
      const SentOrder* request = sent(asked);
      lines.push_back({{name_, asked.number},
                       {"account", asked.account},
                       {"request_code", request ? nlohmann::json(request->request_code) : nlohmann::json{}},
                       {"accepted", accepted(asked)},
                       {"result", result(asked)}});
    }
    console.print(json_text(nlohmann::json{
        {list_name_, lines}, {"totals", totals_json(main)}, {"journal", journal_json(main, no_account)}}));
    return;
  }
  if (context_.form() == OutputForm::csv) {
    console.print("{},account,result\n", name_);
    for (const Asked& asked : all)
      console.print("{},{},{}\n", asked.number, asked.account, result(asked));
    return;
  }
  TextTable table{{{name_, true}, {"account", true}, {"result"}}};
  for (const Asked& asked : all) {
    table.add({std::to_string(asked.number), std::to_string(asked.account), result(asked)});
  }
  console.print("{}{}\n\n{}", table.text(), main.window().totals_pane(), journal_text(main));
}

}  // namespace tutti
