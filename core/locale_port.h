#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace tutti {

// Port to the regional settings, by locale and item number.
class LocalePort {
 public:
  virtual ~LocalePort() = default;
  virtual void set(int locale, int item, std::string_view value) = 0;
  // Number of characters written to the start of `buffer`, the closing zero included; 0 on failure.
  virtual int get(int locale, int item, std::string& buffer) const = 0;
};

// Regional settings that live in this process only; the machine's own stay untouched. What is set for a
// locale is what the user's default locale then reads.
class ProcessLocale final : public LocalePort {
 public:
  void set(int locale, int item, std::string_view value) override;
  int get(int locale, int item, std::string& buffer) const override;

 private:
  std::map<int, std::string> items_;
};

}  // namespace tutti
