#pragma once

#include <QPointer>
#include <QWidget>

#include "core/file_dialog.h"

class QFileDialog;

namespace tutti {

// File dialogs in the look of the other windows, modal over the parent. A folder that this machine doesn't
// have gives way to the one chosen from last.
class DesktopFileDialog final : public FileDialog {
 public:
  void set_parent(QWidget* parent) { parent_ = parent; }

  // `filter` is descriptions and patterns in turn: "Text Files (*.buf)|*.buf|All Files (*.*)|*.*".
  std::string open_file(std::string_view title, std::string_view folder, std::string_view filter) override;
  std::string save_file(std::string_view title, std::string_view folder, std::string_view filter,
                        std::string_view name) override;

 private:
  QString start_folder(std::string_view folder) const;
  // Empty when the operator cancelled.
  std::string ask(QFileDialog& dialog, std::string_view filter);

  QPointer<QWidget> parent_;
  QString last_folder_;
};

}  // namespace tutti
