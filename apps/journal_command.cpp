#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "apps/commands.h"
#include "apps/output.h"

namespace tutti {

int journal_command(Terminal& terminal, std::int32_t account) {
  Main& main = terminal.main();
  main.journal().vID(account);
  if (terminal.options().form == OutputForm::json) {
    fmt::print("{}\n", nlohmann::json{{"journal", journal_json(main, account)}}.dump(2));
  } else if (main.journal_window().lvwJournal.empty()) {
    fmt::print("The journal has no entries of account {}\n", account);
  } else {
    for (const auto& entry : journal_json(main, account)) {
      fmt::print("{}  {}\n", entry["time"].get<std::string>(), entry["message"].get<std::string>());
    }
  }
  return exit_status::all_accepted;
}

}  // namespace tutti
