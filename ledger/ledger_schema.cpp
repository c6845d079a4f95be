#include "ledger/ledger_schema.h"

#include <fmt/format.h>

#include <cstddef>
#include <vector>

namespace tutti::ledger_schema {
namespace {

constexpr std::string_view number = "INTEGER";
constexpr std::string_view text = "TEXT";
constexpr std::string_view bytes = "BLOB";

constexpr Column account_columns[] = {{"seq", number, "PRIMARY KEY"},
                                      {"n", number, "NOT NULL UNIQUE"},
                                      {"server", text, "NOT NULL"},
                                      {"user", text, "NOT NULL"},
                                      {"account_text", text, "NOT NULL"}};
constexpr Column ticket_columns[] = {{"seq", number, "PRIMARY KEY"},
                                     {"n", number, "NOT NULL UNIQUE"},
                                     {"key_text", text, "UNIQUE"},
                                     {"plan_digest", bytes},
                                     {"kind", text, "NOT NULL"},
                                     {"symbol", text},
                                     {"side", text},
                                     {"total", number},
                                     {"total_digits", number},
                                     {"rule", text},
                                     {"price_at_click", number},
                                     {"price_digits", number},
                                     {"quote_age", number},
                                     {"by", text},
                                     {"origin", text, "NOT NULL"},
                                     {"retry_of", number, "REFERENCES ticket (n)"},
                                     {"override_reason", text},
                                     {"planned_count", number, "NOT NULL"},
                                     {"t", number, "NOT NULL"}};
constexpr Column request_columns[] = {{"seq", number, "NOT NULL UNIQUE"},
                                      {"id", number, "PRIMARY KEY"},
                                      {"ticket", number, "NOT NULL REFERENCES ticket (n)"},
                                      {"account", number, "NOT NULL REFERENCES account (n)"},
                                      {"kind", text, "NOT NULL"},
                                      {"symbol", text},
                                      {"side", text},
                                      {"lots", number},
                                      {"lots_digits", number},
                                      {"price", number},
                                      {"stop_loss", number},
                                      {"take_profit", number},
                                      {"price_digits", number},
                                      {"reference", number},
                                      {"orig_request", number},
                                      {"wire_id", text},
                                      {"era", number},
                                      {"retry_of", number, "UNIQUE REFERENCES request (id)"},
                                      {"net_before", number},
                                      {"greatest_before", number}};
constexpr Column event_columns[] = {
    {"seq", number, "PRIMARY KEY"}, {"request", number, "NOT NULL REFERENCES request (id)"},
    {"state", text, "NOT NULL"},    {"reason", text},
    {"evidence", text, "NOT NULL"}, {"code", number},
    {"order_no", number},           {"note", text},
    {"t_server", number},           {"t_here", number, "NOT NULL"}};
constexpr Column fill_columns[] = {{"seq", number, "PRIMARY KEY"},
                                   {"request", number, "REFERENCES request (id)"},
                                   {"account", number, "NOT NULL REFERENCES account (n)"},
                                   {"exec_id", text},
                                   {"open_or_close", text, "NOT NULL"},
                                   {"order_no", number},
                                   {"position", number},
                                   {"lots", number},
                                   {"lots_digits", number},
                                   {"price", number},
                                   {"price_digits", number},
                                   {"commission", number},
                                   {"profit", number},
                                   {"day", text, "NOT NULL"},
                                   {"t_server", number},
                                   {"t_here", number, "NOT NULL"},
                                   {"symbol", text},
                                   {"side", text},
                                   {"currency", text}};

constexpr Table tables[] = {{"account", account_columns, 4, "server, user, account_text"},
                            {"ticket", ticket_columns, 18},
                            {"request", request_columns, 19, "account, wire_id"},
                            {"event", event_columns, 9},
                            {"fill", fill_columns, 15, "account, day, exec_id"}};

constexpr Column commit_columns[] = {{"n", number, "PRIMARY KEY"},     {"first_seq", number, "NOT NULL"},
                                     {"last_seq", number, "NOT NULL"}, {"format", number, "NOT NULL"},
                                     {"t", number, "NOT NULL"},        {"hash", bytes, "NOT NULL"}};
constexpr Column ledger_columns[] = {{"id", bytes, "NOT NULL"},
                                     {"parent", bytes},
                                     {"forked_at", number},
                                     {"schema", number, "NOT NULL"},
                                     {"created", number, "NOT NULL"}};
constexpr Table unchained[] = {{"commit_log", commit_columns}, {"ledger", ledger_columns}};

constexpr std::string_view runs = R"(
CREATE TABLE run (n INTEGER PRIMARY KEY, boot TEXT NOT NULL, started INTEGER NOT NULL) STRICT;
)";

constexpr std::string_view indices = R"(
CREATE INDEX request_of_ticket ON request (ticket);
CREATE INDEX event_of_request ON event (request);
)";

constexpr std::string_view later_indices = R"(
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
CREATE TABLE account_sum (account INTEGER PRIMARY KEY, requests INTEGER NOT NULL) STRICT;
)";
constexpr std::string_view missing = R"(
CREATE TABLE IF NOT EXISTS missing_accepted (account INTEGER PRIMARY KEY, requests INTEGER NOT NULL) STRICT;
)";
constexpr std::string_view derived_names[] = {"open_request", "ticket_sum", "ticket_fill", "account_sum"};

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
INSERT INTO account_sum
  SELECT r.account, count(*)
  FROM request r
  JOIN (SELECT request, state, max(seq) FROM event GROUP BY request) e ON e.request = r.id
  WHERE e.state NOT IN ('STORED', 'REFUSED_HERE', 'DROPPED', 'NEVER') AND r.kind NOT LIKE 'requote%'
  GROUP BY 1;
)";

std::string keep(std::string_view table, std::string_view change) {
  return fmt::format(
      "CREATE TRIGGER {0}_no_{1} BEFORE {1} ON {0} BEGIN SELECT RAISE(ABORT, 'the ledger only grows'); "
      "END;\n",
      table, change);
}

std::string definition(const Column& column) {
  return fmt::format("{} {}{}{}", quoted(column.name), column.type, column.rule.empty() ? "" : " ",
                     column.rule);
}

std::string creation(const Table& table) {
  std::string columns;
  for (const Column& column : table.columns)
    columns += (columns.empty() ? "" : ", ") + definition(column);
  if (!table.unique.empty()) columns += fmt::format(", UNIQUE ({})", table.unique);
  return fmt::format("CREATE TABLE {} ({}) STRICT;\n", table.name, columns);
}

// With the triggers, so that none of the tables is forgotten.
std::string whole_creation() {
  std::string out{runs};
  for (const auto& group : {std::span<const Table>{tables}, std::span<const Table>{unchained}})
    for (const Table& table : group)
      out += creation(table) + keep(table.name, "UPDATE") + keep(table.name, "DELETE");
  return out.append(indices).append(later_indices);
}

}  // namespace

std::span<const Table> chained() {
  return tables;
}

const Table& table(Chained which) {
  return tables[static_cast<std::size_t>(which)];
}

const Table& commits() {
  return unchained[0];
}

const Table& ledgers() {
  return unchained[1];
}

std::string quoted(std::string_view name) {
  return fmt::format("\"{}\"", name);
}

std::string Table::names(std::size_t from, std::size_t to) const {
  std::string out;
  for (const Column& column : columns.subspan(from, to - from))
    out += (out.empty() ? "" : ", ") + quoted(column.name);
  return out;
}

std::string_view create() {
  static const std::string text_of_all = whole_creation();
  return text_of_all;
}

std::string migrate() {
  std::string out;
  for (const Table& table : tables)
    for (const Column& column : table.columns.subspan(table.first_count + 1))
      out += fmt::format("ALTER TABLE {} ADD COLUMN {};\n", table.name, definition(column));
  // What is kept besides is made anew, in the shape that it has now.
  out += fmt::format("{}DROP TRIGGER ledger_no_UPDATE; UPDATE ledger SET schema = {};\n{}", later_indices,
                     version, keep("ledger", "UPDATE"));
  for (const std::string_view name : derived_names)
    out += fmt::format("DROP TABLE IF EXISTS {};\n", name);
  return out;
}

std::string_view create_missing() {
  return missing;
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
