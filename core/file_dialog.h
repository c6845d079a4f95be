#pragma once

#include <string>
#include <string_view>

namespace tutti {

// Port to the machine's file dialogs. An empty answer means the operator cancelled.
class FileDialog {
 public:
  virtual ~FileDialog() = default;
  virtual std::string open_file(std::string_view title, std::string_view folder, std::string_view filter) = 0;
  // `name` is proposed, unless it is empty; a name that is typed without an ending gets that of the proposed.
  virtual std::string save_file(std::string_view title, std::string_view folder, std::string_view filter,
                                std::string_view name) = 0;
};

}  // namespace tutti
