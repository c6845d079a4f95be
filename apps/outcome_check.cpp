#include "apps/outcome_check.h"

#include <fmt/format.h>

#include <string_view>

#include "core/journal.h"
#include "sessions/contract/codes.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

// "Order #12 [BUY 0.5 EURUSD] has been accepted" without its details.
std::string without_details(const std::string& text) {
  const auto open = text.find(" [");
  const auto close = text.find(']');
  if (!text.starts_with("Order #") || open == std::string::npos || close == std::string::npos) return text;
  return text.substr(0, open) + text.substr(close + 1);
}

bool tells_an_outcome(const std::string& text) {
  return text.ends_with(" has been accepted") || text.ends_with(" is closed successfuly") ||
         text.ends_with(" has been closed successfully") ||
         (text.starts_with("Order ") && text.ends_with(" has been rejected"));
}

}  // namespace

OutcomeCheck::OutcomeCheck(const RowList& journal) {
  for (const Row& row : journal) {
    const Cell& account = row.cell(1);
    if (!account.is_number()) continue;
    ++journaled_[{static_cast<std::int32_t>(account.stored_number()), without_details(row.text(2))}];
  }
}

void OutcomeCheck::expect_line(std::int32_t account, std::vector<std::string> texts) {
  for (const std::string& text : texts) {
    const auto at = journaled_.find({account, text});
    if (at == journaled_.end() || at->second <= 0) continue;
    --at->second;
    return;
  }
  differences_.push_back({account, "the journal does not say: " + texts.front()});
}

void OutcomeCheck::expect(const Outcome& outcome) {
  const std::string number = std::to_string(outcome.number);
  if (outcome.request > request::taken) {
    const std::string_view text = request::text(outcome.request);
    if (outcome.kind == TradeKind::open && !text.empty()) expect_line(outcome.account, {std::string{text}});
    return;
  }
  if (outcome.kind == TradeKind::open) {
    if (outcome.result == result::succeeded) {
      expect_line(outcome.account, {"Order #" + number + " has been accepted"});
    } else if (outcome.dealt) {
      expect_line(outcome.account, {"Order " + number + " has been rejected"});
    } else if (const auto text = result_texts::new_order(outcome.result); outcome.told && !text.empty()) {
      expect_line(outcome.account, {std::string{text}});
    }
  } else if (outcome.kind == TradeKind::close && outcome.result == result::succeeded) {
    expect_line(outcome.account, {"Postion " + number + " is closed successfuly",
                                  "Ticket #" + number + " has been closed successfully"});
  }
}

std::vector<OutcomeCheck::Difference> OutcomeCheck::run(const std::vector<Outcome>& outcomes) {
  for (const Outcome& outcome : outcomes)
    expect(outcome);
  // What is left tells of something that did not happen, or tells it twice.
  for (const auto& [line, left] : journaled_) {
    if (left > 0 && tells_an_outcome(line.second)) {
      differences_.push_back({line.first, "the journal says what the server's books don't: " + line.second});
    }
  }
  return std::move(differences_);
}

}  // namespace tutti
