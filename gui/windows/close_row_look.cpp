#include "gui/windows/close_row_look.h"

#include "core/texts.h"
#include "gui/kit/theme.h"
#include "gui/windows/answer_filter.h"

namespace tutti {

namespace {

// Why a position stays, where no answer told it.
std::string_view known_reason(OrderAnswer answer) {
  switch (answer) {
    case OrderAnswer::refused:
      return "Refused";
    case OrderAnswer::waiting:
      return "Waiting";
    case OrderAnswer::unknown:
      return "Unknown: no answer came";
    default:
      return {};
  }
}

QColor side_colour(std::string_view word) {
  return theme::side_colour(word == "Buy" ? Side::buy : word == "Sell" ? Side::sell : Side::none);
}

}  // namespace

QColor CloseRowLook::ink(const Row& row, std::size_t column) const {
  if (!frmClosePos::is_position(row)) {
    if (column != frmClosePos::status) return {};
    return frmClosePos::shows_connected(row) ? theme::colour(Ink::green) : QColor{theme::soft_red};
  }
  if (column != frmClosePos::action) return {};
  const OrderAnswer answer = form_.answer_of(row);
  // It is the operator who waits here, with money in the market.
  return answer == OrderAnswer::waiting ? QColor{theme::amber} : AnswerFilter::colour(answer);
}

std::vector<TextPiece> CloseRowLook::pieces(const Row& row, std::size_t column) const {
  if (!frmClosePos::is_position(row)) return {};
  if (column == frmClosePos::status) return position(row.text(column));
  if (column == frmClosePos::action) return action(row);
  return {};
}

// "#81200340 Buy 0.5 EURUSD at 1.084" behind the room for the box: the side is the second word.
std::vector<TextPiece> CloseRowLook::position(const std::string& text) {
  const std::size_t number = text.find('#');
  const std::size_t side = number == std::string::npos ? number : text.find(' ', number);
  const std::size_t end = side == std::string::npos ? side : text.find(' ', side + 1);
  if (end == std::string::npos) return {};
  const std::string word = text.substr(side + 1, end - side - 1);
  return {{text.substr(0, side + 1), {}}, {word, side_colour(word)}, {text.substr(end), {}}};
}

std::vector<TextPiece> CloseRowLook::action(const Row& row) const {
  const OrderAnswer answer = form_.answer_of(row);
  std::string reason{known_reason(answer)};
  if (reason.empty()) return {};
  if (const std::string_view told = trim(form_.answer_text(row)); !told.empty()) reason = told;
  const std::string text{trim(row.text(frmClosePos::action))};
  const bool still_waits = row.reads(frmClosePos::action, frmClosePos::waiting_text);
  if (still_waits && answer == OrderAnswer::waiting) return {{text, {}}};
  if (still_waits || text == reason) return {{reason, {}}};
  return {{text + "  -  " + reason, {}}};
}

std::string CloseRowLook::tip(const Row& row, std::size_t column) const {
  if (column == frmClosePos::account) return form_.user_names(row);
  return frmClosePos::is_position(row) ? std::string{trim(form_.answer_text(row))} : std::string{};
}

}  // namespace tutti
