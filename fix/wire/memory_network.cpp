#include "fix/wire/memory_network.h"

#include <algorithm>
#include <utility>

namespace tutti {

// One end of a link: 0 writes up, 1 writes down.
class MemoryNetwork::End final : public ByteStream {
 public:
  End(std::shared_ptr<Link> link, std::size_t side) : link_(std::move(link)), side_(side) {
    link_->ends[side_] = this;
  }
  ~End() override {
    link_->ends[side_] = nullptr;
    link_->receivers[side_] = nullptr;
    end("The connection was closed");
  }
  End(const End&) = delete;
  End& operator=(const End&) = delete;

  void write(std::string_view bytes) override {
    if (!link_->ended) link_->directions[side_].waiting.append(bytes);
  }
  std::size_t unsent() const override { return link_->directions[side_].waiting.size(); }
  void close() override { end("The connection was closed"); }

 private:
  // What was written before still arrives.
  void end(const char* why) {
    if (std::exchange(link_->ended, true)) return;
    link_->why = why;
  }

  const std::shared_ptr<Link> link_;
  const std::size_t side_;
};

MemoryNetwork::MemoryNetwork() = default;
MemoryNetwork::~MemoryNetwork() = default;

void MemoryNetwork::post_after(std::chrono::milliseconds wait, std::function<void()> task) {
  late_.push_back({now_ + wait, std::move(task)});
}

void MemoryNetwork::advance(std::chrono::milliseconds time) {
  now_ += time;
  std::stable_sort(late_.begin(), late_.end(), [](const Late& a, const Late& b) { return a.due < b.due; });
  while (!late_.empty() && late_.front().due <= now_) {
    tasks_.push_back(std::move(late_.front().task));
    late_.erase(late_.begin());
  }
}

std::unique_ptr<ByteStream> MemoryNetwork::connect(const Peer&, ByteReceiver& receiver) {
  const auto link = std::make_shared<Link>();
  link->receivers[0] = &receiver;
  for (const std::size_t way : {0, 1})
    link->directions[way].faults = faults_of_new_[way];
  links_.push_back(link);
  return std::make_unique<End>(link, 0);
}

bool MemoryNetwork::run() {
  bool moved = false;
  for (bool again = true; again;) {
    again = false;
    while (!tasks_.empty()) {
      const auto task = std::move(tasks_.front());
      tasks_.pop_front();
      task();
      again = true;
    }
    // A receiver may begin and end connections.
    const auto links = links_;
    for (const auto& link : links) {
      again = open(link) || again;
      for (const std::size_t way : {0, 1})
        while (carry(link, way))
          again = true;
      again = finish(link) || again;
    }
    moved = moved || again;
  }
  return moved;
}

bool MemoryNetwork::open(const std::shared_ptr<Link>& link) {
  if (link->opened || link->ended) return false;
  link->opened = true;
  if (listener_ != nullptr)
    link->receivers[1] = listener_->on_connection(std::make_unique<End>(link, 1), "memory");
  if (link->receivers[1] == nullptr) {
    link->ended = true;
    link->why = "Nobody answers there";
    return true;
  }
  link->receivers[1]->on_open();
  if (link->receivers[0] != nullptr) link->receivers[0]->on_open();
  return true;
}

bool MemoryNetwork::carry(const std::shared_ptr<Link>& link, std::size_t way) {
  Direction& direction = link->directions[way];
  Faults& faults = direction.faults;
  if (!link->opened || direction.waiting.empty() || faults.held) return false;
  if (direction.passed >= faults.cut_after) {
    for (Direction& each : link->directions)
      each.waiting.clear();
    link->ended = true;
    link->why = "The connection was lost";
    return false;
  }
  const std::size_t place = direction.passed;
  std::size_t count = std::min({direction.waiting.size(), faults.piece, faults.cut_after - place});
  const bool lost = place >= faults.lose_from && place - faults.lose_from < faults.lose_count;
  if (lost)
    count = std::min(count, faults.lose_count - (place - faults.lose_from));
  else if (place < faults.lose_from)
    count = std::min(count, faults.lose_from - place);
  const std::string bytes = direction.waiting.substr(0, count);
  direction.waiting.erase(0, count);
  direction.passed += count;
  ByteReceiver* receiver = link->receivers[1 - way];
  if (lost || receiver == nullptr) return true;
  carried_[way].append(bytes);
  receiver->on_bytes(bytes);
  return true;
}

bool MemoryNetwork::finish(const std::shared_ptr<Link>& link) {
  if (!link->ended) return false;
  std::erase(links_, link);
  for (const std::size_t side : {0, 1})
    if (ByteReceiver* receiver = std::exchange(link->receivers[side], nullptr))
      receiver->on_closed(link->why);
  return true;
}

std::shared_ptr<MemoryNetwork::Link> MemoryNetwork::standing(std::size_t connection) const {
  return connection < links_.size() ? links_[links_.size() - 1 - connection] : nullptr;
}

void MemoryNetwork::set_faults(Way way, const Faults& faults, std::size_t connection) {
  if (const auto link = standing(connection)) {
    Direction& direction = link->directions[index(way)];
    direction.faults = faults;
    direction.passed = 0;
  }
}

void MemoryNetwork::inject(Way way, std::string_view bytes, std::size_t connection) {
  if (const auto link = standing(connection)) link->directions[index(way)].waiting.append(bytes);
}

void MemoryNetwork::cut(std::size_t connection) {
  const auto link = standing(connection);
  if (!link) return;
  for (Direction& direction : link->directions)
    direction.waiting.clear();
  link->ended = true;
  link->why = "The connection was lost";
}

std::size_t MemoryNetwork::open_connections() const {
  return links_.size();
}

}  // namespace tutti
