#include "views/total_row.h"

namespace tutti {

Row& total_row(RowList& list) {
  constexpr std::string_view label = "Total(All Clients)";
  for (Row& row : list) {
    if (row.reads(0, label)) return row;
  }
  Row& row = *list.add();
  row.set_text(0, label);
  return row;
}

}  // namespace tutti
