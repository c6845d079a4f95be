#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace tutti {

// Overwrites a text with zeros, so that its bytes do not stay in memory, and empties it.
void wipe(std::string& text) noexcept;

// A password or a key. Its bytes are overwritten when it ends or gets another value; it can't be printed, and
// copying it takes a word. What it was made from is its maker's to wipe.
class Secret {
 public:
  Secret() = default;
  // Implicit, so that login data can be written down as plain texts; the way back is reveal().
  template <class Text>
  requires std::convertible_to<const Text&, std::string_view>
  // NOLINTNEXTLINE(google-explicit-constructor): see above
  Secret(const Text& text) : Secret(std::string_view{text}, 0) {}
  ~Secret() { wipe(); }
  Secret(Secret&& other) noexcept : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
  Secret& operator=(Secret&& other) noexcept {
    Secret taken{std::move(other)};
    std::swap(bytes_, taken.bytes_);
    std::swap(size_, taken.size_);
    return *this;
  }

  // A secret of `size` bytes which `fill(char*)` writes in place.
  template <class Fill>
  static Secret filled(std::size_t size, Fill fill) {
    Secret made;
    made.bytes_ = std::make_unique<char[]>(size);
    made.size_ = size;
    fill(made.bytes_.get());
    return made;
  }

  // Pieces one behind the other.
  static Secret joined(std::span<const std::string_view> pieces);
  static Secret joined(std::initializer_list<std::string_view> pieces) {
    return joined(std::span{pieces.begin(), pieces.size()});
  }

  Secret copy() const { return {reveal(), 0}; }
  // The bytes, for as long as the secret keeps its value.
  std::string_view reveal() const { return {bytes_.get(), size_}; }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }

  // Takes equally long wherever two secrets of one length differ.
  friend bool operator==(const Secret& left, const Secret& right) { return left.same(right); }

 private:
  Secret(std::string_view text, int);

  void wipe() noexcept;
  bool same(const Secret& other) const;

  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
};

}  // namespace tutti
