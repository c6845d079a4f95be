#pragma once

#include <cstddef>

#include "core/row_list.h"

namespace tutti {

// The row with this key; when there is none it is made where it stands in order, behind the rows for which
// `before` holds. A total row, which has no key, stays at the end.
template <class Before>
Row& ordered_row(RowList& list, RowKey key, const Before& before) {
  if (Row* row = list.find(key)) return *row;
  const bool has_total = !list.empty() && list.row(list.size() - 1).key().empty();
  std::size_t low = 0;
  std::size_t high = list.size() - (has_total ? 1 : 0);
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    if (before(list.row(middle))) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return *list.insert(low, key);
}

}  // namespace tutti
