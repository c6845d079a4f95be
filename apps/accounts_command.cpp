#include <algorithm>
#include <nlohmann/json.hpp>

#include "apps/commands.h"
#include "apps/output.h"

namespace tutti {

int accounts_command(CommandContext& context) {
  Main& main = context.main();
  const RowList& list = main.accounts().lvwClients;
  const NamedColumns columns = {
      {"account", frmMain::account},         {"user", frmMain::user_name, true},
      {"state", frmMain::state, true},       {"notes", frmMain::notes, true},
      {"balance", frmMain::balance},         {"floating", frmMain::floating},
      {"credit", frmMain::credit},           {"equity", frmMain::equity},
      {"used_margin", frmMain::used_margin}, {"margin_level", frmMain::margin_level},
      {"free_margin", frmMain::free_margin}};
  Console& console = context.console();
  switch (context.form()) {
    case OutputForm::json:
      console.print(
          json_text(nlohmann::json{{"accounts", rows_json(list, columns)}, {"totals", totals_json(main)}}));
      break;
    case OutputForm::csv:
      console.print(rows_csv(list, columns));
      break;
    case OutputForm::text:
      console.print("{}{}\n", rows_text(list), main.window().totals_pane());
      break;
  }
  const bool all = std::all_of(list.begin(), list.end(),
                               [](const Row& row) { return row.reads(frmMain::state, "Connected"); });
  return all && !main.general().lines_skipped() ? exit_status::all_accepted : exit_status::some_refused;
}

}  // namespace tutti
