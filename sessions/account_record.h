#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/secret.h"

namespace tutti {

// One saved account of the account information file. User name and password are in upper case.
struct AccountRecord {
  std::string user;
  Secret password;
  std::int32_t account = 0;
  bool auto_login = false;
};

// What tells accounts apart everywhere: the trimmed, upper-cased user name and the account number, with a ","
// between them.
std::string account_key(std::string_view user, std::int32_t account);

// One line of the file: user name, password and account number, each encoded, and True or False, with ","
// between them. An encoded field is "1." and, in URL-safe base64 without padding, a random nonce of 24 bytes
// and the XChaCha20-Poly1305 of the text, which is padded to a multiple of 32 bytes so that it does not tell
// its length. Each field is bound to its own name and to what was decoded before it, so that none can be
// moved within the line or to another one: the account number to the user name, the password to user name,
// account number and the last field. `key` has KeyFile::key_size bytes.
std::string encode_record(const AccountRecord& record, const Secret& key);
// Nothing unless encode_record made exactly this line with this key.
std::optional<AccountRecord> decode_record(std::string_view line, const Secret& key);
// True for a line that was a record, though it may be damaged or encoded with another key.
bool looks_like_record(std::string_view line);

}  // namespace tutti
