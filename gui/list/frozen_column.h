#pragma once

#include <string>

namespace tutti {

class RowListView;

// The first column of a list, of numbers, stands at the left whatever is scrolled. A click on one of its
// cells selects the whole row, and a click on its header sorts by it. `widest`: text it always has room for.
void freeze_first_column(RowListView& list, const std::string& widest);

}  // namespace tutti
