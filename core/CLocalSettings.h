#pragma once

#include <string>
#include <string_view>

#include "core/locale_port.h"

namespace tutti {

// Locale settings: forces the separators the program assumes, and reads what the operator types.
class CLocalSettings {
 public:
  explicit CLocalSettings(LocalePort& port);

  const std::string& LocalDecimal() const { return decimal_; }
  const std::string& LocalThousand() const { return thousand_; }

  // Sets "." "," "/" ":" as decimal, thousands, date and time separator.
  void InitializeSystemVariables();
  // Value of one locale item (14 decimal, 15 thousands, 29 date, 30 time separator) of the user's locale;
  // 256 blanks when the machine does not tell.
  std::string GetSystemCharacter(int item) const;
  // Typed number as the reader takes it: thousands separators out, then the decimal separator as ".".
  std::string FormatStringAsNumber(std::string_view text) const;
  // Value of a typed number, read from the left; 0 when there is none.
  double StringToNumber(std::string_view text) const;

 private:
  LocalePort& port_;
  std::string decimal_;
  std::string thousand_;
};

}  // namespace tutti
