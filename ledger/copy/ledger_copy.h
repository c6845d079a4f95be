#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include <tl/expected.hpp>

#include "ledger/copy/copy_server.h"
#include "ledger/copy/copy_target.h"
#include "ledger/ledger_file.h"
#include "ledger/ledger_lines.h"

namespace tutti {

// Copies the rows of a ledger to a server, in their order, a page of some thousand at a time. Before each
// page the server is asked how far its copy is, and whether that is what this ledger has: where it isn't,
// nothing is copied. So a page that was broken off is repeated, and nothing that stands there is changed.
class LedgerCopy {
 public:
  // On the server, once it is done.
  struct Pushed {
    std::int64_t commits = 0;
    std::int64_t rows = 0;
  };

  // The file is read alone, without a transaction that lasts.
  LedgerCopy(LedgerFile& file, const CopyTarget& target, CopyServer::Stopped stopped)
      : file_(file), target_(target), stopped_(std::move(stopped)) {}

  // Copies what is missing there. A connection that is lost in the midst of it is made anew a few times; one
  // that can't be made is an error at once. The connection is kept for the next time.
  tl::expected<Pushed, CopyError> push();

  // Runs after every statement; for who looks what comes of a copy that is broken off there.
  std::function<void()> on_step;

 private:
  // The part of the rows that goes by one id.
  struct Stretch {
    LedgerLine line;
    std::int64_t before = 0;  // the commit before its first
    std::int64_t last = 0;    // its last one so far
    bool newest = false;
  };
  struct Head {
    std::int64_t commit = 0;  // 0: none
    std::string hash;
  };
  struct Sent {
    std::int64_t commit = 0;  // the last one of it; 0: none
    Pushed what;
  };
  template <class Value>
  using Or = tl::expected<Value, CopyError>;

  Or<void> push_all();
  Or<void> connect();
  // False when there is nothing more to copy of it.
  Or<bool> push_page(const Stretch& stretch);
  Or<void> send_page(const Stretch& stretch, std::int64_t after);
  // The last commit that both have, given the server's last one.
  Or<std::int64_t> common(const Stretch& stretch, const Head& theirs);
  Or<void> send_rows(const std::string& ledger, const ledger_schema::Table& table, std::int64_t first,
                     std::int64_t last);
  CopyServer::Answer ask(const std::string& sql, const std::vector<std::string>& values = {});
  CopyError forked(const Stretch& stretch, const Head& theirs, std::int64_t common);
  std::vector<Stretch> stretches();
  std::int64_t number(const std::string& sql, std::int64_t value);
  std::string hash(std::int64_t commit);

  LedgerFile& file_;
  const CopyTarget& target_;
  const CopyServer::Stopped stopped_;
  std::optional<CopyServer> server_;
  Pushed pushed_;
  Sent sent_;  // the last page
};

}  // namespace tutti
