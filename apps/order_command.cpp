#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "apps/commands.h"
#include "apps/output.h"
#include "apps/requote_answer.h"
#include "core/numbers.h"

namespace tutti {
namespace {

// One account of the order: what it was to get and what became of it.
struct Line {
  std::int32_t account = 0;
  std::string user;
  std::optional<double> share;
  std::optional<std::int32_t> request_code;
  bool accepted = false;
  std::string result;
};

class OrderRun {
 public:
  OrderRun(Terminal& terminal, const OrderArguments& arguments)
      : terminal_(terminal), main_(terminal.main()), form_(main_.market_order()), arguments_(arguments) {}

  int run();

 private:
  bool known_arguments() const;
  void tick_accounts();
  void send();
  bool chosen(std::int32_t account) const;
  bool all_answered() const;
  std::vector<Line> lines() const;
  void describe(const CClientAPIManager& session, Line& line) const;
  void print(const std::vector<Line>& lines) const;
  void print_json(const std::vector<Line>& lines) const;

  Terminal& terminal_;
  Main& main_;
  frmorder& form_;
  const OrderArguments& arguments_;
  std::map<std::int32_t, std::string> not_ticked_;  // why the box of an account could not be ticked
  bool sent_ = false;
};

bool OrderRun::chosen(std::int32_t account) const {
  const auto& wanted = arguments_.accounts;
  return wanted.empty() || std::find(wanted.begin(), wanted.end(), account) != wanted.end();
}

bool OrderRun::known_arguments() const {
  if (!terminal_.knows(arguments_.accounts)) return false;
  // Where nobody is connected no symbol is known, which is no wrong usage: every account's line says why.
  if (!form_.cbsymbols.items().empty() && form_.cbsymbols.find(arguments_.symbol) < 0) {
    std::string known;
    for (const std::string& name : form_.cbsymbols.items())
      known += " " + name;
    fmt::print(stderr, "Symbol {} is not carried by any connected account. There are:{}\n", arguments_.symbol,
               known);
    return false;
  }
  return true;
}

void OrderRun::tick_accounts() {
  if (arguments_.accounts.empty()) return form_.chkAllClients.click();
  for (const std::int32_t account : arguments_.accounts) {
    if (Row* row = form_.lvwConClients.find(client_key(account))) form_.lvwConClients.tick(*row, true);
  }
}

bool OrderRun::all_answered() const {
  const auto sessions = main_.accounts().sessions().Children();
  return std::all_of(sessions.begin(), sessions.end(),
                     [](const auto& session) { return session->last_order().settled(); });
}

void OrderRun::send() {
  Button& button = arguments_.buy ? form_.cmdbuy : form_.cmdsell;
  // Not available unless shares were written.
  if (!button.enabled()) return;
  sent_ = true;
  button.click();
  run_answering(terminal_, arguments_.requote, [this] { return all_answered(); });
}

void OrderRun::describe(const CClientAPIManager& session, Line& line) const {
  const Row* row = form_.account_row(session.account());
  if (row != nullptr) {
    line.result = row->text(frmorder::result_text);
    // Distribute empties the column, and with it why a row could not be ticked.
    const auto reason = not_ticked_.find(session.account());
    if (line.result.empty() && reason != not_ticked_.end()) line.result = reason->second;
    if (row->checked() && !row->cell(frmorder::amount).empty()) {
      line.share = row->cell(frmorder::amount).number();
    }
  } else if (const Row* listed = session.ClientListItem()) {
    const std::string notes = listed->text(frmMain::notes);
    line.result = notes.empty() ? "not connected: " + listed->text(frmMain::state) : notes;
  }
  const SentOrder& order = session.last_order();
  if (!sent_ || order.outcome == SentOrder::Outcome::none) return;
  line.request_code = order.request_code;
  line.share = order.amount;
  switch (order.outcome) {
    case SentOrder::Outcome::waiting:
    case SentOrder::Outcome::unknown:
      line.result = "unknown";
      break;
    case SentOrder::Outcome::pending:
      line.result = "unknown, " + line.result;
      break;
    case SentOrder::Outcome::accepted:
      line.accepted = true;
      break;
    case SentOrder::Outcome::refused:
      // Some codes write nothing into the row; the operator is told all the same.
      if (line.result.empty() && order.result_code != 0) {
        line.result = CClientAPIManager::ResultDescription(order.result_code);
      } else if (line.result.empty()) {
        line.result = fmt::format("refused, request code {}", order.request_code);
      }
      break;
    case SentOrder::Outcome::none:
      break;
  }
}

std::vector<Line> OrderRun::lines() const {
  std::vector<Line> out;
  for (const auto& session : main_.accounts().sessions().Children()) {
    if (!chosen(session->account())) continue;
    Line line;
    line.account = session->account();
    line.user = session->ClientListItem()->text(frmMain::user_name);
    describe(*session, line);
    out.push_back(std::move(line));
  }
  return out;
}

void OrderRun::print(const std::vector<Line>& lines) const {
  TextTable table{{{"Account", true}, {"User"}, {"Share", true}, {"Result"}}};
  double sum = 0.0;
  int without = 0;
  int small = 0;
  int accepted = 0;
  for (const Line& line : lines) {
    table.add(
        {std::to_string(line.account), line.user, line.share ? number_text(*line.share) : "", line.result});
    accepted += line.accepted ? 1 : 0;
    if (!line.share) continue;
    sum += *line.share;
    without += *line.share <= 0.0 ? 1 : 0;
    small += *line.share > 0.0 && *line.share < form_.minimum_lot() ? 1 : 0;
  }
  fmt::print("{} {} {} lots, {}\n{}", arguments_.buy ? "Buy" : "Sell", arguments_.symbol, arguments_.amount,
             form_.CBdis.text(), table.text());
  fmt::print("Shares {} of {} lots; {} zero or below, {} below the smallest lot of {}\n",
             number_text(round_half_even(sum, 8)), arguments_.amount, without, small,
             number_text(form_.minimum_lot()));
  if (arguments_.dry_run) return;
  fmt::print("{} of {} accepted\n{}\n\n{}", accepted, lines.size(), main_.window().totals_pane(),
             journal_text(main_));
}

void OrderRun::print_json(const std::vector<Line>& lines) const {
  nlohmann::json accounts = nlohmann::json::array();
  for (const Line& line : lines) {
    accounts.push_back(
        {{"account", line.account},
         {"user", line.user},
         {"share", line.share ? nlohmann::json(*line.share) : nlohmann::json{}},
         {"request_code", line.request_code ? nlohmann::json(*line.request_code) : nlohmann::json{}},
         {"accepted", line.accepted},
         {"result", line.result}});
  }
  fmt::print("{}\n", nlohmann::json{{"accounts", accounts},
                                    {"totals", totals_json(main_)},
                                    {"journal", journal_json(main_, no_account)}}
                         .dump(2));
}

int OrderRun::run() {
  terminal_.log_in();
  if (!known_arguments()) return exit_status::usage;
  form_.CBdis.choose(arguments_.rule);
  form_.cbsymbols.choose(arguments_.symbol);
  form_.txtammount.type(arguments_.amount);
  tick_accounts();
  for (const Row& row : form_.lvwConClients) {
    if (!row.checked()) {
      not_ticked_[static_cast<std::int32_t>(row.key().number())] = row.text(frmorder::result_text);
    }
  }
  if (!form_.lvwConClients.empty()) form_.cmddis.click();
  if (!arguments_.dry_run) send();

  const std::vector<Line> all = lines();
  terminal_.journal_unanswered();
  if (terminal_.options().form == OutputForm::json) {
    print_json(all);
  } else {
    print(all);
  }
  const auto good = [&](const Line& line) {
    return arguments_.dry_run ? line.share.has_value() : line.accepted;
  };
  return !all.empty() && std::all_of(all.begin(), all.end(), good) ? exit_status::all_accepted
                                                                   : exit_status::some_refused;
}

}  // namespace

int order_command(Terminal& terminal, const OrderArguments& arguments) {
  return OrderRun{terminal, arguments}.run();
}

}  // namespace tutti
