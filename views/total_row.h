#pragma once

#include "core/row_list.h"

namespace tutti {

// The summary row of a list: found by its label in column 0, made at the end when missing.
Row& total_row(RowList& list);

}  // namespace tutti
