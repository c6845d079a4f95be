#pragma once

#include <algorithm>
#include <ranges>

#include "core/row_list.h"

namespace tutti {

// The row with this key; when there is none it is made where it stands in order, behind the rows for which
// `before` holds. A total row, which has no key, stays at the end.
template <class Before>
Row& ordered_row(RowList& list, RowKey key, const Before& before) {
  if (Row* row = list.find(key)) return *row;
  const bool has_total = !list.empty() && list.row(list.size() - 1).key().empty();
  const auto places = std::views::iota(std::size_t{0}, list.size() - (has_total ? 1 : 0));
  const auto at = std::ranges::partition_point(places, [&](std::size_t i) { return before(list.row(i)); });
  return *list.insert(static_cast<std::size_t>(at - places.begin()), key);
}

}  // namespace tutti
