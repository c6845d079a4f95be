#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text_file.h"

namespace tutti {

// One saved account of the account information file. User name and password are in upper case.
struct AccountRecord {
  std::string user;
  std::string password;
  std::int32_t account = 0;
  bool auto_login = false;
};

// What tells accounts apart everywhere: the trimmed, upper-cased user name and the account number.
std::string account_key(std::string_view user, std::int32_t account);

// The reversible encoding of one field; never holds a ",". Nothing when the text was not made by encode.
std::string encode_field(std::string_view text);
std::optional<std::string> decode_field(std::string_view text);

// One line of the file: three encoded fields and True or False, with "," between them.
std::string encode_record(const AccountRecord& record);
std::optional<AccountRecord> decode_record(std::string_view line);

// Takes every record with one of these keys out of the file; the other lines stay as they are. Nothing is
// written when none has.
tl::expected<void, FileError> remove_records(const TextFile& files, std::string_view name,
                                             const std::vector<std::string>& keys);

// The last record with the key; nothing when none has it or the file can't be read.
std::optional<AccountRecord> find_record(const TextFile& files, std::string_view name, std::string_view key);

}  // namespace tutti
