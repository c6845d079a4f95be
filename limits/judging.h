#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/journal.h"
#include "limits/limits.h"

// Whether a ticket may go: plain figures in, breaches out. Nothing is looked up here, and no clock is asked.
namespace tutti::limits {

// Of a ticket as a whole.
struct TicketFigures {
  double total = 0.0;  // lots as the operator typed them; 0: not known
  std::optional<std::chrono::milliseconds>
      since_same{};           // since the same ticket was sent; nothing: never was
  int tickets_in_minute = 0;  // that were sent in the minute before this one
};

// Of one request that opens something. Nothing: not known, which breaches the limit that it is for.
struct RequestFigures {
  std::int32_t account = 0;
  double lots = 0.0;
  std::optional<double> equity{};  // in the account's currency
  std::optional<double> value{};   // the same
  std::optional<std::chrono::milliseconds> quote_age{};
  std::optional<double> points{};  // between the price at the click and the newest one, at or above 0
};

struct Breach {
  Limit limit = Limit::ticket_lots;
  std::int32_t account = no_account;  // none: it is the whole ticket
  std::optional<double> is{};         // nothing: not known
  double allowed = 0.0;

  bool operator==(const Breach&) const = default;
};

// Which of its figures have to be there.
inline bool wants_equity(const Limits& limits) {
  return limits[Limit::equity_lots].has_value();
}
inline bool wants_value(const Limits& limits) {
  return limits[Limit::account_value].has_value();
}
inline bool wants_quote(const Limits& limits) {
  return limits[Limit::quote_age].has_value() || limits[Limit::price_distance].has_value();
}

// All breaches of a ticket before it is stored, of the whole ticket first, then in the order of the requests.
std::vector<Breach> judge(const Limits& limits, const TicketFigures& ticket,
                          std::span<const RequestFigures> requests);
// What changes by time alone, as one of its requests is about to leave: the quote and its distance.
std::optional<Breach> judge_leaving(const Limits& limits, const RequestFigures& request);

// "account 500123: 104.2 lots, above the limit of 10 for one account"
std::string text(const Breach& breach);

}  // namespace tutti::limits
