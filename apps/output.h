#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

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
struct NamedColumn {
  std::string name;
  std::size_t column = 0;
  bool words = false;  // holds texts, not numbers
};
using NamedColumns = std::vector<NamedColumn>;

// The rows as objects: numbers as numbers; an empty cell of a column of numbers is null.
nlohmann::json rows_json(const RowList& list, const NamedColumns& columns);
std::string rows_csv(const RowList& list, const NamedColumns& columns);
// Either of them, the objects as a member `name` of one document, or `text`, as the operator asked.
std::string rows_report(OutputForm form, const std::string& name, const RowList& list,
                        const NamedColumns& columns, const std::string& text);
// The document, with a line end. Bytes that are no UTF-8 become the replacement character.
std::string json_text(const nlohmann::json& document);
// All columns under the list's own headers.
std::string rows_text(const RowList& list);

// The seven totals as numbers, and the line that shows them.
nlohmann::json totals_json(Main& main);
// Rows of the journal's list, oldest first; `account` stands where a row names none.
nlohmann::json journal_json(Main& main, std::int32_t account);
std::string journal_text(Main& main);

}  // namespace tutti
