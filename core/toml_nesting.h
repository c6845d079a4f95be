#pragma once

#include <optional>
#include <string_view>

namespace tutti {

// Line, from 1, where a TOML text is first nested deeper than `levels`: tables and arrays within each other,
// where each part of a dotted key is a table, too. Nothing where it stays within. Looks at the text once and
// takes no more room for a deep one.
std::optional<int> line_nested_deeper(std::string_view text, int levels);

}  // namespace tutti
