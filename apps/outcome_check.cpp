#include "apps/outcome_check.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "apps/missing_lines.h"
#include "apps/outcome_lines.h"

namespace tutti {
namespace {

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
  // What was added tells of an earlier run.
  for (const frmJournal::Entry& entry : journal)
    if (!was_added(entry.message)) ++journaled_[{entry.account, without_details(entry.message)}];
}

void OutcomeCheck::expect(const Outcome& outcome) {
  // The run that sent it has journaled it as unknown, and nobody was there for the answer.
  if (outcome.resumed && !outcome.told) return;
  for (const LineTexts& texts : outcome_lines(outcome)) {
    const auto at = std::find_if(texts.begin(), texts.end(), [&](const std::string& text) {
      const auto line = journaled_.find({outcome.account, text});
      return line != journaled_.end() && line->second > 0;
    });
    if (at == texts.end())
      differences_.push_back({outcome.account, "the journal does not say: " + texts.front()});
    else
      --journaled_[{outcome.account, *at}];
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
