#include "views/net_sum.h"

#include "core/numbers.h"

namespace tutti {

void NetSum::add(Operation side, double lots, double price, double profit) {
  Side& of = buys(side) ? long_ : short_;
  of.lots.add(lots);
  of.value.add(lots * price);
  ++of.positions;
  floating_.add(profit);
}

void NetSum::take(Operation side, double lots, double price, double profit) {
  Side& of = buys(side) ? long_ : short_;
  of.lots.add(-lots);
  of.value.add(-lots * price);
  if (--of.positions == 0) of = {};
  floating_.add(-profit);
  if (positions() == 0) floating_.clear();
}

void NetSum::add(const NetSum& other) {
  long_.add(other.long_);
  short_.add(other.short_);
  floating_.add(other.floating_.value());
}

double NetSum::floating_total() const {
  return round_half_even(floating(), 2);
}

double NetSum::net() const {
  return lots_of_sum(long_.lots.value() - short_.lots.value());
}

double NetSum::long_total() const {
  return lots_of_sum(long_.lots.value());
}

double NetSum::short_total() const {
  return lots_of_sum(short_.lots.value());
}

}  // namespace tutti
