#include "fix/client/fix_lines.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tutti {

FixLines::FixLines(Network& network, const BrokerProfile& profile, const FixDictionary& dictionary)
    : network_(network), profile_(profile), dictionary_(dictionary) {}

void FixLines::open(std::uint64_t line, LineLogin login) {
  // Tasks are copied, a password is not.
  const auto kept = std::make_shared<LineLogin>(std::move(login));
  network_.post([this, line, kept] {
    lines_.emplace(
        line, std::make_unique<FixLine>(line, profile_, dictionary_, inbox_, std::move(*kept), [this, line] {
          if (lines_.at(line)->settled()) logging_in_.erase(line);
          network_.post([this] { admit(); });
        }));
    waiting_.push_back(line);
    admit();
    if (!std::exchange(ticking_, true)) tick();
  });
}

void FixLines::send(std::uint64_t line, WireAsk ask) {
  network_.post([this, line, ask = std::move(ask)] {
    const auto at = lines_.find(line);
    if (at != lines_.end()) return at->second->send(ask);
    if (const auto* request = std::get_if<WireRequest>(&ask)) inbox_.put({line, line::Unsent{request->id}});
  });
}

void FixLines::close(std::uint64_t line) {
  network_.post([this, line] {
    if (const auto at = lines_.find(line); at != lines_.end()) at->second->log_out();
  });
}

// No line is destroyed while it is called: they are swept between two ticks.
void FixLines::tick() {
  network_.post_after(std::chrono::seconds{1}, [this] {
    ++second_;
    for (const auto& [key, line] : lines_)
      line->tick();
    sweep();
    admit();
    if (lines_.empty())
      ticking_ = false;
    else
      tick();
  });
}

bool FixLines::may_begin(const FixLine& line) const {
  return std::none_of(lines_.begin(), lines_.end(), [&](const auto& each) {
    return each.second->account() == line.account() && each.second->leaving();
  });
}

void FixLines::admit() {
  constexpr std::int64_t minute = 60;
  while (!begun_.empty() && begun_.front() <= second_ - minute)
    begun_.pop_front();
  const BrokerProfile::Connection& limits = profile_.connection;
  for (auto at = waiting_.begin(); at != waiting_.end();) {
    if (logging_in_.size() >= static_cast<std::size_t>(limits.logons_at_once)) return;
    if (limits.logons_per_minute > 0 && begun_.size() >= static_cast<std::size_t>(limits.logons_per_minute))
      return;
    const std::uint64_t key = *at;
    const auto found = lines_.find(key);
    const bool gone = found == lines_.end() || found->second->over();
    if (!gone && !may_begin(*found->second)) {
      ++at;
      continue;
    }
    at = waiting_.erase(at);
    if (gone) continue;
    if (limits.logons_per_minute > 0) begun_.push_back(second_);
    logging_in_.insert(key);
    found->second->begin(network_);
  }
}

void FixLines::sweep() {
  std::erase_if(lines_, [](const auto& each) { return each.second->over(); });
}

}  // namespace tutti
