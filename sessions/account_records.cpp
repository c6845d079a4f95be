#include "sessions/account_records.h"

#include <algorithm>
#include <utility>

#include "core/texts.h"
#include "sessions/last_by_key.h"

namespace tutti {
namespace {

// Without a key no line is a record.
std::optional<AccountRecord> decode(std::string_view line, const Secret* key) {
  return key == nullptr ? std::nullopt : decode_record(line, *key);
}

std::string key_of(const AccountRecord& record) {
  return account_key(record.user, record.account);
}

}  // namespace

bool hold_records(const std::vector<std::string>& lines) {
  return std::any_of(lines.begin(), lines.end(), looks_like_record);
}

FileError key_missing(const std::filesystem::path& records, const KeyFile& key) {
  return {records, "holds account records, but their key is missing: " + key.path().string() +
                       ". Put the key back, or move the records away"};
}

tl::expected<std::vector<std::string>, FileError> AccountRecords::lines() const {
  return files_.lines(file_);
}

// The key that decodes these lines; nullptr when none of them needs one and there is none.
tl::expected<const Secret*, FileError> AccountRecords::key_for(const std::vector<std::string>& lines) {
  if (!hold_records(lines)) return nullptr;
  auto key = key_.find();
  if (!key || *key != nullptr) return key;
  return tl::unexpected(key_missing(paths_.file(file_), key_));
}

tl::expected<std::vector<AccountRecord>, FileError> AccountRecords::read_all() {
  const auto all = lines();
  if (!all) return tl::unexpected(all.error());
  const auto key = key_for(*all);
  if (!key) return tl::unexpected(key.error());
  LastByKey<AccountRecord> records;
  std::vector<std::size_t> unreadable;
  for (std::size_t i = 0; i < all->size(); ++i) {
    if ((*all)[i].empty()) continue;
    if (auto record = decode((*all)[i], *key)) {
      std::string account = key_of(*record);
      records.add(std::move(account), std::move(*record));
    } else {
      unreadable.push_back(i + 1);
    }
  }
  tell_unreadable(unreadable);
  return records.take();
}

tl::expected<void, FileError> AccountRecords::append(const AccountRecord& record) {
  const auto all = lines();
  if (!all) return tl::unexpected(all.error());
  auto key = key_for(*all);
  if (key && *key == nullptr) key = key_.find_or_create();
  if (!key) return tl::unexpected(key.error());
  const std::string& name = file_;
  const auto there = files_.exists(name);
  if (!there) return tl::unexpected(there.error());
  if (!*there) {
    if (auto made = files_.write_line(name, "", TextFile::Mode::create); !made) return made;
  }
  return files_.write_line(name, encode_record(record, **key), TextFile::Mode::append);
}

tl::expected<void, FileError> AccountRecords::replace(std::string_view account_key,
                                                      const AccountRecord& record) {
  auto all = lines();
  if (!all) return tl::unexpected(all.error());
  const auto key = key_for(*all);
  if (!key) return tl::unexpected(key.error());
  const std::string own_key = key_of(record);
  std::vector<std::string> kept;
  bool placed = false;
  for (std::string& line : *all) {
    const auto other = decode(line, *key);
    const std::string other_key = other ? key_of(*other) : std::string{};
    if (!other || (other_key != account_key && other_key != own_key)) {
      kept.push_back(std::move(line));
    } else if (!std::exchange(placed, true)) {
      kept.push_back(encode_record(record, **key));
    }
  }
  return placed ? write(kept) : append(record);
}

tl::expected<void, FileError> AccountRecords::remove(const std::vector<std::string>& account_keys) {
  const auto all = lines();
  if (!all) return tl::unexpected(all.error());
  const auto key = key_for(*all);
  if (!key) return tl::unexpected(key.error());
  std::vector<std::string> kept;
  std::vector<std::size_t> unreadable;  // as the lines are numbered afterwards
  for (const std::string& line : *all) {
    const auto record = decode(line, *key);
    if (record && std::find(account_keys.begin(), account_keys.end(), key_of(*record)) != account_keys.end())
      continue;
    kept.push_back(line);
    if (!record && !line.empty()) unreadable.push_back(kept.size());
  }
  if (kept.size() != all->size()) {
    if (auto written = write(kept); !written) return written;
  }
  tell_unreadable(unreadable);
  return {};
}

tl::expected<std::optional<AccountRecord>, FileError> AccountRecords::find(std::string_view account_key) {
  const auto all = lines();
  if (!all) return tl::unexpected(all.error());
  const auto key = key_for(*all);
  if (!key) return tl::unexpected(key.error());
  for (auto line = all->rbegin(); line != all->rend(); ++line) {
    auto record = decode(*line, *key);
    if (record && key_of(*record) == account_key) return record;
  }
  return std::nullopt;
}

tl::expected<void, FileError> AccountRecords::write(const std::vector<std::string>& lines) const {
  return files_.write_lines(file_, {lines.begin(), lines.end()});
}

void AccountRecords::tell_unreadable(const std::vector<std::size_t>& lines) {
  if (lines.empty()) return;
  notices_.log_skipped("Account information: skipped unreadable records in lines " + number_list(lines) +
                       " of " + paths_.file(file_).filename().string() +
                       ". They stay in the file. They are damaged, or of another key than " +
                       key_.path().string());
}

}  // namespace tutti
