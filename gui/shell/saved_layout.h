#pragma once

#include <QByteArray>
#include <QString>
#include <filesystem>
#include <map>

#include <tl/expected.hpp>

#include "core/file_writer.h"

namespace tutti {

// How the operator arranged his windows, kept over a restart in one file of named values. A file that is
// missing or damaged counts as empty: the standard arrangement is no loss.
class SavedLayout {
 public:
  explicit SavedLayout(std::filesystem::path file);

  // Empty when there is none.
  QByteArray value(const QString& name) const;
  void set(const QString& name, const QByteArray& value) { values_[name] = value; }
  void clear() { values_.clear(); }
  tl::expected<void, FileError> save() const;

 private:
  std::filesystem::path file_;
  std::map<QString, QByteArray> values_;
};

}  // namespace tutti
