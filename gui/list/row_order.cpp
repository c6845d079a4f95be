#include "gui/list/row_order.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

namespace {

// A cell as it is compared; made once per row.
struct SortKey {
  enum class Kind { number, text, empty };
  Kind kind = Kind::empty;
  double number = 0.0;
  std::string text;
  Row* row = nullptr;
};

SortKey key_of(Row& row, std::size_t column) {
  const Cell& cell = row.cell(column);
  if (cell.is_number()) return {SortKey::Kind::number, cell.stored_number(), {}, &row};
  std::string text = folded(cell.text());
  if (text.empty()) return {SortKey::Kind::empty, 0.0, {}, &row};
  if (const auto number = parse_number(text)) return {SortKey::Kind::number, *number, {}, &row};
  return {SortKey::Kind::text, 0.0, std::move(text), &row};
}

bool less(const SortKey& a, const SortKey& b, bool descending) {
  const bool a_empty = a.kind == SortKey::Kind::empty;
  const bool b_empty = b.kind == SortKey::Kind::empty;
  if (a_empty || b_empty) return !a_empty && b_empty;
  const SortKey& low = descending ? b : a;
  const SortKey& high = descending ? a : b;
  if (low.kind != high.kind) return low.kind < high.kind;
  return low.kind == SortKey::Kind::number ? low.number < high.number : low.text < high.text;
}

}  // namespace

void sort_rows(std::deque<Row*>& rows, std::size_t column, bool descending) {
  std::vector<SortKey> keys;
  keys.reserve(rows.size());
  for (Row* row : rows)
    keys.push_back(key_of(*row, column));
  std::stable_sort(keys.begin(), keys.end(),
                   [descending](const SortKey& a, const SortKey& b) { return less(a, b, descending); });
  for (std::size_t i = 0; i < rows.size(); ++i)
    rows[i] = keys[i].row;
}

bool in_order(Row& first, Row& second, std::size_t column, bool descending) {
  return !less(key_of(second, column), key_of(first, column), descending);
}

}  // namespace tutti
