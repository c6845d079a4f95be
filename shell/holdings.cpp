#include "shell/holdings.h"

#include <utility>

#include "core/numbers.h"

namespace tutti {

Holdings::Holdings(const frmTrade& positions, const CClientAPIManagers& sessions,
                   const std::optional<std::set<std::int32_t>>& accounts) {
  const auto meant = [&accounts](std::int32_t number) { return !accounts || accounts->contains(number); };
  for (const Row& row : positions.lvwOpenPos) {
    if (!meant(static_cast<std::int32_t>(row.cell(frmTrade::account).stored_number()))) continue;
    ++positions_;
    lots_[row.text(frmTrade::symbol)] += row.cell(frmTrade::amount).stored_number();
    floating_ += row.cell(frmTrade::profit).stored_number();
  }
  for (const auto& session : sessions.Children())
    if (meant(session->account())) on_their_way_ += session->unanswered();
}

std::string Holdings::text() const {
  constexpr int money_decimals = 2;
  std::string out =
      positions_ == 0 ? "No open positions"
                      : std::to_string(positions_) + (positions_ == 1 ? " open position" : " open positions");
  const char* before = "\n";
  for (const auto& [symbol, lots] : lots_)
    out += std::exchange(before, ", ") + symbol + " " + number_text(lots_of_sum(lots)) + " lots";
  if (positions_ > 0) out += "\nFloating P/L " + fixed_text(floating_, money_decimals);
  if (on_their_way_ > 0)
    out += "\n" + std::to_string(on_their_way_) +
           (on_their_way_ == 1 ? " order on its way" : " orders on their way");
  return out;
}

}  // namespace tutti
