#pragma once

#include <sys/types.h>

#include <string>

#include "tests/support/test_terminal.h"

namespace tutti::testing {

// A real PostgreSQL server for one test: its data in a temporary folder, reached by a socket there alone. It
// ends with the test, however that ends. What keeps it from running is thrown.
class PostgresServer {
 public:
  PostgresServer();
  ~PostgresServer();
  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;

  std::string url() const;
  void start();
  // All of it at once, as if the power was lost.
  void kill();
  // All rows of a query, cells with "|" between them; or what is wrong with it.
  Texts ask(const std::string& sql) const;
  // Ends the connections of all others, and waits until they have.
  void end_connections() const;

 private:
  // The process of a program of the server's, as a user who may run it; what it says goes to `output`.
  pid_t launch(const Texts& words, int output) const;

  TemporaryFolder folder_;
  std::string programs_;  // folder
  std::string user_;      // who runs it; empty: whoever runs the test
  pid_t process_ = -1;
};

}  // namespace tutti::testing
