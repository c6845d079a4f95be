#include "core/csv.h"

namespace tutti {

namespace {

void append_field(std::string& out, std::string_view field) {
  if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
    out += field;
    return;
  }
  out += '"';
  for (const char c : field) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

}  // namespace

void append_csv_line(std::string& out, const std::vector<std::string_view>& fields) {
  bool first = true;
  for (const std::string_view field : fields) {
    if (!first) out += ',';
    append_field(out, field);
    first = false;
  }
  out += '\n';
}

std::string csv_line(const std::vector<std::string>& fields) {
  std::string out;
  append_csv_line(out, {fields.begin(), fields.end()});
  return out;
}

}  // namespace tutti
