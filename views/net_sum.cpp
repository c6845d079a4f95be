#include "views/net_sum.h"

#include "core/numbers.h"

namespace tutti {

void NetSum::add(std::int32_t side, double lots, double price, double profit) {
  (side > 0 ? long_lots : short_lots) += lots;
  (side > 0 ? long_value : short_value) += lots * price;
  ++(side > 0 ? longs : shorts);
  floating += profit;
}

void NetSum::take(std::int32_t side, double lots, double price, double profit) {
  (side > 0 ? long_lots : short_lots) -= lots;
  (side > 0 ? long_value : short_value) -= lots * price;
  --(side > 0 ? longs : shorts);
  floating -= profit;
  if (longs == 0) long_lots = long_value = 0.0;
  if (shorts == 0) short_lots = short_value = 0.0;
  if (positions() == 0) floating = 0.0;
}

double NetSum::net() const {
  return lots_of_sum(long_lots - short_lots);
}

double NetSum::long_total() const {
  return lots_of_sum(long_lots);
}

double NetSum::short_total() const {
  return lots_of_sum(short_lots);
}

}  // namespace tutti
