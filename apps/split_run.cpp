#include "apps/split_run.h"

#include <fmt/format.h>

#include <algorithm>

#include "accounts/account_texts.h"
#include "apps/output.h"
#include "apps/stored_fill.h"
#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/gate_texts.h"

namespace tutti {

bool SplitRun::chosen(std::int32_t account) const {
  const auto& wanted = arguments_.accounts;
  return wanted.empty() || std::find(wanted.begin(), wanted.end(), account) != wanted.end();
}

bool SplitRun::known_arguments() const {
  if (!context_.knows(arguments_.accounts)) return false;
  // Where nobody is connected no symbol is known, which is no wrong usage: every account's line says why.
  const auto& names = controls_.symbol.items();
  if (!names.empty() && controls_.symbol.find(arguments_.symbol) < 0) {
    std::string known;
    for (const std::string& name : names)
      known += " " + name;
    context_.console().fail("Symbol {} is not carried by any connected account. There are:{}",
                            arguments_.symbol, known);
    return false;
  }
  return true;
}

void SplitRun::tick_accounts() {
  if (arguments_.accounts.empty()) return controls_.all_accounts.click();
  for (const std::int32_t account : arguments_.accounts) {
    if (Row* row = controls_.rows.find(client_key(account))) controls_.rows.tick(*row, true);
  }
}

// Distributing and sending empty the column, and with it why a row could not be ticked.
void SplitRun::note_reasons() {
  for (const Row& row : controls_.rows) {
    const std::string reason = AccountRows::result_of(row);
    if (!row.checked() && !reason.empty()) reasons_[static_cast<std::int32_t>(row.key().number())] = reason;
  }
}

void SplitRun::describe_sent(const SentOrder& order, Line& line) {
  line.request = order.id;
  line.request_code = order.request_code;
  line.share = order.amount;
  switch (order.outcome) {
    case SentOrder::Outcome::waiting:
    case SentOrder::Outcome::unknown:
      line.unknown = true;
      line.result = "unknown";
      break;
    case SentOrder::Outcome::pending:
    case SentOrder::Outcome::partly:
      line.unknown = true;
      line.result = "unknown, " + line.result;
      break;
    case SentOrder::Outcome::accepted:
      line.accepted = true;
      break;
    case SentOrder::Outcome::refused:
      // Some codes write nothing into the row; the operator is told all the same.
      if (line.result.empty() && order.result_code != ResultCode::none) {
        line.result = CClientAPIManager::ResultDescription(order.result_code);
      } else if (line.result.empty()) {
        line.result = fmt::format("refused, request code {}", order.request_code);
      }
      break;
    case SentOrder::Outcome::held:
    case SentOrder::Outcome::queued:
    case SentOrder::Outcome::dropped:
      line.result = gate_texts::row(order);
      break;
    case SentOrder::Outcome::none:
      break;
  }
}

std::string SplitRun::sure_refusal(const CClientAPIManager& session, const Row& row) const {
  switch (share_fault(row)) {
    case ShareFault::zero_or_below:
      return "the share is not above 0";
    case ShareFault::below_minimum:
      return "below the smallest lot of " + number_text(main_.general().lots.minimum);
    case ShareFault::above_maximum:
      return "above the largest lot of " + number_text(main_.general().lots.maximum);
    case ShareFault::none:
      break;
  }
  return price_fault(session);
}

void SplitRun::describe(const CClientAPIManager& session, Line& line) const {
  // The row is that of the session that is logged in, where a number stands in two.
  const CClientAPIManager* trading = main_.sessions().logged_in(session.account());
  const Row* row = trading == nullptr || trading == &session
                       ? controls_.rows.find(client_key(session.account()))
                       : nullptr;
  if (row != nullptr) {
    line.result = AccountRows::result_of(*row);
    const auto reason = reasons_.find(session.account());
    if (line.result.empty() && reason != reasons_.end()) line.result = reason->second;
    if (row->checked()) line.share = AccountRows::share_of(*row);
    if (arguments_.dry_run && line.share && line.result.empty()) line.result = sure_refusal(session, *row);
  } else {
    const AccountEntry::Shown& shown = session.ClientListItem().shown;
    line.result = shown.note.empty() ? "not connected: " + std::string{state_text(shown.state)} : shown.note;
  }
  const SentOrder& order = sent_by(session);
  if (sent_ && order.outcome != SentOrder::Outcome::none) return describe_sent(order, line);
  if (!arguments_.dry_run && line.share && line.result.empty()) line.result = "not sent";
}

std::vector<SplitRun::Line> SplitRun::lines() const {
  std::vector<Line> out;
  for (const auto& session : main_.sessions().Children()) {
    if (!chosen(session->account())) continue;
    Line line;
    line.account = session->account();
    line.user = upper(session->user());
    describe(*session, line);
    line.result = trim(line.result);
    out.push_back(std::move(line));
  }
  std::stable_sort(out.begin(), out.end(),
                   [](const Line& a, const Line& b) { return a.account < b.account; });
  return out;
}

std::string SplitRun::text(const std::vector<Line>& lines, const Stored& stored) const {
  std::vector<TextTable::Head> heads{{"Account", true}, {"User"}, {"Share", true}};
  if (!arguments_.dry_run) heads.insert(heads.end(), {{"Order", true}, {"Price", true}});
  heads.push_back({"Result"});
  TextTable table{heads};
  for (const Line& line : lines) {
    std::vector<std::string> cells{std::to_string(line.account), line.user,
                                   line.share ? number_text(*line.share) : ""};
    if (!arguments_.dry_run) {
      const StoredFill fill{stored, line.request};
      cells.insert(cells.end(), {fill.order_text(), fill.price_text()});
    }
    cells.push_back(line.result);
    table.add(std::move(cells));
  }
  std::string out =
      fmt::format("{} {} lots, {}\n{}", title(), arguments_.amount,
                  controls_.rule.items()[static_cast<std::size_t>(arguments_.rule)], table.text());
  out +=
      fmt::format("Shares {} of {} lots; {} zero or below, {} below the smallest lot of {}\n",
                  number_text(lots_of_sum(shares_.sum)), arguments_.amount, shares_.zero + shares_.negative,
                  shares_.below_minimum, number_text(main_.general().lots.minimum));
  if (arguments_.dry_run) return out;
  const auto accepted =
      std::count_if(lines.begin(), lines.end(), [](const Line& line) { return line.accepted; });
  return out + fmt::format("{} of {} accepted\n{}\n\n{}", accepted, lines.size(),
                           main_.window().totals_pane(), journal_text(main_));
}

void SplitRun::print(const std::vector<Line>& lines) const {
  std::vector<RequestId> requests;
  for (const Line& line : lines)
    if (line.request != 0) requests.push_back(line.request);
  const Stored stored = context_.stored(requests);
  std::vector<std::string> fields{"account", "user", "share", "request_code", "accepted", "result"};
  if (!arguments_.dry_run) fields.insert(fields.end(), {"order", "filled", "price", "time"});
  Records records{std::move(fields)};
  for (const Line& line : lines) {
    std::vector<Json> values{line.account,
                             line.user,
                             line.share ? json_number(*line.share) : Json{},
                             line.request_code ? Json(*line.request_code) : Json{},
                             line.accepted,
                             line.result};
    if (!arguments_.dry_run) {
      const StoredFill fill{stored, line.request};
      values.push_back(fill.order());
      fill.add_to(values);
    }
    records.add(std::move(values));
  }
  context_.print("accounts", records, context_.totals_and_journal(), [&] { return text(lines, stored); });
}

int SplitRun::status(const std::vector<Line>& lines) const {
  const auto unknown = [](const Line& line) { return line.unknown; };
  if (std::any_of(lines.begin(), lines.end(), unknown)) return exit_status::some_unknown;
  const auto good = [&](const Line& line) {
    return arguments_.dry_run ? line.share && line.result.empty() : line.accepted;
  };
  return !lines.empty() && std::all_of(lines.begin(), lines.end(), good) ? exit_status::all_accepted
                                                                         : exit_status::some_refused;
}

int SplitRun::run() {
  if (!known_arguments()) return exit_status::usage;
  if (arguments_.require_connected && !context_.all_connected(arguments_.accounts))
    return exit_status::some_refused;
  main_.sessions().admission().override_limits(arguments_.over_limits);
  if (!arguments_.dry_run) {
    const auto repeated = named()
                              .with("symbol", arguments_.symbol)
                              .with("amount", number_text(read_number(arguments_.amount)))
                              .with("rule", std::to_string(arguments_.rule))
                              .with("decimals", std::to_string(main_.general().precision.decimals()))
                              .with("accounts", arguments_.accounts)
                              .repeated(requote());
    if (repeated) return *repeated;
  }
  controls_.rule.choose(arguments_.rule);
  controls_.symbol.choose(arguments_.symbol);
  controls_.amount.type(arguments_.amount);
  fill_in();
  tick_accounts();
  note_reasons();
  if (!controls_.rows.empty()) controls_.distribute.click();
  note_reasons();
  shares_ = shares();
  if (!arguments_.dry_run) sent_ = send();

  const std::vector<Line> all = lines();
  context_.journal_unanswered();
  print(all);
  return status(all);
}

}  // namespace tutti
