#include "sessions/gate_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tutti::gate_texts {
namespace {

struct Texts {
  NotSent why;
  std::string_view held;     // while it may still leave
  std::string_view dropped;  // once it won't
  std::string_view reason;
};
constexpr Texts table[] = {
    {NotSent::nothing, "", "", ""},
    {NotSent::not_stored, "Held: it could not be stored", "Not sent: it could not be stored", "not stored"},
    {NotSent::stored_late, "", "Not sent: it could not be stored", "late"},
    {NotSent::not_noted, "", "Not sent: it could not be stored", "not noted"},
    {NotSent::account_gone, "", "Not sent: the connection was lost", "account gone"},
    {NotSent::stopped, "", "Not sent: trading is stopped", "stop"},
    {NotSent::limit, "Held: a limit is exceeded", "Not sent: a limit is exceeded", "limit"},
    {NotSent::unknown_before, "Held: what became of an earlier request is unknown",
     "Not sent: what became of an earlier request is unknown", "unknown"},
    {NotSent::turn, "Waits for its turn", "Not sent: it waited for its turn for too long", "age"},
    {NotSent::home_lacks, "Held: the ledger lacks earlier requests",
     "Not sent: the ledger lacks earlier requests", "missing"},
    {NotSent::market, "", "Not sent: the quote is too old, or the price has gone", "limit"},
};
const Texts& of(NotSent why) {
  return table[static_cast<std::size_t>(why)];
}

}  // namespace

std::string_view row(const SentOrder& request) {
  switch (request.outcome) {
    case SentOrder::Outcome::held:
    case SentOrder::Outcome::queued:
      return of(request.not_sent).held;
    case SentOrder::Outcome::dropped:
      return of(request.not_sent).dropped;
    default:
      return {};
  }
}

std::string_view reason(NotSent why) {
  return of(why).reason;
}

std::string_view row_of(std::string_view reason) {
  const auto* at = std::find_if(std::begin(table), std::end(table),
                                [reason](const Texts& each) { return each.reason == reason; });
  return at == std::end(table) ? std::string_view{} : at->dropped;
}

std::string not_stored(const std::string& why) {
  return fmt::format(
      ", since what is not stored must not leave: {}. See to the disk of the application folder, then send "
      "them again",
      why);
}

}  // namespace tutti::gate_texts
