#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace tutti {

// Records in the order in which they came, each of which stays where it is. They lie in large blocks, which
// can be made before they are needed: memory that nobody has touched yet takes longer than filling it.
template <class Record>
class RecordBlocks {
 public:
  std::size_t size() const { return size_; }
  Record& operator[](std::size_t place) { return blocks_[place / block_size][place % block_size]; }
  const Record& operator[](std::size_t place) const {
    return blocks_[place / block_size][place % block_size];
  }

  // A blank one.
  Record& add() {
    if (size_ == room()) make_block();
    return (*this)[size_++];
  }
  // So many can be added afterwards without a new block.
  void make_room(std::size_t count) {
    while (room() - size_ < count)
      make_block();
  }

 private:
  static constexpr std::size_t block_size = 1024;

  std::size_t room() const { return blocks_.size() * block_size; }
  void make_block() { blocks_.push_back(std::make_unique<Record[]>(block_size)); }

  std::vector<std::unique_ptr<Record[]>> blocks_;
  std::size_t size_ = 0;
};

}  // namespace tutti
