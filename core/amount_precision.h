#pragma once

#include <string>
#include <string_view>

#include "core/text_file.h"

namespace tutti {

// Decimals of distributed amounts, as the settings file has them. A value held for this run, as the command
// line gives it, wins over what the file says later.
class AmountPrecision {
 public:
  void set(std::string_view text) {
    if (!held_) text_ = text;
  }
  void hold(std::string_view text) {
    text_ = text;
    held_ = true;
  }
  // Takes it over from the first line of a file. One that can't be read changes nothing; answers why, empty
  // when it was read, and when the same was answered last.
  std::string read(const TextFile& files, const std::string& name);
  // The number of decimals: rounded half to even, held to 0..15.
  int decimals() const;

 private:
  std::string text_ = "1";
  bool held_ = false;
  std::string fault_;  // of the last reading
};

}  // namespace tutti
