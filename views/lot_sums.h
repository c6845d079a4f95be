#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tutti {

// What a question is about: how many positions or orders, their lots per symbol, and the floating profit
// where there is one.
class LotSums {
 public:
  // `one`: what a single one is called, "position" for example.
  explicit LotSums(std::string_view one) : one_(one) {}

  // `lots` of either side count alike.
  void add(const std::string& symbol, double lots);
  // In account currency.
  void add_profit(double profit) { profit_ = profit_.value_or(0.0) + profit; }

  int count() const { return count_; }
  // A line each: "2 positions", "EURUSD 1.5 lots, GBPUSD 0.5 lots", "Floating P/L -12.50".
  std::string text() const;

 private:
  std::string one_;
  int count_ = 0;
  std::map<std::string, double> lots_;
  std::optional<double> profit_;
};

}  // namespace tutti
