#include <algorithm>

#include "accounts/account_texts.h"
#include "apps/commands.h"
#include "apps/output.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

std::vector<Json> values(const AccountEntry& account) {
  const AccountEntry::Shown& shown = account.shown;
  const auto value = [&shown](double number) {
    return shown.has_values ? json_number(read_number(summary_text(number))) : Json{};
  };
  return {account.account,
          std::string{trim(upper(account.user))},
          std::string{state_text(shown.state)},
          std::string{trim(shown.note)},
          value(shown.values.balance),
          value(shown.values.floating_pl),
          value(shown.values.credit),
          value(shown.values.equity),
          value(shown.values.used_margin),
          value(shown.values.margin_level),
          value(shown.values.free_margin)};
}

}  // namespace

int accounts_command(CommandContext& context) {
  Main& main = context.main();
  const auto& accounts = main.account_book().listed();
  Records records{{"account", "user", "state", "notes", "balance", "floating", "credit", "equity",
                   "used_margin", "margin_level", "free_margin"}};
  for (const AccountEntry* account : accounts)
    records.add(values(*account));
  records.sort_by("account");
  context.print("accounts", records, {{"totals", totals_json(main)}},
                [&] { return rows_text(main.accounts().lvwClients) + main.window().totals_pane() + "\n"; });
  const bool all = std::all_of(accounts.begin(), accounts.end(),
                               [](const AccountEntry* account) { return account->connected(); });
  return all && !main.general().lines_skipped() ? exit_status::all_accepted : exit_status::some_refused;
}

}  // namespace tutti
