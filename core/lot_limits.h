#pragma once

namespace tutti {

// The smallest and the largest order, in lots; 0 until an account told them.
struct LotLimits {
  double minimum = 0.0;
  double maximum = 0.0;
};

}  // namespace tutti
