#include "sessions/session_summary.h"

#include <bit>
#include <cstdint>
#include <exception>

namespace tutti::session_summary {
namespace {

// Values beyond this are no account of anyone, and would wipe out the other accounts' share of the totals.
constexpr double largest_value = 1e15;
constexpr std::uint64_t sign = std::uint64_t{1} << 63;

// The sign bit is set for a value that is too large or no number: without their sign the bits of numbers are
// in the numbers' order, and whatever is none stands behind them.
std::uint64_t beyond(double value) {
  return (std::bit_cast<std::uint64_t>(value) & ~sign) + (sign - std::bit_cast<std::uint64_t>(largest_value));
}

bool usable(const AccountSummary& s) {
  const std::uint64_t any = beyond(s.balance) | beyond(s.floating_pl) | beyond(s.credit) | beyond(s.equity) |
                            beyond(s.used_margin) | beyond(s.margin_level) | beyond(s.free_margin);
  return any < sign;
}

SummaryAnswer answer_for(const SessionScope& scope, std::int32_t account) {
  try {
    return scope.client.GetAccountSummary(account);
  } catch (const std::exception&) {
    // An error of the library is an answer that failed.
    return {.values = {}, .result = result::failed};
  }
}

AccountSummary without_answer(SessionScope& scope, double floating_pl) {
  scope.book.totals.floating_pl = 0.0;
  return {.floating_pl = floating_pl};
}

void show_answer(SessionScope& scope, const SummaryAnswer& answer) {
  if (answer.result == result::succeeded) [[likely]]
    scope.book.show_values(scope.record, answer.values);
  else
    scope.book.show_values(scope.record, without_answer(scope, 0.0));
}

}  // namespace

void changed(SessionScope& scope, const AccountSummary& reported) {
  if (!usable(reported)) [[unlikely]]
    return scope.refuse("The account's summary");
  scope.book.totals.replace(scope.record.values, reported, TotalsForm::summaries_changed);
  // Stamped with what the query brings.
  scope.record.values = reported;
  show_answer(scope, answer_for(scope, scope.account));
}

void query(SessionScope& scope) {
  show_answer(scope, answer_for(scope, scope.account));
}

AccountSummary ask(SessionScope& scope, std::int32_t account, double floating_pl) {
  const SummaryAnswer answer = answer_for(scope, account);
  return answer.result == result::succeeded ? answer.values : without_answer(scope, floating_pl);
}

}  // namespace tutti::session_summary
