#include "core/amount_precision.h"

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

std::string AmountPrecision::read(const TextFile& files, const std::string& name) {
  const auto lines = files.lines(name);
  if (!lines) {
    const std::string fault = lines.error().text();
    return std::exchange(fault_, fault) == fault ? std::string{} : fault;
  }
  fault_.clear();
  const std::string_view value = lines->empty() ? std::string_view{} : trim(lines->front());
  set(parse_number(value) ? value : "1");
  return {};
}

int AmountPrecision::decimals() const {
  return static_cast<int>(std::clamp(round_half_even(read_number(text_), 0), 0.0, 15.0));
}

}  // namespace tutti
