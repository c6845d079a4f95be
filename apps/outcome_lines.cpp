#include "apps/outcome_lines.h"

#include "sessions/contract/codes.h"
#include "sessions/result_texts.h"

namespace tutti {
namespace {

using Lines = std::vector<LineTexts>;

Lines line(std::string_view text) {
  return text.empty() ? Lines{} : Lines{{std::string{text}}};
}

// An order that a price set off.
Lines set_off_lines(const Outcome& outcome, std::string_view details) {
  // Of an account that was not there nobody was told.
  if (!outcome.told) return {};
  const bool done = outcome.result == result::succeeded;
  if (outcome.kind == TradeKind::set_stops) {
    return line("SL/TP request #" + std::to_string(outcome.number) +
                (done ? " is accepted" : " is canceled - no money"));
  }
  return done ? line(result_texts::executed_line(outcome.number, details)) : Lines{};
}

Lines market_order_lines(const Outcome& outcome, std::string_view details) {
  if (outcome.result == result::succeeded) return line(result_texts::accepted_line(outcome.number, details));
  if (outcome.dealt) return line("Order " + std::to_string(outcome.number) + " has been rejected");
  return outcome.told ? line(result_texts::new_order(outcome.result)) : Lines{};
}

Lines close_lines(const Outcome& outcome) {
  const std::string number = std::to_string(outcome.number);
  if (outcome.result == result::succeeded)
    return {{"Postion " + number + " is closed successfuly",
             "Ticket #" + number + " has been closed successfully"}};
  if (!outcome.told) return {};
  if (outcome.dealt) return line("Closing has been rejected");
  return line(result_texts::close(outcome.result, outcome.number, outcome.account).line);
}

// The line of an answer that concerns entry orders or stops; empty when there is none.
std::string entry_answer(const Outcome& outcome) {
  const ResultCode code = outcome.result;
  const std::string number = std::to_string(outcome.number);
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

}  // namespace

std::vector<LineTexts> outcome_lines(const Outcome& outcome, std::string_view details) {
  if (outcome.request > request::taken)
    return outcome.kind == TradeKind::open ? line(request::text(outcome.request)) : Lines{};
  if (outcome.set_off) return set_off_lines(outcome, details);
  if (outcome.kind == TradeKind::open) return market_order_lines(outcome, details);
  if (outcome.kind == TradeKind::close) return close_lines(outcome);
  if (!outcome.told && outcome.result != result::succeeded) return {};
  Lines out = line(entry_answer(outcome));
  // The answer to new stops tells a refusal's reason in a line of its own.
  if (outcome.kind == TradeKind::set_stops && !outcome.updated) {
    const Lines reason = line(result_texts::new_stops(outcome.result));
    out.insert(out.end(), reason.begin(), reason.end());
  }
  return out;
}

std::string without_details(std::string_view text) {
  const auto open = text.find(" [");
  const auto close = text.find(']');
  const bool has_details = text.starts_with("Order #") || text.starts_with("Entry Order ");
  std::string out{text};
  if (has_details && open != std::string_view::npos && close != std::string_view::npos && close > open)
    out.erase(open, close + 1 - open);
  return out;
}

}  // namespace tutti
