#include "views/ticket_picture.h"

#include <algorithm>
#include <numeric>

#include "core/numbers.h"

namespace tutti {

TicketPicture TicketPicture::of(const TicketRecord& ticket, const std::vector<FillRecord>& fills) {
  TicketPicture out;
  if (ticket.symbol.empty()) {
    out.state = State::several_symbols;
    return out;
  }
  out.price_at_click = ticket.price_at_click;
  for (const FillRecord& fill : fills) {
    // Without its price nobody knows where it lies.
    if (fill.price == 0.0) continue;
    out.digits = std::max(out.digits, fill.price_digits);
    FillPoint& point = out.points.emplace_back();
    point.account = fill.account.account;
    point.buys = buys(fill.side);
    point.lots = fill.lots;
    point.price = fill.price;
    // The clock may have been set back meanwhile.
    point.after = std::max(fill.heard - ticket.time, std::chrono::milliseconds{0});
    if (ticket.price_at_click != 0.0) point.worse = (fill.price - ticket.price_at_click) * sign(fill.side);
  }
  if (!out.points.empty()) out.state = State::shown;
  return out;
}

double TicketPicture::lots() const {
  return lots_of_sum(std::accumulate(points.begin(), points.end(), 0.0,
                                     [](double sum, const FillPoint& each) { return sum + each.lots; }));
}

}  // namespace tutti
