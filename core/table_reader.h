#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <toml++/toml.h>

namespace tutti {

// One of the words that a key may hold, and what it stands for.
template <class Value>
struct Word {
  std::string_view text;
  Value value;
};

// Takes the known keys out of one TOML table. Each call leaves the target as it is when the key is missing;
// the first value that does not fit, and a key that nobody asked for, become the fault.
class TableReader {
 public:
  // `fault` collects over all tables of one file; once it is set, nothing more is read. The table was parsed
  // from a part of the file with so many lines in front of it.
  TableReader(const toml::table& table, std::optional<std::string>& fault, std::size_t lines_before = 0)
      : table_(table), fault_(fault), lines_before_(lines_before) {}

  // Any number, infinite ones and nan included.
  void any_number(std::string_view key, double& value);
  // A finite number within the range.
  void number(std::string_view key, double& value, double low, double high);
  // The same, or this word, which stands for nothing.
  void number_or(std::string_view key, std::string_view word, std::optional<double>& value, double low,
                 double high);
  void integer(std::string_view key, std::int64_t& value, std::int64_t low, std::int64_t high);
  void integer(std::string_view key, std::int32_t& value, std::int32_t low, std::int32_t high);
  void flag(std::string_view key, bool& value);
  void text(std::string_view key, std::string& value);
  void texts(std::string_view key, std::vector<std::string>& value);
  // One whole number, or a list of them.
  void integers(std::string_view key, std::vector<std::int32_t>& value, std::int32_t low, std::int32_t high);
  // A list of whole numbers above 0; empty when the key is missing.
  std::vector<std::int64_t> integers(std::string_view key);
  // A number of seconds, fractions allowed.
  void seconds(std::string_view key, std::chrono::milliseconds& value, double low, double high);
  // The tables of an array of tables; none when the key is missing.
  std::vector<const toml::table*> tables(std::string_view key);
  // A table; nullptr when the key is missing.
  const toml::table* table(std::string_view key);

  bool has(std::string_view key) const { return table_.contains(key); }
  // Makes a missing key a fault.
  void require(std::string_view key);
  // Faults with the line of a key, or of the table when it has no such key.
  void complain(std::string_view key, std::string_view why);
  // Faults because the key holds none of the words.
  template <class Value, std::size_t count>
  void complain_of_word(std::string_view key, const Word<Value> (&words)[count]) {
    std::string list;
    for (const Word<Value>& word : words)
      list.append(list.empty() ? "must be \"" : ", \"").append(word.text).append("\"");
    complain(key, list);
  }
  // Last of all: any key that was not asked for is a fault.
  void finish();

 private:
  const toml::node* take(std::string_view key);

  const toml::table& table_;
  std::optional<std::string>& fault_;
  std::size_t lines_before_;
  std::vector<std::string_view> taken_;
};

// The value that the word under a key stands for; `missing` when there is no such key.
template <class Value, std::size_t count>
Value read_word(TableReader& reader, std::string_view key, const Word<Value> (&words)[count], Value missing) {
  std::string text;
  reader.text(key, text);
  if (!reader.has(key)) return missing;
  for (const Word<Value>& word : words)
    if (word.text == text) return word.value;
  reader.complain_of_word(key, words);
  return missing;
}

// Parses a file, or a part of one with so many lines in front of it; the error names the line.
std::optional<toml::table> parse_toml(std::string_view content, std::optional<std::string>& fault,
                                      std::size_t lines_before = 0);

}  // namespace tutti
