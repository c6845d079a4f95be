#include "limits/send_rate.h"

namespace tutti {
namespace {
constexpr std::chrono::milliseconds second{1000};
}  // namespace

void SendRate::left(std::chrono::milliseconds now) {
  if (left_.empty() || left_.back().time != now) {
    while (!left_.empty() && left_.front().time + second <= now)
      left_.pop_front();
    left_.push_back({now, 0});
  }
  ++left_.back().count;
}

std::optional<std::chrono::milliseconds> SendRate::next(std::optional<double> per_second,
                                                        std::chrono::milliseconds now) const {
  if (!per_second) return std::nullopt;
  const auto most = static_cast<std::size_t>(*per_second);
  std::size_t count = 0;
  for (auto moment = left_.rbegin(); moment != left_.rend() && moment->time + second > now; ++moment) {
    count += moment->count;
    // With this one the second is full, so the next one waits for it to pass.
    if (count >= most) return moment->time + second;
  }
  return std::nullopt;
}

}  // namespace tutti
