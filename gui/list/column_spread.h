#pragma once

#include <vector>

namespace tutti {

// What a column asks for: its percentage of the list, and the least it needs, in pixels.
struct ColumnShare {
  double percent = 0.0;
  int least = 0;
};

// Widths of all columns in proportion to their percentages, none narrower than it needs. They fill `width`
// exactly, or are wider together when the least of all is.
std::vector<int> spread_columns(const std::vector<ColumnShare>& columns, int width);

}  // namespace tutti
