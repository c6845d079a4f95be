#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tutti {

// One field of a message: a tag and its text.
struct FixField {
  int tag = 0;
  std::string value;

  bool operator==(const FixField&) const = default;
};

// A few fields in the order in which they were set, each tag once.
class FixFields {
 public:
  void set(int tag, std::string value);
  // nullptr when there is no such field.
  const std::string* find(int tag) const;
  // Empty when there is no such field.
  std::string_view text(int tag) const;
  // Nothing where there is no such field.
  void remove(int tag);
  // All from this tag on, but for two.
  void remove_from(int first, int kept = 0, int kept_too = 0);
  // Fields without a value, which no message may have.
  void remove_empty();
  bool has(int tag) const { return find(tag) != nullptr; }

  std::vector<FixField>::const_iterator begin() const { return fields_.begin(); }
  std::vector<FixField>::const_iterator end() const { return fields_.end(); }
  bool operator==(const FixFields&) const = default;

 private:
  std::vector<FixField> fields_;
};

}  // namespace tutti
