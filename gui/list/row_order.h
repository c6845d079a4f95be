#pragma once

#include <cstddef>
#include <deque>

#include "core/row_list.h"

namespace tutti {

// Sorts rows by what a column holds: numbers by value before texts, texts without regard to case, empty cells
// last in either direction. Rows that compare equal keep their order.
void sort_rows(std::deque<Row*>& rows, std::size_t column, bool descending);
// Whether sorting would leave the first of two rows before the second.
bool in_order(Row& first, Row& second, std::size_t column, bool descending);

}  // namespace tutti
