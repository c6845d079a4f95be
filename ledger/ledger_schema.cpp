#include "ledger/ledger_schema.h"

#include <cstddef>

namespace tutti::ledger_schema {
namespace {

constexpr Table tables[] = {
    {"account", "n, server, user, account_text", 4},
    {"ticket",
     "n, key_text, plan_digest, kind, symbol, side, total, total_digits, rule, price_at_click, price_digits, "
     "quote_age, \"by\", origin, retry_of, override_reason, planned_count, t",
     18},
    {"request",
     "id, ticket, account, kind, symbol, side, lots, lots_digits, price, stop_loss, take_profit, "
     "price_digits, reference, orig_request, wire_id, era, retry_of, net_before, greatest_before",
     19},
    {"event", "request, state, reason, evidence, code, order_no, note, t_server, t_here", 9},
    {"fill",
     "request, account, exec_id, open_or_close, order_no, position, lots, lots_digits, price, price_digits, "
     "commission, profit, day, t_server, t_here",
     15},
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
  UNIQUE (account, day, exec_id)) STRICT;
CREATE TABLE commit_log (
  n INTEGER PRIMARY KEY, first_seq INTEGER NOT NULL, last_seq INTEGER NOT NULL, format INTEGER NOT NULL,
  t INTEGER NOT NULL, hash BLOB NOT NULL) STRICT;
)";

constexpr std::string_view derived = R"(
CREATE TABLE open_request (
  request INTEGER PRIMARY KEY, account INTEGER NOT NULL, state TEXT NOT NULL, order_no INTEGER) STRICT;
CREATE INDEX open_request_of_order ON open_request (order_no) WHERE order_no IS NOT NULL;
CREATE TABLE ticket_sum (
  ticket INTEGER PRIMARY KEY, requests INTEGER NOT NULL, filled INTEGER NOT NULL, refused INTEGER NOT NULL,
  dropped INTEGER NOT NULL, unknown INTEGER NOT NULL) STRICT;
)";

constexpr std::string_view filling = R"(
INSERT INTO open_request
  SELECT r.id, r.account, coalesce(e.state, 'STORED'),
         (SELECT order_no FROM event o WHERE o.request = r.id AND order_no IS NOT NULL ORDER BY seq DESC LIMIT 1)
  FROM request r
  LEFT JOIN (SELECT request, state, max(seq) FROM event GROUP BY request) e ON e.request = r.id
  WHERE coalesce(e.state, 'STORED') IN ('STORED', 'TAKEN', 'PENDING', 'WORKING', 'PART', 'UNKNOWN', 'GONE');
INSERT INTO ticket_sum
  SELECT r.ticket, count(*), coalesce(sum(e.state IN ('FILLED', 'PART_FILLED', 'DONE', 'WORKING')), 0),
         coalesce(sum(e.state IN ('REFUSED', 'REFUSED_HERE', 'NEVER')), 0), coalesce(sum(e.state = 'DROPPED'), 0),
         coalesce(sum(e.state IN ('UNKNOWN', 'GONE')), 0)
  FROM request r
  LEFT JOIN (SELECT request, state, max(seq) FROM event GROUP BY request) e ON e.request = r.id
  GROUP BY r.ticket;
)";

// Made from the tables, so that none of them is forgotten.
std::string with_triggers() {
  std::string out{creation};
  const auto keep = [&out](std::string_view name) {
    for (const std::string_view change : {"UPDATE", "DELETE"}) {
      out.append("CREATE TRIGGER ").append(name).append("_no_").append(change);
      out.append(" BEFORE ").append(change).append(" ON ").append(name);
      out.append(" BEGIN SELECT RAISE(ABORT, 'the ledger only grows'); END;\n");
    }
  };
  for (const Table& table : tables)
    keep(table.name);
  keep("commit_log");
  keep("ledger");
  return out;
}

}  // namespace

std::span<const Table> chained() {
  return tables;
}

const Table& table(Chained which) {
  return tables[static_cast<std::size_t>(which)];
}

std::string_view create() {
  static const std::string text = with_triggers();
  return text;
}

std::string_view create_derived() {
  return derived;
}

std::string_view fill_derived() {
  return filling;
}

}  // namespace tutti::ledger_schema
