#include <fmt/format.h>

#include "apps/commands.h"
#include "apps/ledger_comparison.h"
#include "apps/verification.h"

namespace tutti {

int verify_command(CommandContext& context) {
  Main& main = context.main();
  std::vector<std::string> differences = Verification{main, context.server()}.run();
  LedgerComparison ledger{context.server(),
                          [&](std::int32_t account) { return main.account_book().connected(account); }};
  const std::unique_ptr<LedgerFile> file = context.open_ledger();
  if (file == nullptr) return exit_status::unreadable_data;
  try {
    const auto found = ledger.run(request_outcomes(*file), LedgerQueries{*file}.fills({}));
    differences.insert(differences.end(), found.begin(), found.end());
  } catch (const SQLite::Exception& error) {
    context.console().fail("The ledger can't be read: {}", error.what());
    return exit_status::unreadable_data;
  }
  Records records{{"difference"}};
  for (const std::string& difference : differences)
    records.add({difference});
  context.print("differences", records, {{"elsewhere", ledger.elsewhere()}}, [&] {
    std::string out;
    for (const std::string& difference : differences)
      out += difference + "\n";
    if (ledger.elsewhere() > 0) out += fmt::format("{} fills of no request from here\n", ledger.elsewhere());
    return out + fmt::format("{} differences\n", differences.size());
  });
  return differences.empty() && !main.general().lines_skipped() ? exit_status::all_accepted
                                                                : exit_status::some_refused;
}

}  // namespace tutti
