#include "apps/output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace tutti {
namespace {

bool holds_numbers(const RowList& list, std::size_t column) {
  return std::any_of(list.begin(), list.end(), [&](const Row& row) { return row.cell(column).is_number(); });
}

// Quoted where a reader would otherwise split it.
std::string csv_field(const std::string& text) {
  if (text.find_first_of(",\"\n") == std::string::npos) return text;
  std::string out = "\"";
  for (const char c : text)
    out += c == '"' ? std::string{"\"\""} : std::string(1, c);
  return out + "\"";
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

nlohmann::json rows_json(const RowList& list, const NamedColumns& columns) {
  nlohmann::json out = nlohmann::json::array();
  for (const Row& row : list) {
    nlohmann::json object = nlohmann::json::object();
    for (const NamedColumn& column : columns) {
      const Cell& cell = row.cell(column.column);
      const double value = cell.stored_number();
      nlohmann::json& field = object[column.name];
      constexpr double largest_exact = 9007199254740992.0;  // beyond it doubles skip whole numbers
      if (const auto whole = cell.whole()) {
        field = *whole;
      } else if (cell.is_number() && std::fabs(value) <= largest_exact && value == std::trunc(value)) {
        field = static_cast<std::int64_t>(value);
      } else if (cell.is_number()) {
        field = value;
      } else if (!cell.empty() || column.words) {
        field = cell.text();
      }
    }
    out.push_back(std::move(object));
  }
  return out;
}

std::string rows_csv(const RowList& list, const NamedColumns& columns) {
  std::string out;
  for (const NamedColumn& column : columns)
    out += (out.empty() ? "" : ",") + column.name;
  out += "\n";
  for (const Row& row : list) {
    std::string line;
    for (const NamedColumn& column : columns) {
      if (&column != &columns.front()) line += ",";
      line += csv_field(row.text(column.column));
    }
    out += line + "\n";
  }
  return out;
}

std::string json_text(const nlohmann::json& document) {
  return document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string rows_report(OutputForm form, const std::string& name, const RowList& list,
                        const NamedColumns& columns, const std::string& text) {
  switch (form) {
    case OutputForm::json:
      return json_text(nlohmann::json{{name, rows_json(list, columns)}});
    case OutputForm::csv:
      return rows_csv(list, columns);
    case OutputForm::text:
      break;
  }
  return text;
}

std::string rows_text(const RowList& list) {
  std::vector<TextTable::Head> heads;
  for (std::size_t column = 0; column < list.columns().size(); ++column) {
    heads.push_back({list.columns()[column].header, holds_numbers(list, column)});
  }
  TextTable table{std::move(heads)};
  for (const Row& row : list) {
    std::vector<std::string> cells;
    for (std::size_t column = 0; column < row.columns(); ++column)
      cells.push_back(row.text(column));
    table.add(std::move(cells));
  }
  return table.text();
}

nlohmann::json totals_json(Main& main) {
  const Totals& totals = main.general().totals;
  return {{"balance", totals.balance},         {"floating", totals.floating_pl},
          {"credit", totals.credit},           {"equity", totals.equity},
          {"used_margin", totals.used_margin}, {"margin_level", totals.margin_level},
          {"free_margin", totals.free_margin}, {"line", main.window().totals_pane()}};
}

nlohmann::json journal_json(Main& main, std::int32_t account) {
  nlohmann::json out = nlohmann::json::array();
  const RowList& list = main.journal_window().lvwJournal;
  for (std::size_t i = list.size(); i-- > 0;) {
    const Row& row = list.row(i);
    const Cell& number = row.cell(1);
    out.push_back({{"time", row.text(0)},
                   {"account", number.empty() ? account : static_cast<std::int32_t>(number.stored_number())},
                   {"message", row.text(2)}});
  }
  return out;
}

std::string journal_text(Main& main) {
  TextTable table{{{"Time"}, {"Account", true}, {"Message"}}};
  const RowList& list = main.journal_window().lvwJournal;
  for (std::size_t i = list.size(); i-- > 0;) {
    const Row& row = list.row(i);
    table.add({row.text(0), row.text(1), row.text(2)});
  }
  return table.text();
}

}  // namespace tutti
