#include "apps/records.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "core/csv.h"

namespace tutti {

namespace {

constexpr auto replace = Json::error_handler_t::replace;

std::string csv_text(const Json& value) {
  if (value.is_null()) return {};
  return value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

std::string json_text(const Json& document) {
  return document.dump(2, ' ', false, replace) + "\n";
}

std::string json_quoted(std::string_view text) {
  // Most texts need no second look.
  const auto plain = [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; };
  if (!std::all_of(text.begin(), text.end(), plain)) return Json(text).dump(-1, ' ', false, replace);
  std::string out = "\"";
  out += text;
  return out += '"';
}

Json json_number(double value) {
  constexpr double largest_exact = 9007199254740992.0;  // beyond it doubles skip whole numbers
  if (std::fabs(value) <= largest_exact && value == std::trunc(value))
    return static_cast<std::int64_t>(value);
  return value;
}

void Records::sort_by(std::string_view field) {
  const auto at = std::find(fields_.begin(), fields_.end(), field);
  assert(at != fields_.end());
  const auto place = static_cast<std::size_t>(at - fields_.begin());
  std::stable_sort(rows_.begin(), rows_.end(),
                   [place](const auto& a, const auto& b) { return a[place] < b[place]; });
}

Json Records::json() const {
  Json out = Json::array();
  for (const auto& row : rows_) {
    Json object = Json::object();
    for (std::size_t i = 0; i < fields_.size(); ++i)
      object[fields_[i]] = row[i];
    out.push_back(std::move(object));
  }
  return out;
}

std::string Records::csv() const {
  std::string out = csv_line(fields_);
  for (const auto& row : rows_) {
    std::vector<std::string> texts;
    for (const Json& value : row)
      texts.push_back(csv_text(value));
    out += csv_line(texts);
  }
  return out;
}

}  // namespace tutti
