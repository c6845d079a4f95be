#pragma once

#include <functional>
#include <string>

namespace tutti {

class FileDialog;
class RowListView;

// Asks for a file, with a name to begin with, and writes what the view shows into it as comma-separated
// values. False when the operator cancelled or the file can't be written; `report` then gets the reason of
// the latter.
bool export_csv(const RowListView& view, const std::string& name, FileDialog& files,
                const std::function<void(const std::string&)>& report);

}  // namespace tutti
