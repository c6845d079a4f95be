#include "ledger/ledger_schema.h"

#include <fmt/format.h>

#include <cstddef>
#include <vector>

namespace tutti::ledger_schema {
namespace {

constexpr Table tables[] = {
    {"account", "n, server, user, account_text", 4, 4},
    {"ticket",
     "n, key_text, plan_digest, kind, symbol, side, total, total_digits, rule, price_at_click, price_digits, "
     "quote_age, \"by\", origin, retry_of, override_reason, planned_count, t",
     18, 18},
    {"request",
     "id, ticket, account, kind, symbol, side, lots, lots_digits, price, stop_loss, take_profit, "
     "price_digits, reference, orig_request, wire_id, era, retry_of, net_before, greatest_before",
     19, 19},
    {"event", "request, state, reason, evidence, code, order_no, note, t_server, t_here", 9, 9},
    {"fill",
     "request, account, exec_id, open_or_close, order_no, position, lots, lots_digits, price, price_digits, "
     "commission, profit, day, t_server, t_here, symbol, side, currency",
     18, 15},
};

constexpr std::string_view creation = R"(
CREATE TABLE ledger (
  id BLOB NOT NULL, parent BLOB, forked_at INTEGER, schema INTEGER NOT NULL, created INTEGER NOT NULL) STRICT;
CREATE TABLE run (n INTEGER PRIMARY KEY, boot TEXT NOT NULL, started INTEGER NOT NULL) STRICT;
CREATE TABLE account (
  seq INTEGER PRIMARY KEY, n INTEGER NOT NULL UNIQUE, server TEXT NOT NULL, user TEXT NOT NULL,
  account_text TEXT NOT NULL, UNIQUE (server, user, account_text)) STRICT;
CREATE TABLE ticket (
  seq INTEGER PRIMARY KEY, n INTEGER NOT NULL UNIQUE, key_text TEXT UNIQUE, plan_digest BLOB,
  kind TEXT NOT NULL, symbol TEXT, side TEXT, total INTEGER, total_digits INTEGER, rule TEXT,
  price_at_click INTEGER, price_digits INTEGER, quote_age INTEGER, "by" TEXT, origin TEXT NOT NULL,
  retry_of INTEGER REFERENCES ticket (n), override_reason TEXT, planned_count INTEGER NOT NULL,
  t INTEGER NOT NULL) STRICT;
CREATE TABLE request (
  seq INTEGER NOT NULL UNIQUE, id INTEGER PRIMARY KEY, ticket INTEGER NOT NULL REFERENCES ticket (n),
  account INTEGER NOT NULL REFERENCES account (n), kind TEXT NOT NULL, symbol TEXT, side TEXT, lots INTEGER,
  lots_digits INTEGER, price INTEGER, stop_loss INTEGER, take_profit INTEGER, price_digits INTEGER,
  reference INTEGER, orig_request INTEGER, wire_id TEXT, era INTEGER,
  retry_of INTEGER UNIQUE REFERENCES request (id), net_before INTEGER, greatest_before INTEGER,
  UNIQUE (account, wire_id)) STRICT;
CREATE INDEX request_of_ticket ON request (ticket);
CREATE TABLE event (
  seq INTEGER PRIMARY KEY, request INTEGER NOT NULL REFERENCES request (id), state TEXT NOT NULL, reason TEXT,
  evidence TEXT NOT NULL, code INTEGER, order_no INTEGER, note TEXT, t_server INTEGER,
  t_here INTEGER NOT NULL) STRICT;
CREATE INDEX event_of_request ON event (request);
CREATE TABLE fill (
  seq INTEGER PRIMARY KEY, request INTEGER REFERENCES request (id),
  account INTEGER NOT NULL REFERENCES account (n), exec_id TEXT, open_or_close TEXT NOT NULL,
  order_no INTEGER, position INTEGER, lots INTEGER, lots_digits INTEGER, price INTEGER, price_digits INTEGER,
  commission INTEGER, profit INTEGER, day TEXT NOT NULL, t_server INTEGER, t_here INTEGER NOT NULL,
  symbol TEXT, side TEXT, currency TEXT, UNIQUE (account, day, exec_id)) STRICT;
CREATE TABLE commit_log (
  n INTEGER PRIMARY KEY, first_seq INTEGER NOT NULL, last_seq INTEGER NOT NULL, format INTEGER NOT NULL,
  t INTEGER NOT NULL, hash BLOB NOT NULL) STRICT;
)";

constexpr std::string_view addition = R"(
ALTER TABLE fill ADD COLUMN symbol TEXT;
ALTER TABLE fill ADD COLUMN side TEXT;
ALTER TABLE fill ADD COLUMN currency TEXT;
)";

constexpr std::string_view indices = R"(
CREATE INDEX fill_of_request ON fill (request) WHERE request IS NOT NULL;
)";

constexpr std::string_view derived = R"(
CREATE TABLE open_request (
  request INTEGER PRIMARY KEY, account INTEGER NOT NULL, state TEXT NOT NULL, order_no INTEGER) STRICT;
CREATE INDEX open_request_of_order ON open_request (order_no) WHERE order_no IS NOT NULL;
CREATE TABLE ticket_sum (
  ticket INTEGER NOT NULL, state TEXT NOT NULL, reason TEXT NOT NULL, code INTEGER NOT NULL,
  requests INTEGER NOT NULL, PRIMARY KEY (ticket, state, reason, code)) STRICT, WITHOUT ROWID;
CREATE TABLE ticket_fill (
  ticket INTEGER PRIMARY KEY, fills INTEGER NOT NULL, lots REAL NOT NULL, value REAL NOT NULL,
  least REAL NOT NULL, most REAL NOT NULL, price_digits INTEGER NOT NULL) STRICT;
)";
constexpr std::string_view derived_names[] = {"open_request", "ticket_sum", "ticket_fill"};

constexpr std::string_view filling = R"(
INSERT INTO open_request
  SELECT r.id, r.account, coalesce(e.state, 'STORED'),
         (SELECT order_no FROM event o WHERE o.request = r.id AND order_no IS NOT NULL ORDER BY seq DESC LIMIT 1)
  FROM request r
  LEFT JOIN (SELECT request, state, max(seq) FROM event GROUP BY request) e ON e.request = r.id
  WHERE coalesce(e.state, 'STORED') IN ('STORED', 'TAKEN', 'PENDING', 'WORKING', 'PART', 'UNKNOWN', 'GONE');
INSERT INTO ticket_sum
  SELECT r.ticket, coalesce(e.state, 'STORED'), coalesce(e.reason, ''), coalesce(e.code, 0), count(*)
  FROM request r
  LEFT JOIN (SELECT request, state, reason, code, max(seq) FROM event GROUP BY request) e ON e.request = r.id
  GROUP BY 1, 2, 3, 4;
INSERT INTO ticket_fill
  SELECT ticket, count(*), sum(lots), sum(lots * price), min(price), max(price), max(price_digits)
  FROM (SELECT r.ticket, f.lots / pow(10.0, f.lots_digits) AS lots, f.price / pow(10.0, f.price_digits) AS price,
               f.price_digits
        FROM fill f JOIN request r ON r.id = f.request WHERE f.price IS NOT NULL ORDER BY f.seq)
  GROUP BY ticket;
)";

std::string keep(std::string_view table, std::string_view change) {
  return fmt::format(
      "CREATE TRIGGER {0}_no_{1} BEFORE {1} ON {0} BEGIN SELECT RAISE(ABORT, 'the ledger only grows'); "
      "END;\n",
      table, change);
}

// Made from the tables, so that none of them is forgotten.
std::string with_triggers() {
  std::string out{creation};
  std::vector<std::string_view> names{"commit_log", "ledger"};
  for (const Table& table : tables)
    names.push_back(table.name);
  for (const std::string_view name : names)
    out += keep(name, "UPDATE") + keep(name, "DELETE");
  return out;
}

}  // namespace

std::span<const Table> chained() {
  return tables;
}

const Table& table(Chained which) {
  return tables[static_cast<std::size_t>(which)];
}

std::string_view Table::columns_in(std::int64_t of_version) const {
  std::size_t end = 0;
  for (int left = count_in(of_version); left > 0 && end != std::string_view::npos; --left)
    end = columns.find(", ", end == 0 ? 0 : end + 1);
  return columns.substr(0, end);
}

std::string_view create() {
  static const std::string text = with_triggers() + std::string{indices};
  return text;
}

std::string migrate() {
  // What is kept besides is made anew, in the shape that it has now.
  std::string out = fmt::format("{}{}DROP TRIGGER ledger_no_UPDATE; UPDATE ledger SET schema = {};\n{}",
                                addition, indices, version, keep("ledger", "UPDATE"));
  for (const std::string_view name : derived_names)
    out += fmt::format("DROP TABLE IF EXISTS {};\n", name);
  return out;
}

std::string_view create_derived() {
  return derived;
}

std::span<const std::string_view> derived_tables() {
  return derived_names;
}

std::string_view fill_derived() {
  return filling;
}

}  // namespace tutti::ledger_schema
