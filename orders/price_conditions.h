#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tutti {

// The market and the widest distances of the chosen symbol, as price differences, from which the entry order
// window tells where prices must lie.
struct MarketDistances {
  double bid = 0.0;
  double ask = 0.0;
  double limit_offset = 0.0;
  double stop_offset = 0.0;
};

// Indices of the order type list.
enum class EntryType : int { none = -1, buy_limit = 0, sell_limit = 1, buy_stop = 2, sell_stop = 3 };

// "<" or ">" and the price that is meant. For the operator's eyes: nothing is refused by it.
struct PriceConditions {
  std::string_view price_sign;  // side of the market on which the at-price lies; empty without an at-price
  double price_limit = 0.0;     // counts while price_sign is there
  std::string_view stop_loss_sign;
  double stop_loss_bound = 0.0;
  std::string_view take_profit_sign;
  double take_profit_bound = 0.0;
};

// A bound as it is shown, with the decimals of its symbol; with more where it has more.
std::string bound_text(double bound, int digits);
// Whether a price lies beyond the bound that the sign, "<" or ">", tells it to keep to.
bool breaks(double price, std::string_view sign, double bound);

// Of an entry order. Without an at-price the bounds stand around a price of the market.
//
// Of a Sell Stop that price lies above the bid, although the limit for the at-price lies below it.
std::optional<PriceConditions> entry_conditions(EntryType type, const MarketDistances& market,
                                                std::optional<double> at_price);

// Of the SL/TP of a position, by the form's side text; nothing for texts other than "Buy" and "Sell".
std::optional<PriceConditions> position_conditions(std::string_view side, const MarketDistances& market);

// The prices of the form as numbers, for a drawing of them. What is not there is not known or not typed.
struct PriceSketch {
  std::optional<double> bid, ask;
  std::optional<double> entry, stop_loss, take_profit;
  std::optional<double> price_limit;  // the at-price lies beyond it, on the side of price_sign
  std::optional<double> stop_loss_bound, take_profit_bound;
  std::string_view price_sign;  // "<", ">" or empty
  int digits = 5;
};

}  // namespace tutti
