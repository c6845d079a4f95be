#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace tutti {

// Members stay in the order in which they were given.
using Json = nlohmann::ordered_json;

// The document, with a line end. Bytes that are no UTF-8 become the replacement character.
std::string json_text(const Json& document);
// The same for one text, in a single line without an end.
std::string json_quoted(std::string_view text);
// A number for machines: whole ones without a fraction.
Json json_number(double value);

// What a command found, for machines: records with the same fields.
class Records {
 public:
  explicit Records(std::vector<std::string> fields) : fields_(std::move(fields)) {}

  // Values in the order of the fields: null, number, text or truth value.
  void add(std::vector<Json> values) { rows_.push_back(std::move(values)); }
  // What is equal in the field stays in its order.
  void sort_by(std::string_view field);

  // A list of objects.
  Json json() const;
  // With a heading; null is an empty field.
  std::string csv() const;

 private:
  std::vector<std::string> fields_;
  std::vector<std::vector<Json>> rows_;
};

}  // namespace tutti
