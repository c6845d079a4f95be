#pragma once

#include <cmath>

namespace tutti {

// A sum that keeps its small parts while large ones come and go: what an addition rounds off is collected
// apart. Without it one damaged record of 10^12 would cost all others their decimals, even once it is gone.
class CompensatedSum {
 public:
  // `rest`: what was rounded off from the value, no more than half of its last digit.
  void add(double value, double rest = 0.0) {
    const double sum = sum_ + value;
    const double taken = sum - sum_;
    lost_ += (sum_ - (sum - taken)) + (value - taken) + rest;
    sum_ = sum;
  }
  void clear() { sum_ = lost_ = 0.0; }
  double value() const { return sum_ + lost_; }

 private:
  double sum_ = 0.0;
  double lost_ = 0.0;
};

}  // namespace tutti
