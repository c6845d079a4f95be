#include <algorithm>

#include "apps/commands.h"
#include "apps/output.h"

namespace tutti {

int accounts_command(CommandContext& context) {
  Main& main = context.main();
  const RowList& list = main.accounts().lvwClients;
  Records records = rows_records(list, {{"account", frmMain::account},
                                        {"user", frmMain::user_name, Holds::words},
                                        {"state", frmMain::state, Holds::words},
                                        {"notes", frmMain::notes, Holds::words},
                                        {"balance", frmMain::balance, Holds::money},
                                        {"floating", frmMain::floating, Holds::money},
                                        {"credit", frmMain::credit, Holds::money},
                                        {"equity", frmMain::equity, Holds::money},
                                        {"used_margin", frmMain::used_margin, Holds::money},
                                        {"margin_level", frmMain::margin_level},
                                        {"free_margin", frmMain::free_margin, Holds::money}});
  records.sort_by("account");
  context.print("accounts", records, {{"totals", totals_json(main)}},
                [&] { return rows_text(list) + main.window().totals_pane() + "\n"; });
  const bool all = std::all_of(list.begin(), list.end(),
                               [](const Row& row) { return row.reads(frmMain::state, "Connected"); });
  return all && !main.general().lines_skipped() ? exit_status::all_accepted : exit_status::some_refused;
}

}  // namespace tutti
