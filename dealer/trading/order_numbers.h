#pragma once

#include <chrono>
#include <cstdint>

#include "dealer/config/dealer_config.h"
#include "dealer/market/random.h"

namespace tutti {

// Gives the numbers of orders and tickets, and with each one what is drawn by lot.
class OrderNumbers {
 public:
  // Keeps a reference.
  explicit OrderNumbers(const DealerConfig& config) : config_(config) { start(config.first_number); }

  // The first number of this run. The lots begin anew.
  void start(std::int64_t number) {
    next_ = number;
    drawn_ = config_.first_number - 1;
  }
  std::int64_t next() const { return next_; }
  std::int64_t take() {
    ++drawn_;
    return next_++;
  }
  // Of the request that got the last number. How many numbers the run has given decides, so that what happens
  // to one request doesn't move the others, and a run repeats itself whatever its numbers are.
  std::chrono::milliseconds draw_latency() const {
    return with_jitter(config_.order_latency, scatter(config_.seed, static_cast<std::uint64_t>(drawn_)));
  }

 private:
  const DealerConfig& config_;
  std::int64_t next_ = 0;
  std::int64_t drawn_ = 0;
};

}  // namespace tutti
