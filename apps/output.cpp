#include "apps/output.h"

#include <fmt/format.h>

#include <algorithm>

#include "apps/times.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

bool holds_numbers(const RowList& list, std::size_t column) {
  return std::any_of(list.begin(), list.end(), [&](const Row& row) { return row.cell(column).is_number(); });
}

}  // namespace

std::string TextTable::text() const {
  std::vector<std::size_t> widths;
  for (const Head& head : heads_)
    widths.push_back(head.title.size());
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], row[i].size());
  }
  std::string out;
  const auto line = [&](const auto& cell_of) {
    std::string text;
    for (std::size_t i = 0; i < heads_.size(); ++i) {
      if (i > 0) text += "  ";
      text += heads_[i].number ? fmt::format("{:>{}}", cell_of(i), widths[i])
                               : fmt::format("{:<{}}", cell_of(i), widths[i]);
    }
    out += text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
  };
  line([&](std::size_t i) { return heads_[i].title; });
  for (const auto& row : rows_)
    line([&](std::size_t i) { return row[i]; });
  return out;
}

Json json_money(double value) {
  return json_number(round_half_even(value, 2));
}

Json cell_value(const Cell& cell, Holds holds) {
  if (const auto whole = cell.whole()) return *whole;
  if (cell.is_number()) return holds == Holds::money ? json_money(cell.number()) : json_number(cell.number());
  if (cell.empty() && holds != Holds::words) return {};
  return std::string{trim(cell.text())};
}

Records rows_records(const RowList& list, const NamedColumns& columns) {
  std::vector<std::string> fields;
  for (const NamedColumn& column : columns)
    fields.push_back(column.name);
  Records out{std::move(fields)};
  for (const Row& row : list) {
    std::vector<Json> values;
    for (const NamedColumn& column : columns)
      values.push_back(cell_value(row.cell(column.column), column.holds));
    out.add(std::move(values));
  }
  return out;
}

std::string report_text(OutputForm form, const std::string& name, const Records& records, const Json& more,
                        const std::function<std::string()>& text) {
  switch (form) {
    case OutputForm::json: {
      Json document{{name, records.json()}};
      document.update(more);
      return json_text(document);
    }
    case OutputForm::csv:
      return records.csv();
    case OutputForm::text:
      break;
  }
  return text();
}

std::string rows_text(const RowList& list, const std::vector<const Row*>& rows) {
  std::vector<TextTable::Head> heads;
  for (std::size_t column = 0; column < list.columns().size(); ++column) {
    heads.push_back({list.columns()[column].header, holds_numbers(list, column)});
  }
  TextTable table{std::move(heads)};
  for (const Row* row : rows) {
    std::vector<std::string> cells;
    for (std::size_t column = 0; column < row->columns(); ++column)
      cells.push_back(row->text(column));
    table.add(std::move(cells));
  }
  return table.text();
}

std::string rows_text(const RowList& list) {
  std::vector<const Row*> rows;
  for (const Row& row : list)
    rows.push_back(&row);
  return rows_text(list, rows);
}

Json totals_json(Main& main) {
  const AccountTotals& totals = main.account_book().totals;
  return {{"balance", json_money(totals.balance)},
          {"floating", json_money(totals.floating_pl)},
          {"credit", json_money(totals.credit)},
          {"equity", json_money(totals.equity)},
          {"used_margin", json_money(totals.shown_used_margin())},
          {"margin_level", json_money(totals.shown_margin_level())},
          {"free_margin", json_money(totals.free_margin)},
          {"line", main.window().totals_pane()}};
}

Json journal_json(Main& main, const Clock& clock) {
  Records out{{"time", "account", "message"}};
  LocalTimes times{clock};
  for (const frmJournal::Entry& entry : main.journal_window().shown_entries())
    out.add({times.text(entry.time), entry.account, entry.message});
  return out.json();
}

std::string journal_text(Main& main) {
  TextTable table{{{"Time"}, {"Account", true}, {"Message"}}};
  for (const frmJournal::Entry& entry : main.journal_window().shown_entries())
    table.add({entry.time, entry.account == no_account ? "" : std::to_string(entry.account), entry.message});
  return table.text();
}

}  // namespace tutti
