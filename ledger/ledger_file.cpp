#include "ledger/ledger_file.h"

#include <SQLiteCpp/Backup.h>
#include <fmt/format.h>
#include <sodium.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <span>

#include "core/file_writer.h"
#include "core/synced_log.h"

namespace tutti {
namespace {

using ledger_schema::Chained;

constexpr int busy_ms = 100;
constexpr auto setting = R"(
PRAGMA synchronous = FULL;
PRAGMA foreign_keys = ON;
PRAGMA wal_autocheckpoint = 4000;
)";

FileError failure(const std::filesystem::path& file, const SQLite::Exception& error) {
  return {file, fmt::format("the ledger can't be used: {}", error.what())};
}

std::int64_t milliseconds(TimePoint time) {
  return time.time_since_epoch().count();
}

ChainHash::Bytes hash_of(const SQLite::Column& column) {
  ChainHash::Bytes out{};
  if (column.getBytes() == static_cast<int>(out.size()))
    std::memcpy(out.data(), column.getBlob(), out.size());
  return out;
}

std::string hex(const void* data, int size) {
  std::string out;
  for (const unsigned char byte :
       std::span{static_cast<const unsigned char*>(data), static_cast<std::size_t>(size)})
    out += fmt::format("{:02x}", byte);
  return out;
}

std::string insert_of(const ledger_schema::Table& table) {
  std::string marks = "?";
  for (std::size_t i = 1; i < table.columns.size(); ++i)
    marks += ", ?";
  return fmt::format("INSERT INTO {} ({}) VALUES ({})", table.name, table.names(0, table.columns.size()),
                     marks);
}

}  // namespace

LedgerFile::LedgerFile(const std::filesystem::path& file, int flags, const Secret& key)
    : database_(file.string(), flags | SQLite::OPEN_NOMUTEX, busy_ms), hash_(key) {}

tl::expected<std::unique_ptr<LedgerFile>, FileError> LedgerFile::open(const std::filesystem::path& file,
                                                                      const Secret& key, TimePoint now) {
  const auto there = file_exists(file);
  if (!there) return tl::unexpected(there.error());
  // Made with the rights that the program gives its files; those beside it take them over.
  if (!*there) {
    if (auto made = SyncedLog::begin(file); !made) return tl::unexpected(made.error());
  }
  try {
    std::unique_ptr<LedgerFile> out{new LedgerFile{file, SQLite::OPEN_READWRITE, key}};
    if (!out->database_.tableExists("ledger")) out->create(now);
    out->read_identity();
    if (out->newer()) return out;
    out->database_.exec(setting);
    auto& last = out->statement(
        "SELECT n, first_seq, last_seq, format, t, hash FROM commit_log ORDER BY n DESC LIMIT 1");
    if (last.executeStep()) {
      const Commit commit = commit_of(last);
      last.reset();
      const ChainHash::Bytes before =
          commit.head.commit == 1 ? out->origin() : out->commit_at(commit.head.commit - 1).hash;
      if (!out->fits(commit, before)) {
        return tl::unexpected(FileError{
            file, fmt::format("commit {} of the ledger is not what its hash says: it was changed, or its key "
                              "is another one. Put the ledger's last backup and its key back, or move the "
                              "ledger away to begin a new one",
                              commit.head.commit)});
      }
      out->head_ = commit.head;
    } else {
      out->head_.hash = out->origin();
    }
    out->seq_ = out->head_.seq;
    if (out->schema_ < ledger_schema::version) {
      if (auto migrated = out->migrate(file); !migrated) return tl::unexpected(migrated.error());
    }
    out->database_.exec(std::string{ledger_schema::create_missing()});
    if (!out->has_derived()) out->make_derived();
    return out;
  } catch (const SQLite::Exception& error) {
    return tl::unexpected(failure(file, error));
  }
}

tl::expected<std::unique_ptr<LedgerFile>, FileError> LedgerFile::open_to_read(
    const std::filesystem::path& file, const Secret& key) {
  try {
    std::unique_ptr<LedgerFile> out{new LedgerFile{file, SQLite::OPEN_READONLY, key}};
    out->read_identity();
    return out;
  } catch (const SQLite::Exception& error) {
    return tl::unexpected(failure(file, error));
  }
}

void LedgerFile::create(TimePoint now) {
  database_.exec("PRAGMA journal_mode = WAL");
  database_.exec("PRAGMA synchronous = FULL");
  std::array<unsigned char, 16> id{};
  ::randombytes_buf(id.data(), id.size());
  SQLite::Transaction all{database_};
  database_.exec(std::string{ledger_schema::create()});
  database_.exec(std::string{ledger_schema::create_derived()});
  SQLite::Statement made{database_, "INSERT INTO ledger (id, schema, created) VALUES (?, ?, ?)"};
  made.bind(1, id.data(), static_cast<int>(id.size()));
  made.bind(2, ledger_schema::version);
  made.bind(3, milliseconds(now));
  made.exec();
  all.commit();
}

void LedgerFile::read_identity() {
  auto& own = statement("SELECT id, schema, created FROM ledger ORDER BY rowid LIMIT 1");
  if (!own.executeStep()) throw SQLite::Exception{"it does not say which one it is"};
  id_ = hex(own.getColumn(0).getBlob(), own.getColumn(0).getBytes());
  schema_ = own.getColumn(1).getInt64();
  created_ = own.getColumn(2).getInt64();
  own.reset();
}

// What the first commit has before it.
ChainHash::Bytes LedgerFile::origin() {
  hash_.begin({}, 1);
  hash_.add(std::string_view{id_});
  return hash_.end(0, 0, 0, created_);
}

SQLite::Statement& LedgerFile::statement(const std::string& sql) {
  auto at = statements_.find(sql);
  if (at == statements_.end()) {
    at = statements_.try_emplace(sql, database_, sql).first;
  } else {
    at->second.reset();
    at->second.clearBindings();
  }
  return at->second;
}

void LedgerFile::begin() {
  rows_.clear();
  attempted_ = {};
  database_.exec("BEGIN IMMEDIATE");
}

std::int64_t LedgerFile::add(Chained table, std::vector<LedgerValue> values) {
  const ledger_schema::Table& into = ledger_schema::table(table);
  assert(values.size() == into.columns.size() - 1);
  static const std::array<std::string, 5> inserts = [] {
    std::array<std::string, 5> out;
    for (std::size_t i = 0; i < out.size(); ++i)
      out[i] = insert_of(ledger_schema::chained()[i]);
    return out;
  }();
  auto& insert = statement(inserts[static_cast<std::size_t>(table)]);
  insert.bind(1, ++seq_);
  for (std::size_t i = 0; i < values.size(); ++i)
    bind_value(insert, static_cast<int>(i) + 2, values[i]);
  insert.exec();
  rows_.push_back({table, seq_, std::move(values)});
  return seq_;
}

void LedgerFile::commit(TimePoint time) {
  attempted_ = head_;
  if (!rows_.empty()) {
    // Table by table, as the check reads them.
    std::stable_sort(rows_.begin(), rows_.end(),
                     [](const Row& a, const Row& b) { return a.table < b.table; });
    hash_.begin(head_.hash);
    for (const Row& row : rows_) {
      hash_.add(ledger_schema::table(row.table).name, row.seq);
      for (const LedgerValue& value : row.values)
        hash_.add(value);
    }
    const std::int64_t number = head_.commit + 1;
    attempted_ = {number, seq_, hash_.end(number, head_.seq + 1, seq_, milliseconds(time))};
    auto& insert = statement(
        "INSERT INTO commit_log (n, first_seq, last_seq, format, t, hash) VALUES (?, ?, ?, ?, ?, ?)");
    insert.bind(1, number);
    insert.bind(2, head_.seq + 1);
    insert.bind(3, seq_);
    insert.bind(4, ChainHash::format);
    insert.bind(5, milliseconds(time));
    insert.bind(6, attempted_.hash.data(), static_cast<int>(attempted_.hash.size()));
    insert.exec();
  }
  database_.exec("COMMIT");
  rows_.clear();
  head_ = attempted_;
}

LedgerFile::Commit LedgerFile::commit_of(SQLite::Statement& row) {
  return {{row.getColumn(0).getInt64(), row.getColumn(2).getInt64(), hash_of(row.getColumn(5))},
          row.getColumn(1).getInt64(),
          row.getColumn(3).getInt64(),
          row.getColumn(4).getInt64()};
}

bool LedgerFile::fits(const Commit& commit, const ChainHash::Bytes& before) {
  if (commit.format < 1 || commit.format > std::min<std::int64_t>(ChainHash::format, schema_)) return false;
  hash_.begin(before, commit.format);
  for (const ledger_schema::Table& table : ledger_schema::chained()) {
    auto& rows = statement(fmt::format("SELECT seq, {} FROM {} WHERE seq BETWEEN ? AND ? ORDER BY seq",
                                       table.names_in(schema_), table.name));
    rows.bind(1, commit.first);
    rows.bind(2, commit.head.seq);
    while (rows.executeStep()) {
      hash_.add(table.name, rows.getColumn(0).getInt64());
      const int hashed = static_cast<int>(table.count_in(commit.format));
      for (int column = 1; column <= hashed; ++column)
        hash_.add(rows.getColumn(column));
      // What came later is empty in what was there before.
      for (int column = hashed + 1; column <= static_cast<int>(table.count_in(schema_)); ++column)
        if (!rows.getColumn(column).isNull()) return rows.reset(), false;
    }
  }
  return hash_.end(commit.head.commit, commit.first, commit.head.seq, commit.time) == commit.head.hash;
}

LedgerFile::Head LedgerFile::commit_at(std::int64_t number) {
  auto& one = statement("SELECT n, first_seq, last_seq, format, t, hash FROM commit_log WHERE n = ?");
  one.bind(1, number);
  const Head out = one.executeStep() ? commit_of(one).head : Head{};
  one.reset();
  return out;
}

std::vector<std::string> LedgerFile::check() {
  // One state of the file for all of it, whoever writes meanwhile.
  database_.exec("BEGIN");
  std::vector<std::string> faults;
  Head last{.hash = origin()};
  auto& commits = statement("SELECT n, first_seq, last_seq, format, t, hash FROM commit_log ORDER BY n");
  while (commits.executeStep()) {
    const Commit commit = commit_of(commits);
    if (commit.head.commit != last.commit + 1 || commit.first != last.seq + 1)
      faults.push_back(
          fmt::format("between commit {} and {} something is missing", last.commit, commit.head.commit));
    if (!fits(commit, last.hash))
      faults.push_back(fmt::format("commit {} is not what its hash says", commit.head.commit));
    last = commit.head;
  }
  for (const ledger_schema::Table& table : ledger_schema::chained()) {
    auto& rest = statement(fmt::format("SELECT count(*) FROM {} WHERE seq > ?", table.name));
    rest.bind(1, last.seq);
    if (rest.executeStep() && rest.getColumn(0).getInt64() > 0)
      faults.push_back(fmt::format("{} has rows behind the last commit", table.name));
    rest.reset();
  }
  head_ = last;
  for (std::string& fault : faults_of_derived())
    faults.push_back(std::move(fault));
  database_.exec("ROLLBACK");
  return faults;
}

// Made anew in tables of this connection alone, which go before those of the file, and with what was begun.
std::vector<std::string> LedgerFile::faults_of_derived() {
  std::vector<std::string> out;
  // The next start makes what is missing.
  if (schema_ < ledger_schema::version || !has_derived()) return out;
  for (const std::string_view table : ledger_schema::derived_tables())
    database_.exec(fmt::format("CREATE TEMP TABLE {0} AS SELECT * FROM main.{0} WHERE 0", table));
  database_.exec(std::string{ledger_schema::fill_derived()});
  for (const std::string_view table : ledger_schema::derived_tables()) {
    // Sums of fractions depend on their order in the last digits.
    const std::string_view columns =
        table == "ticket_fill" ? "ticket, fills, round(lots, 6), round(value, 4), least, most, price_digits"
                               : "*";
    SQLite::Statement differing{
        database_,
        fmt::format(
            "SELECT count(*) FROM (SELECT {1} FROM main.{0} EXCEPT SELECT {1} FROM temp.{0} UNION ALL "
            "SELECT * FROM (SELECT {1} FROM temp.{0} EXCEPT SELECT {1} FROM main.{0}))",
            table, columns)};
    if (differing.executeStep() && differing.getColumn(0).getInt64() > 0)
      out.push_back(fmt::format("{} is not what the events say", table));
  }
  return out;
}

bool LedgerFile::has_derived() const {
  const auto names = ledger_schema::derived_tables();
  return std::all_of(names.begin(), names.end(),
                     [this](std::string_view name) { return database_.tableExists(std::string{name}); });
}

tl::expected<void, FileError> LedgerFile::migrate(const std::filesystem::path& file) {
  std::filesystem::path copy = file;
  copy.replace_filename(fmt::format("ledger-version-{}.db", schema_));
  const auto there = file_exists(copy);
  if (!there) return tl::unexpected(there.error());
  // One of a start that did not come to its end is as good.
  if (!*there) {
    if (auto made = SyncedLog::begin(copy); !made) return tl::unexpected(made.error());
  }
  back_up(copy);
  SQLite::Transaction all{database_};
  database_.exec(ledger_schema::migrate());
  all.commit();
  schema_ = ledger_schema::version;
  return {};
}

void LedgerFile::make_derived() {
  SQLite::Transaction all{database_};
  for (const std::string_view table : ledger_schema::derived_tables())
    database_.exec(fmt::format("DROP TABLE IF EXISTS {}", table));
  database_.exec(std::string{ledger_schema::create_derived()});
  database_.exec(std::string{ledger_schema::fill_derived()});
  all.commit();
}

void LedgerFile::each_row(
    const std::function<void(const std::string& table, const std::vector<std::string>& names,
                             const std::vector<LedgerValue>& values)>& take) {
  database_.exec("BEGIN");
  const auto read = [&](const std::string& table, const std::string& sql) {
    SQLite::Statement rows{database_, sql};
    std::vector<std::string> names;
    for (int column = 0; column < rows.getColumnCount(); ++column)
      names.emplace_back(rows.getColumnName(column));
    while (rows.executeStep()) {
      std::vector<LedgerValue> values;
      for (int column = 0; column < rows.getColumnCount(); ++column)
        values.push_back(value_of(rows.getColumn(column)));
      take(table, names, values);
    }
  };
  read("ledger",
       "SELECT lower(hex(id)) AS id, nullif(lower(hex(parent)), '') AS parent, forked_at, schema, created "
       "FROM ledger");
  for (const ledger_schema::Table& table : ledger_schema::chained())
    read(std::string{table.name}, fmt::format("SELECT * FROM {} ORDER BY seq", table.name));
  read("commit_log",
       "SELECT n, first_seq, last_seq, format, t, lower(hex(hash)) AS hash FROM commit_log ORDER BY n");
  database_.exec("ROLLBACK");
}

void LedgerFile::back_up(const std::filesystem::path& to) {
  SQLite::Database copy{to.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE};
  SQLite::Backup backup{copy, database_};
  backup.executeStep();
}

}  // namespace tutti
