#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <toml++/toml.h>

namespace tutti {

// Takes the known keys out of one TOML table. Each call leaves the target as it is when the key is missing;
// the first value that does not fit, and a key that nobody asked for, become the fault.
class TableReader {
 public:
  // `fault` collects over all tables of one file; once it is set, nothing more is read.
  TableReader(const toml::table& table, std::optional<std::string>& fault) : table_(table), fault_(fault) {}

  // A finite number within the range.
  void number(std::string_view key, double& value, double low, double high);
  void integer(std::string_view key, std::int64_t& value, std::int64_t low, std::int64_t high);
  void integer(std::string_view key, std::int32_t& value, std::int32_t low, std::int32_t high);
  void flag(std::string_view key, bool& value);
  void text(std::string_view key, std::string& value);
  void texts(std::string_view key, std::vector<std::string>& value);
  // The tables of an array of tables; none when the key is missing.
  std::vector<const toml::table*> tables(std::string_view key);

  bool has(std::string_view key) const { return table_.contains(key); }
  // Makes a missing key a fault.
  void require(std::string_view key);
  // Faults with the line of a key, or of the table when it has no such key.
  void complain(std::string_view key, std::string_view why);
  // Last of all: any key that was not asked for is a fault.
  void finish();

 private:
  const toml::node* take(std::string_view key);

  const toml::table& table_;
  std::optional<std::string>& fault_;
  std::vector<std::string_view> taken_;
};

// Parses a file; the error names the line.
std::optional<toml::table> parse_toml(std::string_view content, std::optional<std::string>& fault);

}  // namespace tutti
