#include "gui/list/column_spread.h"

#include <cmath>
#include <cstddef>

namespace tutti {

std::vector<int> spread_columns(const std::vector<ColumnShare>& columns, int width) {
  // Columns that would be too narrow get what they need, and the others share what is left, until none is.
  std::vector<bool> fixed(columns.size());
  double room = width;
  double percent = 0.0;
  for (bool again = true; again;) {
    again = false;
    room = width;
    percent = 0.0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (fixed[i]) {
        room -= columns[i].least;
      } else {
        percent += columns[i].percent;
      }
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (fixed[i] || (percent > 0.0 && columns[i].percent / percent * room >= columns[i].least)) continue;
      fixed[i] = true;
      again = true;
    }
  }
  // Rounded at the running edge, so that the columns end exactly where the list does.
  std::vector<int> out;
  double edge = 0.0;
  int shared = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (fixed[i]) {
      out.push_back(columns[i].least);
      continue;
    }
    edge += columns[i].percent / percent * room;
    out.push_back(static_cast<int>(std::lround(edge)) - shared);
    shared += out.back();
  }
  return out;
}

}  // namespace tutti
