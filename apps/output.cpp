#include "apps/output.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tutti {

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
