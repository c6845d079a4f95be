#include <fmt/format.h>

#include <array>
#include <nlohmann/json.hpp>

#include "apps/commands.h"
#include "apps/output.h"

namespace tutti {
namespace {

constexpr std::array<std::pair<const char*, frmMain::Column>, 7> values = {{
    {"balance", frmMain::balance},
    {"floating", frmMain::floating},
    {"credit", frmMain::credit},
    {"equity", frmMain::equity},
    {"used_margin", frmMain::used_margin},
    {"margin_level", frmMain::margin_level},
    {"free_margin", frmMain::free_margin},
}};

nlohmann::json account_json(const Row& row) {
  nlohmann::json out = {{"account", static_cast<std::int32_t>(row.cell(frmMain::account).stored_number())},
                        {"user", row.text(frmMain::user_name)},
                        {"state", row.text(frmMain::state)},
                        {"notes", row.text(frmMain::notes)}};
  // An account that is not connected has no values, which is not the same as values of 0.
  for (const auto& [name, column] : values) {
    const Cell& cell = row.cell(column);
    out[name] = cell.empty() ? nlohmann::json{} : nlohmann::json(cell.stored_number());
  }
  return out;
}

}  // namespace

int accounts_command(Terminal& terminal) {
  terminal.log_in();
  Main& main = terminal.main();
  const RowList& list = main.accounts().lvwClients;
  if (terminal.options().json) {
    nlohmann::json accounts = nlohmann::json::array();
    for (const Row& row : list)
      accounts.push_back(account_json(row));
    fmt::print("{}\n", nlohmann::json{{"accounts", accounts}, {"totals", totals_json(main)}}.dump(2));
  } else {
    std::vector<TextTable::Head> heads;
    for (std::size_t column = 0; column < list.columns().size(); ++column) {
      heads.push_back(
          {list.columns()[column].header, column == frmMain::account || column >= frmMain::balance});
    }
    TextTable table{heads};
    for (const Row& row : list) {
      std::vector<std::string> cells;
      for (std::size_t column = 0; column < row.columns(); ++column)
        cells.push_back(row.text(column));
      table.add(std::move(cells));
    }
    fmt::print("{}{}\n", table.text(), main.window().totals_pane());
  }
  for (const Row& row : list) {
    if (!row.reads(frmMain::state, "Connected")) return exit_status::some_refused;
  }
  return exit_status::all_accepted;
}

}  // namespace tutti
