#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <utility>

namespace tutti {

// Room kept for when the disk is full: a file of so many bytes, removed when what must be written needs them.
// Any thread may call.
class DiskReserve {
 public:
  // Nothing is taken yet.
  DiskReserve(std::filesystem::path file, std::uintmax_t bytes) : file_(std::move(file)), bytes_(bytes) {}

  // Takes the room, unless it has it; false when the disk has not that much. What an earlier run took is
  // taken over.
  bool take();
  // Gives it up; false when there was none.
  bool give_up();
  bool held() const { return held_; }
  // Less is left on the disk than the reserve would be.
  bool disk_is_full() const;

 private:
  const std::filesystem::path file_;
  const std::uintmax_t bytes_;
  std::mutex mutex_;
  std::atomic<bool> held_{false};
};

}  // namespace tutti
