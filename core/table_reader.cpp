#include "core/table_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/toml_nesting.h"

namespace tutti {

namespace {
// The parser goes as deep as a text is nested, and so does whoever takes its tables apart.
constexpr int deepest_nesting = 100;
}  // namespace

const toml::node* TableReader::take(std::string_view key) {
  taken_.push_back(key);
  return fault_ ? nullptr : table_.get(key);
}

void TableReader::complain(std::string_view key, std::string_view why) {
  if (fault_) return;
  const toml::node* node = table_.get(key);
  const auto line = (node != nullptr ? node->source() : table_.source()).begin.line + lines_before_;
  fault_ = fmt::format("line {}: {} {}", line, key, why);
}

void TableReader::require(std::string_view key) {
  if (!has(key)) complain(key, "is missing");
}

void TableReader::any_number(std::string_view key, double& value) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  if (!node->is_number()) return complain(key, "must be a number");
  value = *node->value<double>();
}

void TableReader::seconds(std::string_view key, std::chrono::milliseconds& value, double low, double high) {
  double count = std::chrono::duration<double>(value).count();
  number(key, count, low, high);
  value = std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(count));
}

void TableReader::number(std::string_view key, double& value, double low, double high) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  const auto found = node->is_number() ? node->value<double>() : std::nullopt;
  if (!found || !std::isfinite(*found) || *found < low || *found > high)
    return complain(key, fmt::format("must be a number from {} to {}", low, high));
  value = *found;
}

void TableReader::number_or(std::string_view key, std::string_view word, std::optional<double>& value,
                            double low, double high) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  if (node->is_string() && node->as_string()->get() == word) {
    value.reset();
    return;
  }
  const auto found = node->is_number() ? node->value<double>() : std::nullopt;
  if (!found || !std::isfinite(*found) || *found < low || *found > high)
    return complain(key, fmt::format("must be a number from {} to {}, or \"{}\"", low, high, word));
  value = *found;
}

void TableReader::integer(std::string_view key, std::int64_t& value, std::int64_t low, std::int64_t high) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  const auto* found = node->as_integer();
  if (found == nullptr || found->get() < low || found->get() > high)
    return complain(key, fmt::format("must be a whole number from {} to {}", low, high));
  value = found->get();
}

void TableReader::integer(std::string_view key, std::int32_t& value, std::int32_t low, std::int32_t high) {
  std::int64_t wide = value;
  integer(key, wide, std::int64_t{low}, std::int64_t{high});
  value = static_cast<std::int32_t>(wide);
}

void TableReader::integers(std::string_view key, std::vector<std::int32_t>& value, std::int32_t low,
                           std::int32_t high) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  value.clear();
  const auto add = [&](const toml::node& one) {
    const auto* found = one.as_integer();
    const bool fits = found != nullptr && found->get() >= low && found->get() <= high;
    if (fits) value.push_back(static_cast<std::int32_t>(found->get()));
    return fits;
  };
  const toml::array* array = node->as_array();
  const bool fits =
      array == nullptr ? add(*node) : !array->empty() && std::all_of(array->begin(), array->end(), add);
  if (!fits) complain(key, fmt::format("must be a whole number from {} to {}, or a list of them", low, high));
}

void TableReader::flag(std::string_view key, bool& value) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  if (!node->is_boolean()) return complain(key, "must be true or false");
  value = node->as_boolean()->get();
}

void TableReader::text(std::string_view key, std::string& value) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  if (!node->is_string()) return complain(key, "must be a text in quotes");
  value = node->as_string()->get();
}

void TableReader::texts(std::string_view key, std::vector<std::string>& value) {
  const toml::node* node = take(key);
  if (node == nullptr) return;
  const toml::array* array = node->as_array();
  if (array == nullptr) return complain(key, "must be a list of texts");
  value.clear();
  for (const toml::node& element : *array) {
    if (!element.is_string()) return complain(key, "must be a list of texts");
    value.push_back(element.as_string()->get());
  }
}

std::vector<const toml::table*> TableReader::tables(std::string_view key) {
  std::vector<const toml::table*> tables;
  const toml::node* node = take(key);
  if (node == nullptr) return tables;
  const toml::array* array = node->as_array();
  if (array != nullptr)
    for (const toml::node& element : *array)
      if (const toml::table* table = element.as_table()) tables.push_back(table);
  if (array == nullptr || tables.size() != array->size())
    complain(key, fmt::format("must be written as [[{}]]", key));
  return tables;
}

std::vector<std::int64_t> TableReader::integers(std::string_view key) {
  std::vector<std::int64_t> values;
  const toml::node* node = take(key);
  if (node == nullptr) return values;
  const toml::array* array = node->as_array();
  if (array != nullptr)
    for (const toml::node& element : *array)
      if (const auto* value = element.as_integer(); value != nullptr && value->get() > 0)
        values.push_back(value->get());
  if (array == nullptr || values.size() != array->size()) complain(key, "must be a list of whole numbers");
  return values;
}

const toml::table* TableReader::table(std::string_view key) {
  const toml::node* node = take(key);
  if (node == nullptr) return nullptr;
  if (!node->is_table()) complain(key, "must be a table");
  return node->as_table();
}

void TableReader::finish() {
  for (const auto& [key, node] : table_)
    if (std::find(taken_.begin(), taken_.end(), key.str()) == taken_.end())
      complain(key.str(), "is not known here");
}

std::optional<toml::table> parse_toml(std::string_view content, std::optional<std::string>& fault,
                                      std::size_t lines_before) {
  if (const auto line = line_nested_deeper(content, deepest_nesting)) {
    fault = fmt::format("line {}: is nested over {} levels", lines_before + static_cast<std::size_t>(*line),
                        deepest_nesting);
    return std::nullopt;
  }
  try {
    return toml::parse(content);
  } catch (const toml::parse_error& error) {
    fault = fmt::format("line {}: {}", error.source().begin.line + lines_before, error.description());
    return std::nullopt;
  }
}

}  // namespace tutti
