#include "fix/client/fix_lines.h"

#include <chrono>
#include <utility>

namespace tutti {

FixLines::FixLines(Network& network, const BrokerProfile& profile, const FixDictionary& dictionary)
    : network_(network), profile_(profile), dictionary_(dictionary) {}

void FixLines::open(std::uint64_t line, LineLogin login) {
  // Tasks are copied, a password is not.
  const auto kept = std::make_shared<LineLogin>(std::move(login));
  network_.post([this, line, kept] {
    auto made = std::make_unique<FixLine>(line, profile_, dictionary_, inbox_, std::move(*kept));
    lines_.emplace(line, std::move(made)).first->second->begin(network_);
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
    for (const auto& [key, line] : lines_)
      line->tick();
    sweep();
    if (lines_.empty())
      ticking_ = false;
    else
      tick();
  });
}

void FixLines::sweep() {
  std::erase_if(lines_, [](const auto& each) { return each.second->over(); });
}

}  // namespace tutti
