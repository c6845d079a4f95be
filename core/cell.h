#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/colours.h"

namespace tutti {

// How the number of a cell becomes text when somebody reads it.
enum class NumberFormat : std::uint8_t {
  general,   // up to 15 significant digits
  summary,   // at most two decimals
  percent,   // as summary, followed by "%"
  index,     // whole number of at least two digits
  fixed,     // with a number of decimals of the cell's own
  close_at,  // as general, behind "Close At "
};

// One cell of a row: a text, or a number with its format. Sixteen bytes, since lists hold many thousands.
class Cell {
 public:
  Cell() = default;
  Cell(Cell&& other) noexcept { swap(other); }
  Cell& operator=(Cell&& other) noexcept {
    swap(other);
    return *this;
  }
  ~Cell() {
    if (kind_ == Kind::text) delete value_.text;
  }

  void set_number(double number, NumberFormat format) {
    if (kind_ == Kind::text) drop_text();
    value_.number = number;
    kind_ = Kind::number;
    format_ = format;
  }
  // A ticket or order number: all 64 bits of it, which a double would not keep.
  void set_whole(std::int64_t number) {
    if (kind_ == Kind::text) drop_text();
    value_.whole = number;
    kind_ = Kind::whole;
  }
  // `decimals` from 0 to 15, as of a price.
  void set_fixed(double number, int decimals) {
    set_number(number, NumberFormat::fixed);
    decimals_ = static_cast<std::uint8_t>(decimals);
  }
  void set_text(std::string_view text);
  void set_ink(Ink ink) { ink_ = ink; }
  // The exact colour behind the text, for lists that keep a meaning in it; contents don't change it.
  void set_ground(Rgb ground) { ground_ = ground; }

  bool empty() const { return kind_ == Kind::empty; }
  bool is_number() const { return kind_ == Kind::number || kind_ == Kind::whole; }
  // What set_whole set; nothing for other cells.
  std::optional<std::int64_t> whole() const {
    return kind_ == Kind::whole ? std::optional{value_.whole} : std::nullopt;
  }
  // What the operator reads.
  std::string text() const;
  // The number behind the cell: what read_number makes of its text.
  double number() const;
  // The number as it was set, 0 for texts: for cells that hold whole numbers or are summed up.
  double stored_number() const {
    if (kind_ == Kind::whole) return static_cast<double>(value_.whole);
    return kind_ == Kind::number ? value_.number : 0.0;
  }
  // Same as text() == other; numbers never equal a word.
  bool reads(std::string_view other) const {
    return kind_ == Kind::text ? *value_.text == other : kind_ == Kind::empty && other.empty();
  }
  Ink ink() const { return ink_; }
  Rgb ground() const { return ground_; }

 private:
  enum class Kind : std::uint8_t { empty, number, whole, text };
  union Value {
    double number = 0.0;
    std::int64_t whole;
    std::string* text;  // owned while kind_ is text
  };

  void drop_text();
  void swap(Cell& other) noexcept;

  Value value_;
  Kind kind_ = Kind::empty;
  NumberFormat format_ = NumberFormat::general;
  Ink ink_ = Ink::plain;
  std::uint8_t decimals_ = 0;  // counts while format_ is fixed
  Rgb ground_{255, 255, 255};
};
static_assert(sizeof(Cell) == 16);

}  // namespace tutti
