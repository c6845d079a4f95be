#include "pricing/money.h"

#include "sessions/contract/codes.h"

namespace tutti::pricing {

double profit(Operation side, double lots, double contract_size, double from, double to, double rate) {
  const double difference = side == operation::buy ? to - from : from - to;
  return difference * lots * contract_size * rate;
}

double margin(double lots, double contract_size, double rate, double margin_rate, double leverage) {
  return leverage > 0.0 ? lots * contract_size * rate * margin_rate / leverage : 0.0;
}

}  // namespace tutti::pricing
