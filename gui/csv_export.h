#pragma once

#include <functional>
#include <string>

namespace tutti {

class FileDialog;
class RowListView;

// Asks for a file and writes what the view shows into it as comma-separated values. False when the operator
// cancelled or the file can't be written; `report` then gets the reason of the latter.
bool export_csv(const RowListView& view, FileDialog& files,
                const std::function<void(const std::string&)>& report);

}  // namespace tutti
