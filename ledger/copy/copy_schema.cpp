#include "ledger/copy/copy_schema.h"

#include <fmt/format.h>

#include <string_view>

#include "core/texts.h"

namespace tutti::copy_schema {
namespace {

using ledger_schema::Column;
using ledger_schema::quoted;
using ledger_schema::Table;

std::string_view type_of(const Column& column) {
  return column.type == "INTEGER" ? "bigint" : column.type == "BLOB" ? "bytea" : "text";
}

std::string all_names(const Table& table) {
  return table.names(0, table.columns.size());
}

// What a row of the ledger refers to may lie under its id's parent: these are indices, where the ledger has
// foreign keys.
std::string creation(const Table& table) {
  const bool is_ledger = &table == &ledger_schema::ledgers();
  const std::string before = is_ledger ? "" : "ledger, ";
  std::string columns = is_ledger ? "" : "ledger bytea NOT NULL, ";
  std::string keys;
  std::string indices;
  for (const Column& column : table.columns) {
    const auto rules = [&](std::string_view rule) {
      return column.rule.find(rule) != std::string_view::npos;
    };
    const std::string name = quoted(column.name);
    const bool key = column.name == table.columns.front().name;
    columns += fmt::format("{} {}{}, ", name, type_of(column), rules("NOT NULL") ? " NOT NULL" : "");
    if (key) {
      keys += fmt::format("PRIMARY KEY ({}{})", before, name);
    } else if (rules("UNIQUE") || rules("PRIMARY KEY")) {
      keys += fmt::format(", UNIQUE ({}{})", before, name);
    } else if (rules("REFERENCES")) {
      indices += fmt::format("CREATE INDEX IF NOT EXISTS {0}_{1} ON tutti.{0} (ledger, {2});\n", table.name,
                             column.name, name);
    }
  }
  if (!table.unique.empty()) {
    keys += ", UNIQUE (ledger";
    for (const std::string_view name : split(table.unique, ", "))
      keys += ", " + quoted(name);
    keys += ")";
  }
  return fmt::format("CREATE TABLE IF NOT EXISTS tutti.{} ({}{});\n{}", table.name, columns, keys, indices);
}

constexpr std::string_view head = R"(
SELECT pg_advisory_xact_lock(hashtext('tutti'));
CREATE SCHEMA IF NOT EXISTS tutti;
CREATE TABLE IF NOT EXISTS tutti.version (version integer NOT NULL);
)";

// `lineage`: whose rows, up to which seq, are rows of a ledger, too. What a row refers to is found by it.
constexpr std::string_view views = R"(
CREATE OR REPLACE FUNCTION tutti.decimal_of(bigint, bigint) RETURNS numeric LANGUAGE sql IMMUTABLE AS
  $$ SELECT trim_scale($1 * ('1e-' || $2)::numeric) $$;
CREATE OR REPLACE FUNCTION tutti.time_of(bigint) RETURNS timestamptz LANGUAGE sql IMMUTABLE AS
  $$ SELECT to_timestamp($1 / 1000.0) $$;
CREATE OR REPLACE VIEW tutti.lineage AS
  WITH RECURSIVE up (ledger, ancestor, last_seq) AS (
    SELECT id, id, 9223372036854775807 FROM tutti.ledger
    UNION ALL
    SELECT up.ledger, l.parent, least(up.last_seq, l.forked_at)
    FROM up JOIN tutti.ledger l ON l.id = up.ancestor WHERE l.parent IS NOT NULL)
  SELECT * FROM up;
CREATE OR REPLACE VIEW tutti.fills AS
  SELECT f.ledger, f.seq, tutti.time_of(coalesce(f.t_server, f.t_here)) AS time, f.day::date AS day,
         a.server, a."user", a.account_text AS account, r.ticket_ledger, r.ticket, f.request, f.open_or_close,
         coalesce(f.symbol, r.symbol) AS symbol, coalesce(f.side, r.side) AS side,
         tutti.decimal_of(f.lots, f.lots_digits) AS lots, tutti.decimal_of(f.price, f.price_digits) AS price,
         tutti.decimal_of(f.commission, 6) AS commission, tutti.decimal_of(f.profit, 6) AS profit, f.currency, f.order_no,
         f."position", f.exec_id
  FROM tutti.fill f
  JOIN tutti.lineage o ON o.ledger = f.ledger
  JOIN tutti.account a ON a.ledger = o.ancestor AND a.n = f.account AND a.seq <= o.last_seq
  LEFT JOIN (SELECT o.ledger, r.id, t.ledger AS ticket_ledger, r.ticket, r.symbol, r.side
             FROM tutti.lineage o
             JOIN tutti.request r ON r.ledger = o.ancestor AND r.seq <= o.last_seq
             JOIN tutti.lineage u ON u.ledger = o.ledger
             JOIN tutti.ticket t ON t.ledger = u.ancestor AND t.n = r.ticket AND t.seq <= u.last_seq) r
    ON r.ledger = f.ledger AND r.id = f.request;
CREATE OR REPLACE VIEW tutti.tickets AS
  SELECT t.ledger, t.n AS ticket, tutti.time_of(t.t) AS time, t.kind, t.symbol, t.side,
         tutti.decimal_of(t.total, t.total_digits) AS lots,
         tutti.decimal_of(t.price_at_click, t.price_digits) AS price_at_click, t.planned_count AS requests,
         coalesce(f.fills, 0) AS fills, coalesce(f.lots, 0) AS filled, f.price, t."by", t.origin, t.retry_of,
         t.override_reason
  FROM tutti.ticket t
  LEFT JOIN (SELECT ticket_ledger, ticket, count(*) AS fills, sum(lots) AS lots,
                    sum(lots * price) / nullif(sum(lots) FILTER (WHERE price IS NOT NULL), 0) AS price
             FROM tutti.fills WHERE ticket IS NOT NULL GROUP BY 1, 2) f
    ON f.ticket_ledger = t.ledger AND f.ticket = t.n;
CREATE OR REPLACE VIEW tutti.open_unknowns AS
  SELECT e.ledger, e.id AS request, a.server, a."user", a.account_text AS account, e.kind, e.symbol, e.side,
         tutti.decimal_of(e.lots, e.lots_digits) AS lots, tutti.decimal_of(e.price, e.price_digits) AS price,
         e.state, e.reason AS why, tutti.time_of(e.t_here) AS since
  FROM (SELECT DISTINCT ON (r.ledger, r.id) r.*, e.state, e.reason, e.t_here
        FROM (SELECT DISTINCT ON (ledger, request) * FROM tutti.event ORDER BY ledger, request, seq DESC) e
        JOIN tutti.lineage o ON o.ledger = e.ledger
        JOIN tutti.request r ON r.ledger = o.ancestor AND r.id = e.request AND r.seq <= o.last_seq
        ORDER BY r.ledger, r.id, e.t_here DESC, e.seq DESC) e
  JOIN tutti.lineage o ON o.ledger = e.ledger
  JOIN tutti.account a ON a.ledger = o.ancestor AND a.n = e.account AND a.seq <= o.last_seq
  WHERE e.state IN ('UNKNOWN', 'GONE');
)";

}  // namespace

std::string create() {
  std::string out{head};
  for (const Table& table : ledger_schema::chained())
    out += creation(table);
  for (const Table* table : {&ledger_schema::commits(), &ledger_schema::ledgers()})
    out += creation(*table);
  out += views;
  return out +
         fmt::format("INSERT INTO tutti.version SELECT {} WHERE NOT EXISTS (SELECT FROM tutti.version);",
                     version);
}

std::string insert(const Table& table) {
  std::string arrays;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    arrays += fmt::format("{}${}::{}[]", i == 0 ? "" : ", ", i + 2, type_of(table.columns[i]));
  return fmt::format(
      "INSERT INTO tutti.{0} (ledger, {1}) SELECT $1::bytea, * FROM unnest({2}) ON CONFLICT (ledger, {3}) DO "
      "NOTHING",
      table.name, all_names(table), arrays, quoted(table.columns.front().name));
}

std::string insert_ledger() {
  const Table& table = ledger_schema::ledgers();
  std::string values;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const std::string value = fmt::format("${}::{}", i + 1, type_of(table.columns[i]));
    values += i == 0 ? "" : ", ";
    values += table.columns[i].type == "BLOB" ? fmt::format("nullif({}, '')", value) : value;
  }
  return fmt::format("INSERT INTO tutti.ledger ({}) VALUES ({}) ON CONFLICT DO NOTHING", all_names(table),
                     values);
}

}  // namespace tutti::copy_schema
