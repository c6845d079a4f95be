#pragma once

#include <QPointer>
#include <QWidget>

#include "core/file_dialog.h"

namespace tutti {

// The machine's file dialogs, modal over the parent. A folder that this machine doesn't have gives way to the
// one chosen from last.
class DesktopFileDialog final : public FileDialog {
 public:
  void set_parent(QWidget* parent) { parent_ = parent; }

  // `filter` is descriptions and patterns in turn: "Text Files (*.buf)|*.buf|All Files (*.*)|*.*".
  std::string open_file(std::string_view title, std::string_view folder, std::string_view filter) override;
  std::string save_file(std::string_view title, std::string_view folder, std::string_view filter) override;

 private:
  QString start_folder(std::string_view folder) const;
  std::string chosen(const QString& file);

  QPointer<QWidget> parent_;
  QString last_folder_;
};

}  // namespace tutti
