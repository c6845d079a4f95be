#include "limits/send_rate.h"

namespace tutti {
namespace {
constexpr std::chrono::milliseconds second{1000};
}  // namespace

void SendRate::left(std::chrono::milliseconds now) {
  while (!left_.empty() && left_.front() + second <= now)
    left_.pop_front();
  left_.push_back(now);
}

std::optional<std::chrono::milliseconds> SendRate::next(std::optional<double> per_second,
                                                        std::chrono::milliseconds now) const {
  if (!per_second) return std::nullopt;
  const auto most = static_cast<std::size_t>(*per_second);
  if (left_.size() < most) return std::nullopt;
  const auto free = left_[left_.size() - most] + second;
  if (free <= now) return std::nullopt;
  return free;
}

}  // namespace tutti
