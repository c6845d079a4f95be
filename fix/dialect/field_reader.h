#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/clock.h"
#include "fix/session/fix_fields.h"

namespace tutti {

// Takes values out of the fields of a message. What is missing or no value of its kind becomes the fault, of
// which the first counts; a reader with a fault gives nothing that may be used.
class FieldReader {
 public:
  explicit FieldReader(const FixFields& fields) : fields_(fields) {}

  bool has(int tag) const { return fields_.has(tag); }
  // The fields must be there, but for those of which it is said what counts without them.
  std::string text(int tag);
  std::string text_or_empty(int tag) const { return std::string{fields_.text(tag)}; }
  double number(int tag);
  double number_or(int tag, double otherwise);
  // A number above 0.
  double positive(int tag);
  std::int64_t integer(int tag);
  std::int64_t integer_or(int tag, std::int64_t otherwise);
  // True where it is "Y", false where it is "N" or missing.
  bool flag(int tag);
  TimePoint time_or(int tag, TimePoint otherwise);

  void complain(int tag, std::string_view why);
  const std::optional<std::string>& fault() const { return fault_; }

 private:
  // nullptr, and a fault, when it is missing.
  const std::string* required(int tag);

  const FixFields& fields_;
  std::optional<std::string> fault_;
};

}  // namespace tutti
