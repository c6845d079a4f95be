#include "apps/outcome_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
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
  const bool has_details = text.starts_with("Order #") || text.starts_with("Entry Order ");
  if (!has_details || open == std::string::npos || close == std::string::npos) return text;
  return text.substr(0, open) + text.substr(close + 1);
}

// How lines begin and end that say something was carried out.
constexpr std::pair<std::string_view, std::string_view> told_outcomes[] = {
    {"", " has been accepted"},
    {"", " is closed successfuly"},
    {"", " has been closed successfully"},
    {"Order ", " has been rejected"},
    {"Order #", "has been updated"},
    {"Order number #", " Canceled successfully"},
    {"Updating SL/TP order #", "Succeeded"},
    {"Delete SLTP Order #", "Succeeded"},
    {"Request SL/TP for #", ""},
    {"Entry Order ", " has been executed"},
    {"SL/TP request #", ""},
};

bool tells_an_outcome(const std::string& text) {
  if (text == "Succeeded") return true;
  return std::any_of(std::begin(told_outcomes), std::end(told_outcomes), [&](const auto& line) {
    return text.starts_with(line.first) && text.ends_with(line.second);
  });
}

}  // namespace

OutcomeCheck::OutcomeCheck(const std::vector<frmJournal::Entry>& journal) {
  for (const frmJournal::Entry& entry : journal)
    ++journaled_[{entry.account, without_details(entry.message)}];
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
  // The run that sent it has journaled it as unknown, and nobody was there for the answer.
  if (outcome.resumed && !outcome.told) return;
  const std::string number = std::to_string(outcome.number);
  if (outcome.request > request::taken) {
    const std::string_view text = request::text(outcome.request);
    if (outcome.kind == TradeKind::open && !text.empty()) expect_line(outcome.account, {std::string{text}});
    return;
  }
  if (outcome.set_off) return expect_set_off(outcome, number);
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
  } else if (outcome.kind != TradeKind::close && (outcome.told || outcome.result == result::succeeded)) {
    if (const std::string text = entry_answer(outcome, number); !text.empty())
      expect_line(outcome.account, {text});
    // The answer to new stops tells a refusal's reason in a line of its own.
    if (outcome.kind == TradeKind::set_stops && !outcome.updated) {
      if (const auto text = result_texts::new_stops(outcome.result); !text.empty())
        expect_line(outcome.account, {std::string{text}});
    }
  }
}

void OutcomeCheck::expect_set_off(const Outcome& outcome, const std::string& number) {
  // Of an account that was not there nobody was told.
  if (!outcome.told) return;
  const bool done = outcome.result == result::succeeded;
  if (outcome.kind == TradeKind::set_stops) {
    expect_line(outcome.account,
                {"SL/TP request #" + number + (done ? " is accepted" : " is canceled - no money")});
  } else if (done) {
    expect_line(outcome.account, {"Entry Order " + number + " has been executed"});
  }
}

std::string OutcomeCheck::entry_answer(const Outcome& outcome, const std::string& number) {
  const ResultCode code = outcome.result;
  const auto behind = [](std::string start, std::string_view text) {
    return text.empty() ? std::string{} : start.append(text);
  };
  switch (outcome.kind) {
    case TradeKind::entry:
      if (code == result::all_managed) return "Order " + number + " :All Lots Are Managed";
      if (code == result::bad_connection) return "Unable_Bad Connection";
      return std::string{result_texts::new_entry(code)};
    case TradeKind::update_entry:
      return result_texts::update_entry_line(outcome.number, code);
    case TradeKind::set_stops:
      if (outcome.updated)
        return behind("Updating SL/TP order #" + number + " result #", result_texts::general(code));
      return result_texts::new_stops_line(outcome.number);
    case TradeKind::cancel_entry:
      return behind("Order number #" + number, result_texts::delete_entry(code));
    case TradeKind::cancel_stops:
      return behind("Delete SLTP Order #" + number + " ", result_texts::general(code));
    default:
      return {};
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
