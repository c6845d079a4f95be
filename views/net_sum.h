#pragma once

#include <cstdint>

namespace tutti {

// Open positions added up: of a symbol, of an account, or of one symbol in one account.
struct NetSum {
  double long_lots = 0.0;
  double short_lots = 0.0;
  double long_value = 0.0;  // lots times open price; means something within one symbol only
  double short_value = 0.0;
  double floating = 0.0;   // account currency
  std::int32_t longs = 0;  // positions
  std::int32_t shorts = 0;

  // Takes a position in, or out again. A side without positions is exactly 0, whatever noise its sums held.
  void add(std::int32_t side, double lots, double price, double profit);
  void take(std::int32_t side, double lots, double price, double profit);

  std::int32_t positions() const { return longs + shorts; }
  // Lots, without the noise of adding up: above 0 when more was bought than sold.
  double net() const;
  double long_total() const;
  double short_total() const;
  // Average open price of a side, 0 when it has no positions.
  double average_long() const { return longs == 0 ? 0.0 : long_value / long_lots; }
  double average_short() const { return shorts == 0 ? 0.0 : short_value / short_lots; }
};

}  // namespace tutti
