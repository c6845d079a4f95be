#include "gui/kit/desktop_file_dialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStringList>

namespace tutti {

namespace {

QString shown(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// "Text Files (*.buf)|*.buf|..." as "Text Files (*.buf)" and so on. "*.*" means every file, with or without a
// dot.
QStringList name_filters(std::string_view filter) {
  const QStringList pieces = shown(filter).split(QLatin1Char{'|'});
  QStringList out;
  for (qsizetype i = 0; i + 1 < pieces.size(); i += 2) {
    const QString description = pieces[i].section(QLatin1Char{'('}, 0, 0).trimmed();
    const QString pattern = pieces[i + 1] == QStringLiteral("*.*") ? QStringLiteral("*") : pieces[i + 1];
    out += QStringLiteral("%1 (%2)").arg(description, pattern);
  }
  return out;
}

}  // namespace

std::string DesktopFileDialog::open_file(std::string_view title, std::string_view folder,
                                         std::string_view filter) {
  QFileDialog dialog{parent_, shown(title), start_folder(folder)};
  dialog.setFileMode(QFileDialog::ExistingFile);
  return ask(dialog, filter);
}

std::string DesktopFileDialog::save_file(std::string_view title, std::string_view folder,
                                         std::string_view filter, std::string_view name) {
  QFileDialog dialog{parent_, shown(title), start_folder(folder)};
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QFileInfo{shown(name)}.suffix());
  dialog.selectFile(shown(name));
  return ask(dialog, filter);
}

QString DesktopFileDialog::start_folder(std::string_view folder) const {
  if (!last_folder_.isEmpty()) return last_folder_;
  return !folder.empty() && QDir{shown(folder)}.exists() ? shown(folder) : QDir::homePath();
}

std::string DesktopFileDialog::ask(QFileDialog& dialog, std::string_view filter) {
  // The machine's own dialog would come in the machine's own colours.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setNameFilters(name_filters(filter));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  const QString file = dialog.selectedFiles().first();
  last_folder_ = QFileInfo{file}.absolutePath();
  return file.toStdString();
}

}  // namespace tutti
