#include "gui/list/csv_export.h"

#include "core/file_dialog.h"
#include "core/file_writer.h"
#include "gui/list/list_text.h"

namespace tutti {

bool export_csv(const RowListView& view, const std::string& name, FileDialog& files,
                const std::function<void(const std::string&)>& report) {
  const std::string file =
      files.save_file("Export to CSV", "", "CSV Files (*.csv)|*.csv|All Files (*.*)|*.*", name + ".csv");
  if (file.empty()) return false;
  const auto written = replace_file(file, list_csv(view));
  if (!written) report("The list could not be written.\n" + written.error().text());
  return written.has_value();
}

}  // namespace tutti
