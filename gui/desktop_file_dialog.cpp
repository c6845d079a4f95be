#include "gui/desktop_file_dialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStringList>

namespace tutti {

namespace {

QString shown(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// "Text Files (*.buf)|*.buf|..." as "Text Files (*.buf);;...". "*.*" means every file, with or without a dot.
QString name_filter(std::string_view filter) {
  const QStringList pieces = shown(filter).split(QLatin1Char{'|'});
  QStringList out;
  for (qsizetype i = 0; i + 1 < pieces.size(); i += 2) {
    const QString description = pieces[i].section(QLatin1Char{'('}, 0, 0).trimmed();
    const QString pattern = pieces[i + 1] == QStringLiteral("*.*") ? QStringLiteral("*") : pieces[i + 1];
    out += QStringLiteral("%1 (%2)").arg(description, pattern);
  }
  return out.join(QStringLiteral(";;"));
}

}  // namespace

std::string DesktopFileDialog::open_file(std::string_view title, std::string_view folder,
                                         std::string_view filter) {
  return chosen(
      QFileDialog::getOpenFileName(parent_, shown(title), start_folder(folder), name_filter(filter)));
}

std::string DesktopFileDialog::save_file(std::string_view title, std::string_view folder,
                                         std::string_view filter) {
  return chosen(
      QFileDialog::getSaveFileName(parent_, shown(title), start_folder(folder), name_filter(filter)));
}

QString DesktopFileDialog::start_folder(std::string_view folder) const {
  if (!last_folder_.isEmpty()) return last_folder_;
  return QDir{shown(folder)}.exists() ? shown(folder) : QDir::homePath();
}

std::string DesktopFileDialog::chosen(const QString& file) {
  if (!file.isEmpty()) last_folder_ = QFileInfo{file}.absolutePath();
  return file.toStdString();
}

}  // namespace tutti
