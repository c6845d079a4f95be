#include "fix/dialect/field_reader.h"

#include <fmt/format.h>

#include "fix/dialect/wire_values.h"

namespace tutti {

const std::string* FieldReader::required(int tag) {
  const std::string* value = fields_.find(tag);
  if (value == nullptr || value->empty()) complain(tag, "is missing");
  return value;
}

void FieldReader::complain(int tag, std::string_view why) {
  if (!fault_) fault_ = fmt::format("field {} {}", tag, why);
}

std::string FieldReader::text(int tag) {
  const std::string* value = required(tag);
  return value != nullptr ? *value : std::string{};
}

double FieldReader::number(int tag) {
  const std::string* value = required(tag);
  if (value == nullptr) return 0.0;
  const auto number = read_wire_number(*value);
  if (!number) complain(tag, "is no number that counts");
  return number.value_or(0.0);
}

double FieldReader::number_or(int tag, double otherwise) {
  return has(tag) ? number(tag) : otherwise;
}

double FieldReader::positive(int tag) {
  const double value = number(tag);
  if (value <= 0.0) complain(tag, "is not above 0");
  return value;
}

std::int64_t FieldReader::integer(int tag) {
  const std::string* value = required(tag);
  if (value == nullptr) return 0;
  const auto number = read_wire_integer(*value);
  if (!number) complain(tag, "is no whole number");
  return number.value_or(0);
}

std::int64_t FieldReader::integer_or(int tag, std::int64_t otherwise) {
  return has(tag) ? integer(tag) : otherwise;
}

bool FieldReader::flag(int tag) {
  const std::string_view value = fields_.text(tag);
  if (has(tag) && value != "Y" && value != "N") complain(tag, "is neither Y nor N");
  return value == "Y";
}

TimePoint FieldReader::time_or(int tag, TimePoint otherwise) {
  const std::string* value = fields_.find(tag);
  if (value == nullptr) return otherwise;
  const auto time = read_wire_time(*value);
  if (!time) complain(tag, "is no time");
  return time.value_or(otherwise);
}

}  // namespace tutti
