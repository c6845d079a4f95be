#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>
#include <tl/expected.hpp>

#include "core/clock.h"
#include "core/file_error.h"
#include "ledger/chain_hash.h"
#include "ledger/ledger_schema.h"

namespace tutti {

// The ledger's file and the one connection to it: rows that are only added, and one keyed hash per commit
// over them and the hash before. One thread uses it at a time.
//
// What the library can't do it throws as SQLite::Exception, from everything but the two that open; after one
// the object is good for nothing but its end.
class LedgerFile {
 public:
  // The last commit; all 0 in a new file.
  struct Head {
    std::int64_t commit = 0;
    std::int64_t seq = 0;
    ChainHash::Bytes hash{};
    bool operator==(const Head&) const = default;
  };

  // Opens the ledger to go on with it; makes it where there is none. Fails where it can't be read or written,
  // and where its last commit is not what its hash says. One that a newer program made is opened to be read;
  // one of an older program is copied and gets what it lacks.
  static tl::expected<std::unique_ptr<LedgerFile>, FileError> open(const std::filesystem::path& file,
                                                                   const Secret& key, TimePoint now);
  // Opens one that is there, to read alone. Nothing is looked at yet.
  static tl::expected<std::unique_ptr<LedgerFile>, FileError> open_to_read(const std::filesystem::path& file,
                                                                           const Secret& key);

  // Made by a newer program: it is only read.
  bool newer() const { return schema_ > ledger_schema::version; }
  std::int64_t schema() const { return schema_; }
  const std::string& id() const { return id_; }  // 32 hexadecimal digits; the hashes begin with it
  const Head& head() const { return head_; }

  void begin();
  // Adds a row to what is begun, with its values behind `seq`; answers its seq.
  std::int64_t add(ledger_schema::Chained table, std::vector<LedgerValue> values);
  // Ends what is begun with its hash; synchronised when this returns. What added no row is a commit without
  // one of the log. `time`: of the commit.
  void commit(TimePoint time);
  // What `commit` was about to make the head when it threw.
  const Head& attempted() const { return attempted_; }

  // Prepared once and kept; reset, and without values.
  SQLite::Statement& statement(const std::string& sql);
  SQLite::Database& connection() { return database_; }

  // Goes through all commits; one line per fault.
  std::vector<std::string> check();
  // The commit with this number; one without a number when there is none.
  Head commit_at(std::int64_t number);
  void make_derived();
  bool has_derived() const;
  // Every row of the tables under the hashes, and the commits.
  void each_row(const std::function<void(const std::string& table, const std::vector<std::string>& names,
                                         const std::vector<LedgerValue>& values)>& take);
  // A copy that is whole, while this one is in use. The copy is a new file.
  void back_up(const std::filesystem::path& to);
  void checkpoint() { database_.exec("PRAGMA wal_checkpoint(PASSIVE)"); }

 private:
  struct Row {
    ledger_schema::Chained table;
    std::int64_t seq;
    std::vector<LedgerValue> values;
  };
  struct Commit {
    Head head;
    std::int64_t first = 0;
    std::int64_t format = 0;
    std::int64_t time = 0;
  };

  LedgerFile(const std::filesystem::path& file, int flags, const Secret& key);
  void create(TimePoint now);
  // Makes a file of an older version one of this, after a copy of it beside it.
  tl::expected<void, FileError> migrate(const std::filesystem::path& file);
  void read_identity();
  ChainHash::Bytes origin();
  bool fits(const Commit& commit, const ChainHash::Bytes& before);
  static Commit commit_of(SQLite::Statement& row);
  std::vector<std::string> faults_of_derived();

  SQLite::Database database_;
  ChainHash hash_;
  std::map<std::string, SQLite::Statement> statements_;
  std::string id_;
  std::int64_t created_ = 0;
  std::int64_t schema_ = 0;
  Head head_;
  Head attempted_;
  std::int64_t seq_ = 0;   // given last
  std::vector<Row> rows_;  // of what is begun
};

}  // namespace tutti
