#pragma once

#include <string>

namespace tutti {

class RowListView;

// What a view shows, header included, as comma-separated values: its rows and columns in its order, cells
// quoted where needed.
std::string list_csv(const RowListView& view);
// The selected rows onto the clipboard, cells with tabs between them, for a spreadsheet or a mail. Where
// cells are selected one by one, only those, in the rows and columns that have any.
void copy_selected(const RowListView& view);

}  // namespace tutti
