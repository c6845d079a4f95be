#include "ledger/chain_hash.h"

#include <sodium.h>

#include <array>
#include <cassert>

namespace tutti {
namespace {

constexpr std::string_view own_key = "tutti ledger chain";

unsigned char* bytes(char* text) {
  return reinterpret_cast<unsigned char*>(text);
}
const unsigned char* bytes(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

}  // namespace

ChainHash::ChainHash(const Secret& key)
    : key_(Secret::filled(crypto_generichash_KEYBYTES, [&](char* out) {
        ::crypto_generichash(bytes(out), crypto_generichash_KEYBYTES, bytes(own_key.data()), own_key.size(),
                             bytes(key.reveal().data()), key.size());
      })) {
  assert(key.size() >= crypto_generichash_KEYBYTES_MIN);
}

void ChainHash::begin(const Bytes& before, std::int64_t of_format) {
  encoded_.assign(before.begin(), before.end());
  add_number(of_format);
}

void ChainHash::add(std::string_view table, std::int64_t seq) {
  encoded_ += 'r';
  add(table);
  add_number(seq);
}

void ChainHash::add(const LedgerValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    encoded_ += 'i';
    add_number(*number);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    encoded_ += 't';
    add(std::string_view{*text});
  } else if (const auto* blob = std::get_if<LedgerBytes>(&value)) {
    encoded_ += 'b';
    add_number(static_cast<std::int64_t>(blob->size()));
    encoded_.append(blob->begin(), blob->end());
  } else {
    encoded_ += 'n';
  }
}

void ChainHash::add(const SQLite::Column& column) {
  if (column.isNull()) {
    encoded_ += 'n';
  } else if (column.isInteger()) {
    encoded_ += 'i';
    add_number(column.getInt64());
  } else {
    encoded_ += column.isBlob() ? 'b' : 't';
    // Asked for before its size, which is that of the form asked for last.
    const auto* content = static_cast<const char*>(column.getBlob());
    add(std::string_view{content, static_cast<std::size_t>(column.getBytes())});
  }
}

void ChainHash::add(std::string_view text) {
  add_number(static_cast<std::int64_t>(text.size()));
  encoded_ += text;
}

ChainHash::Bytes ChainHash::end(std::int64_t number, std::int64_t first, std::int64_t last,
                                std::int64_t time) {
  for (const std::int64_t each : {number, first, last, time})
    add_number(each);
  Bytes out{};
  ::crypto_generichash(out.data(), out.size(), bytes(encoded_.data()), encoded_.size(),
                       bytes(key_.reveal().data()), key_.size());
  return out;
}

void ChainHash::add_number(std::int64_t number) {
  const auto value = static_cast<std::uint64_t>(number);
  std::array<char, 8> out{};
  for (std::size_t byte = 0; byte < out.size(); ++byte)
    out[byte] = static_cast<char>(value >> (8 * byte) & 0xFF);
  encoded_.append(out.data(), out.size());
}

}  // namespace tutti
