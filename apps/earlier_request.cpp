#include "apps/earlier_request.h"

#include <fmt/format.h>

#include <string_view>

#include "sessions/contract/codes.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

// With the number that the operator knows.
std::string_view request_words(TradeKind kind) {
  switch (kind) {
    case TradeKind::open:
      return "Market order";
    case TradeKind::close:
      return "Close of position";
    case TradeKind::entry:
      return "Request for entry order";
    case TradeKind::update_entry:
      return "Change of entry order";
    case TradeKind::set_stops:
      return "Request for stop loss and take profit";
    case TradeKind::cancel_entry:
      return "Deletion of entry order";
    case TradeKind::cancel_stops:
      return "Deletion of stop loss and take profit";
  }
  return {};
}

}  // namespace

std::string earlier_request_text(const Outcome& outcome) {
  return fmt::format("{} #{} of account {} from the earlier run: {}", request_words(outcome.kind),
                     outcome.number, outcome.account,
                     outcome.result == ResultCode::none ? "Rejected" : result_texts::general(outcome.result));
}

}  // namespace tutti
