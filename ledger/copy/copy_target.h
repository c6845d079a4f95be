#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tl/expected.hpp>

namespace tutti {

// The database that a ledger is copied to, by its URL: postgresql://USER@HOST:PORT/DATABASE. Off this
// computer its certificate is verified. Passwords stand in the client's own password file.
class CopyTarget {
 public:
  // Refuses, with the reason: what is no such URL, one with a password, and one that would do with less than
  // a verified server.
  static tl::expected<CopyTarget, std::string> of(const std::string& url);

  const std::string& url() const { return url_; }
  // As the client's library takes them, by name.
  const std::vector<std::pair<std::string, std::string>>& options() const { return options_; }

 private:
  CopyTarget() = default;

  std::string url_;
  std::vector<std::pair<std::string, std::string>> options_;
};

}  // namespace tutti
