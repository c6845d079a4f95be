#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "fix/wire/listener.h"
#include "fix/wire/network.h"

namespace tutti {

// Connections within the memory of one thread. Nothing moves by itself: `run` carries tasks and bytes until
// all is quiet. What can happen to a connection can be made to happen here, byte by byte.
class MemoryNetwork final : public Network {
 public:
  static constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

  // What happens to the bytes of one direction; counted from when it is set.
  struct Faults {
    std::size_t piece = never;      // so many bytes arrive at a time
    std::size_t cut_after = never;  // the connection ends behind so many, the rest is lost
    std::size_t lose_from = never;  // place of the first byte that is lost
    std::size_t lose_count = 0;     // and how many are
    bool held = false;              // bytes wait, the end of the connection does not
  };
  enum class Way : std::uint8_t { up, down };  // to whoever listens, and back

  MemoryNetwork();
  ~MemoryNetwork() override;

  // Without a listener nobody is reached.
  void set_listener(Listener* listener) { listener_ = listener; }

  void post(std::function<void()> task) override { tasks_.push_back(std::move(task)); }
  void post_after(std::chrono::milliseconds wait, std::function<void()> task) override;
  std::unique_ptr<ByteStream> connect(const Peer& peer, ByteReceiver& receiver) override;

  // Carries all there is; true when anything was.
  bool run();
  // Time goes by, and tasks come due. They run at the next `run`.
  void advance(std::chrono::milliseconds time);

  // For connections from the newest (0) back to the oldest that still stands.
  void set_faults(Way way, const Faults& faults, std::size_t connection = 0);
  // For connections to come.
  void set_faults_of_new(Way way, const Faults& faults) { faults_of_new_[index(way)] = faults; }
  void inject(Way way, std::string_view bytes, std::size_t connection = 0);
  void cut(std::size_t connection = 0);
  std::size_t open_connections() const;
  // All bytes that arrived on that way since the network was made.
  const std::string& carried(Way way) const { return carried_[index(way)]; }

 private:
  class End;
  struct Direction {
    std::string waiting;
    std::size_t passed = 0;
    Faults faults;
  };
  struct Link {
    End* ends[2] = {nullptr, nullptr};  // of the caller, and of whoever was called
    ByteReceiver* receivers[2] = {nullptr, nullptr};
    Direction directions[2];
    bool opened = false;
    bool ended = false;
    std::string why;
  };
  struct Late {
    std::chrono::milliseconds due;
    std::function<void()> task;
  };

  static std::size_t index(Way way) { return way == Way::up ? 0 : 1; }
  std::shared_ptr<Link> standing(std::size_t connection) const;
  bool open(const std::shared_ptr<Link>& link);
  bool carry(const std::shared_ptr<Link>& link, std::size_t way);
  bool finish(const std::shared_ptr<Link>& link);

  Listener* listener_ = nullptr;
  std::deque<std::function<void()>> tasks_;
  std::vector<Late> late_;
  std::chrono::milliseconds now_{0};
  std::vector<std::shared_ptr<Link>> links_;
  Faults faults_of_new_[2];
  std::string carried_[2];
};

}  // namespace tutti
