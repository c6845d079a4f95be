#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "ledger/copy/copy_error.h"
#include "ledger/copy/copy_target.h"

struct pg_conn;

namespace tutti {

// A connection to the server that a ledger is copied to. Whoever waits for it can be stopped within a tenth
// of a second, but for the look-up of a host's name.
class CopyServer {
 public:
  using Stopped = std::function<bool()>;
  using Rows = std::vector<std::vector<std::string>>;  // cells; nothing is an empty text
  using Answer = tl::expected<Rows, CopyError>;

  static tl::expected<CopyServer, CopyError> connect(const CopyTarget& target, Stopped stopped);

  // Carries out one statement, with these values for $1, $2, ...; without values several, in one transaction
  // unless they say otherwise.
  Answer ask(const std::string& sql, const std::vector<std::string>& values = {});

 private:
  struct Close {
    void operator()(pg_conn* connection) const;
  };

  explicit CopyServer(Stopped stopped) : stopped_(std::move(stopped)) {}
  // Until the socket can be read, or also written; false when it is stopped, or nothing comes.
  bool wait(bool to_write);
  // What went wrong with the connection, as the library has it.
  CopyError lost() const;

  Stopped stopped_;
  std::unique_ptr<pg_conn, Close> connection_;
};

}  // namespace tutti
