#include "accounts/saved_lists.h"

#include <algorithm>
#include <optional>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/account_record.h"
#include "sessions/last_by_key.h"

namespace tutti {
namespace {

std::string line_of(const SavedLists::Record& record) {
  return record.user + "," + std::string{record.password.reveal()} + "," + std::to_string(record.account);
}

std::optional<SavedLists::Record> read_line(std::string_view line) {
  const auto fields = split(line, ",");
  if (fields.size() < 3 || fields[0].empty() || fields[1].empty()) return std::nullopt;
  const auto account = parse_int32(fields[2]);
  if (!account) return std::nullopt;
  return SavedLists::Record{std::string{fields[0]}, fields[1], *account};
}

std::string key_of(std::string_view line) {
  const auto record = read_line(line);
  return record ? account_key(record->user, record->account) : std::string{};
}

}  // namespace

SavedLists::SavedLists(const TextFile& files, const Paths& paths)
    : files_(files),
      all_(paths.full("\\manage") + "\\savelvinfo.buf"),
      connected_(paths.full("\\manage") + "/saveconnected.buf") {}

tl::expected<SavedLists::Content, FileError> SavedLists::read_all() const {
  const auto lines = files_.lines(all_);
  if (!lines) return tl::unexpected(lines.error());
  Content content;
  LastByKey<Record> records;
  for (std::size_t i = 0; i < lines->size(); ++i) {
    if ((*lines)[i].empty()) continue;
    if (auto record = read_line((*lines)[i])) {
      std::string key = account_key(record->user, record->account);
      records.add(std::move(key), std::move(*record));
    } else {
      content.skipped_lines.push_back(i + 1);
    }
  }
  content.records = records.take();
  return content;
}

tl::expected<void, FileError> SavedLists::write_all(const std::vector<Record>& records) const {
  std::vector<std::string> lines;
  for (const Record& record : records)
    lines.push_back(line_of(record));
  return write_lines(all_, lines);
}

tl::expected<void, FileError> SavedLists::append(const std::string& list, const Record& record) const {
  if (record.user.empty() || record.password.empty()) return {};
  const auto lines = files_.lines(list);
  if (!lines) return tl::unexpected(lines.error());
  const std::string line = line_of(record);
  if (std::find(lines->begin(), lines->end(), line) != lines->end()) return {};
  return append_line(list, line);
}

tl::expected<void, FileError> SavedLists::update(const std::string& list, const Record& record) const {
  if (record.user.empty() || record.password.empty()) return {};
  auto lines = files_.lines(list);
  if (!lines) return tl::unexpected(lines.error());
  const std::string line = line_of(record);
  if (std::find(lines->begin(), lines->end(), line) != lines->end()) return {};
  const std::string key = account_key(record.user, record.account);
  const auto at = std::find_if(lines->begin(), lines->end(),
                               [&](const std::string& other) { return key_of(other) == key; });
  if (at == lines->end()) return append_line(list, line);
  *at = line;
  return write_lines(list, *lines);
}

tl::expected<void, FileError> SavedLists::forget(const std::vector<std::string>& keys) const {
  for (const std::string* list : {&all_, &connected_}) {
    auto lines = files_.lines(*list);
    if (!lines) return tl::unexpected(lines.error());
    const auto removed = std::erase_if(*lines, [&](const std::string& line) {
      return std::find(keys.begin(), keys.end(), key_of(line)) != keys.end();
    });
    if (removed == 0) continue;
    if (auto written = write_lines(*list, *lines); !written) return written;
  }
  return {};
}

tl::expected<void, FileError> SavedLists::append_line(const std::string& list,
                                                      const std::string& line) const {
  const auto written = files_.write_line(list, line, TextFile::Mode::append);
  if (written) files_.keep_private(list);
  return written;
}

tl::expected<void, FileError> SavedLists::write_lines(const std::string& list,
                                                      const std::vector<std::string>& lines) const {
  const auto written = files_.write_lines(list, lines);
  if (written) files_.keep_private(list);
  return written;
}

}  // namespace tutti
