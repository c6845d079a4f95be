#include "core/CLocalSettings.h"

#include <cstddef>

#include "core/numbers.h"

namespace tutti {
namespace {

constexpr int english_us = 1033;
constexpr int user_default = 1024;
constexpr int item_decimal = 14;
constexpr int item_thousand = 15;
constexpr int item_date = 29;
constexpr int item_time = 30;

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  if (what.empty()) return text;
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

}  // namespace

CLocalSettings::CLocalSettings(LocalePort& port) : port_(port) {
  InitializeSystemVariables();
  decimal_ = GetSystemCharacter(item_decimal);
  thousand_ = GetSystemCharacter(item_thousand);
}

void CLocalSettings::InitializeSystemVariables() {
  port_.set(english_us, item_decimal, ".");
  port_.set(english_us, item_thousand, ",");
  port_.set(english_us, item_date, "/");
  port_.set(english_us, item_time, ":");
}

std::string CLocalSettings::GetSystemCharacter(int item) const {
  std::string buffer(256, ' ');
  const int written = port_.get(user_default, item, buffer);
  if (written > 0) buffer.resize(static_cast<std::size_t>(written) - 1);
  return buffer;
}

std::string CLocalSettings::FormatStringAsNumber(std::string_view text) const {
  return replaced(replaced(std::string{text}, thousand_, ""), decimal_, ".");
}

double CLocalSettings::StringToNumber(std::string_view text) const {
  const auto has = [&](const std::string& what) { return text.find(what) != std::string_view::npos; };
  // Most texts are as the reader takes them.
  if (decimal_ == "." && !has(thousand_)) return read_number(text);
  return read_number(FormatStringAsNumber(text));
}

}  // namespace tutti
