#pragma once

#include <utility>

namespace tutti {

// A value that holds until the end of the block, and is put back then.
template <class Value>
class ForNow {
 public:
  ForNow(Value& value, Value now) : value_(value), then_(std::exchange(value, std::move(now))) {}
  ~ForNow() { value_ = std::move(then_); }
  ForNow(const ForNow&) = delete;
  ForNow& operator=(const ForNow&) = delete;

 private:
  Value& value_;
  Value then_;
};

}  // namespace tutti
