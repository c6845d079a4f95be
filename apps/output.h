#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "shell/Main.h"

namespace tutti {

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

// The seven totals as numbers, and the line that shows them.
nlohmann::json totals_json(Main& main);
// Rows of the journal's list, oldest first; `account` stands where a row names none.
nlohmann::json journal_json(Main& main, std::int32_t account);
std::string journal_text(Main& main);

}  // namespace tutti
