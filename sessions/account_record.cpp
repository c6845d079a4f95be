#include "sessions/account_record.h"

#include <sodium.h>

#include <algorithm>
#include <cassert>

#include "core/key_file.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

constexpr int base64 = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
constexpr std::string_view version = "1.";
constexpr std::size_t block = 32;  // bytes
constexpr std::size_t nonce_size = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr std::size_t tag_size = crypto_aead_xchacha20poly1305_ietf_ABYTES;
static_assert(KeyFile::key_size == crypto_aead_xchacha20poly1305_ietf_KEYBYTES);

unsigned char* bytes(char* text) {
  return reinterpret_cast<unsigned char*>(text);
}
const unsigned char* bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

// Places of the fields in a line.
enum Field : std::size_t { user_field, password_field, account_field, auto_login_field, fields_in_all };

std::string_view flag_text(bool auto_login) {
  return auto_login ? "True" : "False";
}

// What a field is bound to. The user name may hold any byte, so it stands last.
std::string binding(std::string_view field, std::string_view flag, std::string_view account,
                    std::string_view user) {
  std::string out;
  for (const std::string_view part : {field, flag, account}) {
    out += part;
    out += '\0';
  }
  out += user;
  return out;
}
std::string user_binding() {
  return binding("user", "", "", "");
}
std::string account_binding(std::string_view user) {
  return binding("account", "", "", user);
}
std::string password_binding(std::string_view flag, std::string_view account, std::string_view user) {
  return binding("password", flag, account, user);
}

std::string to_base64(std::string_view binary) {
  std::string out(sodium_base64_encoded_len(binary.size(), base64), '\0');
  sodium_bin2base64(out.data(), out.size(), bytes(binary), binary.size(), base64);
  out.pop_back();  // the closing zero
  return out;
}

std::optional<std::string> from_base64(std::string_view text) {
  std::string out(text.size(), '\0');
  std::size_t length = 0;
  if (sodium_base642bin(bytes(out.data()), out.size(), text.data(), text.size(), nullptr, &length, nullptr,
                        base64) != 0) {
    return std::nullopt;
  }
  out.resize(length);
  // The decoder lets bytes pass that no encoder writes.
  if (to_base64(out) != text) return std::nullopt;
  return out;
}

std::string encode_field(std::string_view text, const std::string& bound_to, const Secret& key) {
  const std::size_t size = (text.size() / block + 1) * block;
  const Secret padded = Secret::filled(size, [&](char* out) {
    std::copy(text.begin(), text.end(), out);
    std::size_t end = 0;
    [[maybe_unused]] const int done = sodium_pad(&end, bytes(out), text.size(), block, size);
    assert(done == 0 && end == size);
  });
  std::string sealed(nonce_size + size + tag_size, '\0');
  randombytes_buf(sealed.data(), nonce_size);
  crypto_aead_xchacha20poly1305_ietf_encrypt(bytes(sealed.data()) + nonce_size, nullptr,
                                             bytes(padded.reveal()), size, bytes(bound_to), bound_to.size(),
                                             nullptr, bytes(sealed.data()), bytes(key.reveal()));
  return std::string{version} + to_base64(sealed);
}

std::optional<Secret> decode_field(std::string_view field, const std::string& bound_to, const Secret& key) {
  if (!field.starts_with(version)) return std::nullopt;
  const auto sealed = from_base64(field.substr(version.size()));
  if (!sealed || sealed->size() < nonce_size + block + tag_size) return std::nullopt;
  bool genuine = false;
  std::size_t end = 0;
  const std::size_t size = sealed->size() - nonce_size - tag_size;
  const Secret padded = Secret::filled(size, [&](char* out) {
    genuine = crypto_aead_xchacha20poly1305_ietf_decrypt(
                  bytes(out), nullptr, nullptr, bytes(*sealed) + nonce_size, size + tag_size, bytes(bound_to),
                  bound_to.size(), bytes(*sealed), bytes(key.reveal())) == 0 &&
              sodium_unpad(&end, bytes(out), size, block) == 0;
  });
  if (!genuine) return std::nullopt;
  return Secret{padded.reveal().substr(0, end)};
}

}  // namespace

std::string account_key(std::string_view user, std::int32_t account) {
  return upper(trim(user)) + "," + std::to_string(account);
}

std::string encode_record(const AccountRecord& record, const Secret& key) {
  assert(key.size() == KeyFile::key_size);
  const std::string account = std::to_string(record.account);
  const std::string_view flag = flag_text(record.auto_login);
  std::string line = encode_field(record.user, user_binding(), key);
  line += ',';
  line += encode_field(record.password.reveal(), password_binding(flag, account, record.user), key);
  line += ',';
  line += encode_field(account, account_binding(record.user), key);
  line += ',';
  line += flag;
  return line;
}

std::optional<AccountRecord> decode_record(std::string_view line, const Secret& key) {
  assert(key.size() == KeyFile::key_size);
  const auto fields = split(line, ",");
  if (fields.size() != fields_in_all) return std::nullopt;
  const std::string_view flag = fields[auto_login_field];
  const auto user = decode_field(fields[user_field], user_binding(), key);
  if (!user) return std::nullopt;
  const auto account = decode_field(fields[account_field], account_binding(user->reveal()), key);
  if (!account) return std::nullopt;
  auto password =
      decode_field(fields[password_field], password_binding(flag, account->reveal(), user->reveal()), key);
  const auto number = parse_int32(account->reveal());
  if (!password || !number) return std::nullopt;
  return AccountRecord{std::string{user->reveal()}, std::move(*password), *number, flag == flag_text(true)};
}

bool looks_like_record(std::string_view line) {
  const auto fields = split(line, ",");
  return std::any_of(fields.begin(), fields.end(),
                     [](std::string_view field) { return field.starts_with(version); });
}

}  // namespace tutti
