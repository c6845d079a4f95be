#include "tests/support/ledger_home.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ledger/ledger_start.h"

namespace tutti::testing {

void killed(const std::function<void()>& life) {
  const pid_t child = ::fork();
  if (child == 0) {
    life();
    ::_exit(0);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

Texts ask_ledger(const std::filesystem::path& home, const std::string& sql) {
  sqlite3* connection = nullptr;
  ::sqlite3_open_v2(ledger_path(home).c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr);
  Texts rows;
  const auto take = [](void* out, int count, char** cells, char**) {
    std::string row;
    for (int i = 0; i < count; ++i)
      row += (i == 0 ? "" : "|") + std::string{cells[i] == nullptr ? "" : cells[i]};
    static_cast<Texts*>(out)->push_back(row);
    return 0;
  };
  char* wrong = nullptr;
  if (::sqlite3_exec(connection, sql.c_str(), take, &rows, &wrong) != SQLITE_OK) rows.emplace_back(wrong);
  ::sqlite3_free(wrong);
  ::sqlite3_close(connection);
  return rows;
}

}  // namespace tutti::testing
