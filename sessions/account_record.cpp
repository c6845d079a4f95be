#include "sessions/account_record.h"

#include <sodium.h>

#include <algorithm>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {
constexpr int variant = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
}

std::string account_key(std::string_view user, std::int32_t account) {
  return upper(trim(user)) + std::to_string(account);
}

std::string encode_field(std::string_view text) {
  std::string out(sodium_base64_encoded_len(text.size(), variant), '\0');
  sodium_bin2base64(out.data(), out.size(), reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                    variant);
  out.pop_back();  // the closing zero
  return out;
}

std::optional<std::string> decode_field(std::string_view text) {
  std::string out(text.size(), '\0');
  std::size_t length = 0;
  if (sodium_base642bin(reinterpret_cast<unsigned char*>(out.data()), out.size(), text.data(), text.size(),
                        nullptr, &length, nullptr, variant) != 0) {
    return std::nullopt;
  }
  out.resize(length);
  return out;
}

std::string encode_record(const AccountRecord& record) {
  return encode_field(record.user) + "," + encode_field(record.password) + "," +
         encode_field(std::to_string(record.account)) + "," + (record.auto_login ? "True" : "False");
}

std::optional<AccountRecord> decode_record(std::string_view line) {
  const auto fields = split(line, ",");
  if (fields.size() < 4) return std::nullopt;
  const auto user = decode_field(fields[0]);
  const auto password = decode_field(fields[1]);
  const auto account = decode_field(fields[2]);
  if (!user || !password || !account) return std::nullopt;
  const auto number = parse_int32(*account);
  if (!number) return std::nullopt;
  return AccountRecord{*user, *password, *number, lower(trim(fields[3])) == "true"};
}

tl::expected<void, FileError> remove_records(const TextFile& files, std::string_view name,
                                             const std::vector<std::string>& keys) {
  auto lines = files.lines(name);
  if (!lines) return tl::unexpected(lines.error());
  const auto removed = std::erase_if(*lines, [&](const std::string& line) {
    const auto record = decode_record(line);
    return record &&
           std::find(keys.begin(), keys.end(), account_key(record->user, record->account)) != keys.end();
  });
  if (removed == 0) return {};
  return files.write_lines(name, *lines);
}

std::optional<AccountRecord> find_record(const TextFile& files, std::string_view name, std::string_view key) {
  std::optional<AccountRecord> found;
  const auto lines = files.lines(name);
  if (!lines) return found;
  for (const std::string& line : *lines) {
    auto record = decode_record(line);
    if (record && account_key(record->user, record->account) == key) found = std::move(record);
  }
  return found;
}

}  // namespace tutti
