#include "fix/client/requote_clock.h"

#include <algorithm>

namespace tutti {
namespace {

constexpr std::chrono::seconds one_second{1};
constexpr std::size_t most_expired = 1'000;

}  // namespace

bool RequoteClock::offer(const Requote& requote, std::chrono::milliseconds now) {
  const Requote* known = find(requote.order);
  if (known != nullptr && known->new_price == requote.new_price) return false;
  end(requote.order);
  expired_.erase(requote.order);
  offers_.push_back({requote, now + requote.seconds_left * one_second});
  return true;
}

const Requote* RequoteClock::find(std::int64_t order) const {
  const auto at = std::find_if(offers_.begin(), offers_.end(),
                               [&](const Offer& offer) { return offer.requote.order == order; });
  return at == offers_.end() ? nullptr : &at->requote;
}

std::optional<Requote> RequoteClock::tick(std::chrono::milliseconds now) {
  for (Offer& offer : offers_) {
    Requote& requote = offer.requote;
    if (requote.seconds_left == 0 || now < offer.end - (requote.seconds_left - 1) * one_second) continue;
    // After a long wait only the second that counts is told.
    const auto left = std::chrono::ceil<std::chrono::seconds>(offer.end - now).count();
    requote.seconds_left =
        static_cast<std::int16_t>(std::clamp<std::int64_t>(left, 0, requote.seconds_left - 1));
    return requote;
  }
  return std::nullopt;
}

std::optional<std::chrono::milliseconds> RequoteClock::next_due() const {
  std::optional<std::chrono::milliseconds> next;
  for (const Offer& offer : offers_) {
    if (offer.requote.seconds_left == 0) continue;
    const auto due = offer.end - (offer.requote.seconds_left - 1) * one_second;
    if (!next || due < *next) next = due;
  }
  return next;
}

RequestCode RequoteClock::answer(std::int64_t order, bool accept, std::chrono::milliseconds now) {
  const auto at = std::find_if(offers_.begin(), offers_.end(),
                               [&](const Offer& offer) { return offer.requote.order == order; });
  if (at == offers_.end())
    return expired_.contains(order) ? request::timer_expired : request::invalid_order_id;
  if (accept && now >= at->end) return request::timer_expired;
  offers_.erase(at);
  return request::taken;
}

void RequoteClock::end(std::int64_t order) {
  const Requote* known = find(order);
  if (known == nullptr) return;
  if (known->seconds_left == 0) {
    if (expired_.size() >= most_expired) expired_.erase(expired_.begin());
    expired_.insert(order);
  }
  std::erase_if(offers_, [&](const Offer& offer) { return offer.requote.order == order; });
}

void RequoteClock::clear() {
  offers_.clear();
  expired_.clear();
}

}  // namespace tutti
