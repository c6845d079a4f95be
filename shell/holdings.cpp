#include "shell/holdings.h"

namespace tutti {

Holdings::Holdings(const PositionBook& positions, const CClientAPIManagers& sessions,
                   const std::optional<std::set<std::int32_t>>& accounts) {
  const auto meant = [&accounts](std::int32_t number) { return !accounts || accounts->contains(number); };
  for (const PositionBook::Record* position : positions.all()) {
    if (!meant(position->account)) continue;
    sums_.add(position->symbol, position->amount);
    sums_.add_profit(position->floating_pl);
  }
  for (const auto& session : sessions.Children())
    if (meant(session->account())) on_their_way_ += session->unanswered();
}

std::string Holdings::text() const {
  std::string out = sums_.count() == 0 ? "No open positions" : sums_.text();
  if (on_their_way_ > 0)
    out += "\n" + std::to_string(on_their_way_) +
           (on_their_way_ == 1 ? " order on its way" : " orders on their way");
  return out;
}

}  // namespace tutti
