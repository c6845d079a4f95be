#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "apps/records.h"
#include "core/row_list.h"
#include "shell/Main.h"

namespace tutti {

// How a command prints what it found.
enum class OutputForm { text, json, csv };

// A table for people: columns as wide as their widest cell, numbers to the right.
class TextTable {
 public:
  struct Head {
    std::string title;
    bool number = false;
  };

  explicit TextTable(std::vector<Head> heads) : heads_(std::move(heads)) {}
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  std::string text() const;

 private:
  std::vector<Head> heads_;
  std::vector<std::vector<std::string>> rows_;
};

// Columns of a list by the names machines know them by.
enum class Holds { numbers, money, words };
struct NamedColumn {
  std::string name;
  std::size_t column = 0;
  Holds holds = Holds::numbers;
};
using NamedColumns = std::vector<NamedColumn>;

// The value of a cell: a number with the digits that the operator reads, money to cents, its "%" left away; a
// text trimmed; null where a column of numbers is empty.
Json cell_value(const Cell& cell, Holds holds);
// Money for machines, to cents.
Json json_money(double value);
Records rows_records(const RowList& list, const NamedColumns& columns);
// All columns of these rows, or of all, under the list's own headers.
std::string rows_text(const RowList& list, const std::vector<const Row*>& rows);
std::string rows_text(const RowList& list);

// A report in the form that was asked for: as JSON the records as a member `name` of one document with the
// members of `more` behind it, as CSV the records alone.
std::string report_text(OutputForm form, const std::string& name, const Records& records, const Json& more,
                        const std::function<std::string()>& text);

// The seven totals, and the line that shows them.
Json totals_json(Main& main);
// Rows of the journal's list, oldest first.
Json journal_json(Main& main, const Clock& clock);
std::string journal_text(Main& main);

}  // namespace tutti
