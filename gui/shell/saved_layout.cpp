#include "gui/shell/saved_layout.h"

#include <string>
#include <utility>

#include "core/texts.h"

namespace tutti {

SavedLayout::SavedLayout(std::filesystem::path file) : file_(std::move(file)) {
  const std::string content = read_file(file_).value_or("");
  for (const std::string_view line : split(content, "\n")) {
    const auto sign = line.find('=');
    if (sign == std::string_view::npos) continue;
    const auto name = QString::fromUtf8(line.data(), static_cast<qsizetype>(sign));
    const auto rest = line.substr(sign + 1);
    values_[name] = QByteArray::fromBase64(QByteArray{rest.data(), static_cast<qsizetype>(rest.size())});
  }
}

QByteArray SavedLayout::value(const QString& name) const {
  const auto at = values_.find(name);
  return at == values_.end() ? QByteArray{} : at->second;
}

tl::expected<void, FileError> SavedLayout::save() const {
  std::string content;
  for (const auto& [name, value] : values_)
    content += name.toStdString() + "=" + value.toBase64().toStdString() + "\n";
  return replace_file(file_, content);
}

}  // namespace tutti
