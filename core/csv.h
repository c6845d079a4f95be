#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tutti {

// One line of comma-separated values with its line end. A field with a comma, a quote or a line break stands
// in quotes, its own quotes doubled.
std::string csv_line(const std::vector<std::string>& fields);
// The same at the end of `out`, for many lines; the fields are only read.
void append_csv_line(std::string& out, const std::vector<std::string_view>& fields);

}  // namespace tutti
