#pragma once

#include <cstdint>

#include "core/compensated_sum.h"
#include "sessions/contract/codes.h"

namespace tutti {

// Open positions added up: of a symbol, of an account, or of one symbol in one account.
class NetSum {
 public:
  // Takes a position in, or out again; `lots` are 0 or above. A side without positions is exactly 0.
  void add(Operation side, double lots, double price, double profit);
  void take(Operation side, double lots, double price, double profit);
  void add(const NetSum& other);
  // What the profit of a position has changed by, exactly.
  struct Change {
    Change(double from, double to) : by(to - from) {
      const double back = to - by;
      rest = (to - (by + back)) + (back - from);
    }
    double by;
    double rest;  // that rounding took off
  };
  void change_floating(const Change& change) { floating_.add(change.by, change.rest); }

  std::int32_t positions() const { return long_.positions + short_.positions; }
  // Lots, without the noise of adding up: net is above 0 when more was bought than sold.
  double net() const;
  double long_total() const;
  double short_total() const;
  // Average open price of a side, 0 when it has none. Means something within one symbol only.
  double average_long() const { return long_.average(); }
  double average_short() const { return short_.average(); }
  // Account currency; the total to cents.
  double floating() const { return floating_.value(); }
  double floating_total() const;

 private:
  struct Side {
    CompensatedSum lots;
    CompensatedSum value;  // lots times open price
    std::int32_t positions = 0;

    void add(const Side& other) {
      lots.add(other.lots.value());
      value.add(other.value.value());
      positions += other.positions;
    }
    double average() const { return lots.value() > 0.0 ? value.value() / lots.value() : 0.0; }
  };

  Side long_;
  Side short_;
  CompensatedSum floating_;
};

}  // namespace tutti
