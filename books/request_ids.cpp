#include "books/request_ids.h"

#include <algorithm>
#include <memory>
#include <random>
#include <utility>

namespace tutti {
namespace {

constexpr std::chrono::sys_days epoch{std::chrono::year{2025} / 1 / 1};
constexpr int random_bits = 22;
constexpr int place_bits = 10;

}  // namespace

RequestIds::RequestIds(const Clock& clock, std::function<std::uint32_t()> random)
    : clock_(clock), random_(std::move(random)) {
  if (!random_) random_ = [device = std::make_shared<std::random_device>()] { return (*device)(); };
}

RequestId RequestIds::next() {
  const std::int64_t now = std::chrono::floor<std::chrono::seconds>(clock_.now() - epoch).count();
  // A block serves one second at most: a home that is restored goes on with another random number.
  if (now > second_ || place_ == std::int64_t{1} << place_bits) begin_block(now);
  return ((second_ << random_bits | block_) << place_bits) + place_++;
}

void RequestIds::go_on_after(RequestId id) {
  second_ = std::max(second_, id >> (random_bits + place_bits));
}

void RequestIds::begin_block(std::int64_t now) {
  // Within a second, or with a clock that was set back, the block's number itself has to grow.
  second_ = now > second_ ? now : second_ + 1;
  block_ = random_() & ((std::int64_t{1} << random_bits) - 1);
  place_ = 0;
}

}  // namespace tutti
