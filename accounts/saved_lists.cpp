#include "accounts/saved_lists.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

#include <tsl/robin_map.h>
#include <tsl/robin_set.h>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/account_record.h"
#include "sessions/last_by_key.h"

namespace tutti {
namespace {

Secret line_of(const SavedLists::Record& record) {
  return Secret::joined({record.user, ",", record.password.reveal(), ",", std::to_string(record.account)});
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

SavedLists::Content read_text(std::string_view text) {
  SavedLists::Content content;
  LastByKey<SavedLists::Record> records;
  const auto lines = TextFile::lines_of(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty()) continue;
    if (auto record = read_line(lines[i])) {
      std::string key = account_key(record->user, record->account);
      records.add(std::move(key), std::move(*record));
    } else {
      content.skipped_lines.push_back(i + 1);
    }
  }
  content.records = records.take();
  return content;
}

}  // namespace

SavedLists::SavedLists(const TextFile& files, const Paths& paths)
    : files_(files),
      all_(paths.full("\\manage") + "\\savelvinfo.buf"),
      connected_(paths.full("\\manage") + "/saveconnected.buf") {}

tl::expected<SavedLists::Content, FileError> SavedLists::read_all() const {
  const auto text = files_.content(all_);
  if (!text) return tl::unexpected(text.error());
  return read_text(text->reveal());
}

tl::expected<void, FileError> SavedLists::write_all(const std::vector<Record>& records) const {
  std::vector<Secret> lines;
  for (const Record& record : records)
    lines.push_back(line_of(record));
  std::vector<std::string_view> texts;
  for (const Secret& line : lines)
    texts.push_back(line.reveal());
  return write_lines(all_, texts);
}

tl::expected<void, FileError> SavedLists::load(std::string_view chosen) const {
  // The chosen file may be one of the two lists, so it is read before they change.
  const auto text = files_.read(chosen);
  if (!text) return tl::unexpected(text.error());
  if (read_text(text->reveal()).records.empty()) {
    return tl::unexpected(FileError{chosen, "has no line with user name, password and account number"});
  }
  const auto before = files_.content(all_);
  if (!before) return tl::unexpected(before.error());
  if (!before->empty()) {
    if (auto kept = files_.write(old_list(), before->reveal()); !kept) return kept;
  }
  if (auto written = files_.write(all_, text->reveal()); !written) return written;
  files_.keep_private(all_);
  // There was no list that could be gone back to, and an older one is not the one before.
  return before->empty() ? forget_old() : tl::expected<void, FileError>{};
}

tl::expected<void, FileError> SavedLists::add(const std::string& list, std::span<const Record> records,
                                              bool by_key) const {
  const auto text = files_.content(list);
  if (!text) return tl::unexpected(text.error());
  auto lines = TextFile::lines_of(text->reveal());
  const std::size_t before = lines.size();
  tsl::robin_set<std::string_view> there(lines.begin(), lines.end());
  tsl::robin_map<std::string, std::size_t> place_of;  // by key, of the first line that has it
  for (std::size_t place = 0; by_key && place < lines.size(); ++place)
    place_of.emplace(key_of(lines[place]), place);
  std::deque<Secret> added;  // they stay where they are
  bool changed = false;
  for (const Record& record : records) {
    if (record.user.empty() || record.password.empty()) continue;
    const std::string_view line = added.emplace_back(line_of(record)).reveal();
    if (!there.insert(line).second) continue;
    const auto [at, is_new] = by_key
                                  ? place_of.emplace(account_key(record.user, record.account), lines.size())
                                  : std::pair{place_of.end(), true};
    if (is_new) {
      lines.push_back(line);
    } else {
      lines[at->second] = line;
      changed = changed || at->second < before;
    }
  }
  if (changed) return write_lines(list, lines);
  if (lines.size() == before) return {};
  std::vector<std::string_view> pieces;
  for (std::size_t place = before; place < lines.size(); ++place) {
    if (place > before) pieces.emplace_back("\n");
    pieces.push_back(lines[place]);
  }
  const auto written = files_.write_line(list, Secret::joined(pieces).reveal(), TextFile::Mode::append);
  if (written) files_.keep_private(list);
  return written;
}

tl::expected<void, FileError> SavedLists::replace(std::string_view key, const Record& record) const {
  const Secret line = line_of(record);
  const std::string own_key = account_key(record.user, record.account);
  for (const std::string* list : {&all_, &connected_}) {
    const auto text = files_.content(*list);
    if (!text) return tl::unexpected(text.error());
    auto lines = TextFile::lines_of(text->reveal());
    const auto at = std::find_if(lines.begin(), lines.end(),
                                 [&](std::string_view other) { return key_of(other) == key; });
    if (at == lines.end()) {
      if (list != &all_) continue;
      if (auto added = update(all_, {&record, 1}); !added) return added;
      continue;
    }
    *at = line.reveal();
    lines.erase(std::remove_if(std::next(at), lines.end(),
                               [&](std::string_view other) {
                                 const std::string each = key_of(other);
                                 return each == key || each == own_key;
                               }),
                lines.end());
    if (auto written = write_lines(*list, lines); !written) return written;
  }
  return {};
}

tl::expected<void, FileError> SavedLists::forget(const std::vector<std::string>& keys) const {
  for (const std::string* list : {&all_, &connected_}) {
    const auto text = files_.content(*list);
    if (!text) return tl::unexpected(text.error());
    auto lines = TextFile::lines_of(text->reveal());
    const auto removed = std::erase_if(lines, [&](std::string_view line) {
      return std::find(keys.begin(), keys.end(), key_of(line)) != keys.end();
    });
    if (removed == 0) continue;
    if (auto written = write_lines(*list, lines); !written) return written;
  }
  return {};
}

tl::expected<void, FileError> SavedLists::write_lines(const std::string& list,
                                                      const std::vector<std::string_view>& lines) const {
  const auto written = files_.write_lines(list, lines);
  if (written) files_.keep_private(list);
  return written;
}

}  // namespace tutti
