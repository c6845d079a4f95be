#include "orders/price_conditions.h"

#include <cstddef>
#include <iterator>

#include "core/numbers.h"

namespace tutti {
namespace {

using Price = double MarketDistances::*;

struct EntryRule {
  std::string_view price_sign;
  Price market;
  Price offset;
  double to_limit;  // times the offset, from the market to the limit for the at-price
  double to_base;   // and to the price that stands in for a missing at-price
  std::string_view stop_loss_sign;
  std::string_view take_profit_sign;
  double to_stop_loss;  // times the offset, from the at-price
  double to_take_profit;
};

constexpr Price bid = &MarketDistances::bid, ask = &MarketDistances::ask,
                limit = &MarketDistances::limit_offset, stop = &MarketDistances::stop_offset;

// By EntryType. The Sell Stop's limit and base lie on different sides of the market, as they are meant to.
constexpr EntryRule entry_rules[] = {
    {"<", ask, limit, -1, -1, "<", ">", -1, +1},
    {">", bid, limit, +1, +1, ">", "<", +1, -1},
    {">", ask, stop, +1, +1, "<", ">", -1, +1},
    {"<", bid, stop, -1, +1, ">", "<", +1, -1},
};

struct PositionRule {
  std::string_view side;
  Price market;
  std::string_view stop_loss_sign;
  std::string_view take_profit_sign;
  double to_stop_loss;    // times the stop offset
  double to_take_profit;  // times the limit offset
};

constexpr PositionRule position_rules[] = {
    {"Sell", ask, ">", "<", +1, -1},
    {"Buy", bid, "<", ">", -1, +1},
};

}  // namespace

std::string bound_text(double bound, int digits) {
  std::string out = fixed_text(bound, digits);
  return read_number(out) == bound ? out : number_text(bound);
}

bool breaks(double price, std::string_view sign, double bound) {
  return sign == "<" ? price > bound : sign == ">" && price < bound;
}

std::optional<PriceConditions> entry_conditions(EntryType type, const MarketDistances& market,
                                                std::optional<double> at_price) {
  const auto at = static_cast<std::size_t>(type);
  if (at >= std::size(entry_rules)) return std::nullopt;
  const EntryRule& rule = entry_rules[at];
  const double offset = market.*rule.offset;
  // Every step is a number as its text reads.
  const auto away = [&](double from, double times) { return as_text_reads(from + times * offset); };
  const double base = at_price ? *at_price : away(market.*rule.market, rule.to_base);
  return PriceConditions{.price_sign = rule.price_sign,
                         .price_limit = away(market.*rule.market, rule.to_limit),
                         .stop_loss_sign = rule.stop_loss_sign,
                         .stop_loss_bound = away(base, rule.to_stop_loss),
                         .take_profit_sign = rule.take_profit_sign,
                         .take_profit_bound = away(base, rule.to_take_profit)};
}

std::optional<PriceConditions> position_conditions(std::string_view side, const MarketDistances& market) {
  for (const PositionRule& rule : position_rules) {
    if (rule.side != side) continue;
    const double price = market.*rule.market;
    PriceConditions out;
    out.stop_loss_sign = rule.stop_loss_sign;
    out.stop_loss_bound = as_text_reads(price + rule.to_stop_loss * market.stop_offset);
    out.take_profit_sign = rule.take_profit_sign;
    out.take_profit_bound = as_text_reads(price + rule.to_take_profit * market.limit_offset);
    return out;
  }
  return std::nullopt;
}

}  // namespace tutti
