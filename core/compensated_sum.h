#pragma once

#include <cmath>

namespace tutti {

// A sum that keeps its small parts while large ones come and go: what an addition rounds off is collected
// apart. Without it one damaged record of 10^12 would cost all others their decimals, even once it is gone.
class CompensatedSum {
 public:
  void add(double value) {
    const double sum = sum_ + value;
    lost_ += std::fabs(sum_) >= std::fabs(value) ? (sum_ - sum) + value : (value - sum) + sum_;
    sum_ = sum;
  }
  void clear() { sum_ = lost_ = 0.0; }
  double value() const { return sum_ + lost_; }

 private:
  double sum_ = 0.0;
  double lost_ = 0.0;
};

}  // namespace tutti
