#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "core/key_file.h"
#include "core/notices.h"
#include "core/paths.h"
#include "core/text_file.h"
#include "sessions/account_record.h"

namespace tutti {

bool hold_records(const std::vector<std::string>& lines);
// That these records can't be read for want of their key.
FileError key_missing(const std::filesystem::path& records, const KeyFile& key);

// The account information file: one encoded record per line. Lines that can't be decoded, be they damaged or
// of another key, are journaled and stay in the file as they are, whatever is written.
//
// The key is made with the first record. Where it is missing beside records everything fails with an error
// that names both files.
class AccountRecords {
 public:
  // `file`: its full path, which may be told later.
  AccountRecords(const Paths& paths, const std::string& file, KeyFile& key, Notices& notices)
      : paths_(paths), files_(paths), file_(file), key_(key), notices_(notices) {}

  // Every record. Of several with one account key the last counts, in the place of the first.
  tl::expected<std::vector<AccountRecord>, FileError> read_all();
  tl::expected<void, FileError> append(const AccountRecord& record);
  // Puts the record in the place of that with another account key, in one step; appends it when there is
  // none.
  tl::expected<void, FileError> replace(std::string_view account_key, const AccountRecord& record);
  // Takes the records with these account keys out of the file. Nothing is written when none has.
  tl::expected<void, FileError> remove(const std::vector<std::string>& account_keys);
  // The last record with the account key; nothing when none has it.
  tl::expected<std::optional<AccountRecord>, FileError> find(std::string_view account_key);

 private:
  tl::expected<std::vector<std::string>, FileError> lines() const;
  tl::expected<const Secret*, FileError> key_for(const std::vector<std::string>& lines);
  tl::expected<void, FileError> write(const std::vector<std::string>& lines) const;
  void tell_unreadable(const std::vector<std::size_t>& lines);

  const Paths& paths_;
  TextFile files_;
  const std::string& file_;
  KeyFile& key_;
  Notices& notices_;
};

}  // namespace tutti
