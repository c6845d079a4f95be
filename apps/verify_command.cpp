#include <fmt/format.h>

#include "apps/commands.h"
#include "apps/journal_comparison.h"
#include "apps/ledger_comparison.h"
#include "apps/verification.h"
#include "sessions/session_requests.h"

namespace tutti {

int verify_command(CommandContext& context) {
  Main& main = context.main();
  std::vector<std::string> differences = Verification{main, context.server()}.run();
  const auto add = [&](const std::vector<std::string>& found) {
    differences.insert(differences.end(), found.begin(), found.end());
  };
  LedgerComparison::Accounts accounts;
  for (const AccountEntry* each : main.account_book().listed())
    if (each->connected()) accounts.emplace(each->account, SessionRequests::identity(*each));
  LedgerComparison ledger{context.server(), accounts};
  // A history is that of all accounts which have its number.
  JournalComparison journal{main.journal(), context.clock(),
                            [&](std::int32_t account) { return accounts.contains(account); }};
  const std::unique_ptr<LedgerFile> file = context.open_ledger();
  if (file == nullptr) return exit_status::unreadable_data;
  try {
    add(ledger.run(request_outcomes(*file), LedgerQueries{*file}.fills({})));
    const auto found = journal.run(*file);
    if (!found) {
      context.console().fail("The journal was not read whole: {}", found.error().text());
      return exit_status::unreadable_data;
    }
    add(*found);
  } catch (const SQLite::Exception& error) {
    context.console().fail("The ledger can't be read: {}", error.what());
    return exit_status::unreadable_data;
  }
  Records records{{"difference"}};
  for (const std::string& difference : differences)
    records.add({difference});
  context.print(
      "differences", records, {{"elsewhere", ledger.elsewhere()}, {"cleared", journal.cleared()}}, [&] {
        std::string out;
        for (const std::string& difference : differences)
          out += difference + "\n";
        if (ledger.elsewhere() > 0)
          out += fmt::format("{} fills of no request from here\n", ledger.elsewhere());
        if (journal.cleared() > 0)
          out += fmt::format("{} outcomes stood in histories that were cleared\n", journal.cleared());
        return out + fmt::format("{} differences\n", differences.size());
      });
  return differences.empty() && !main.general().lines_skipped() ? exit_status::all_accepted
                                                                : exit_status::some_refused;
}

}  // namespace tutti
