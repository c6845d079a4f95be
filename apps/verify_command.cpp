#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "apps/commands.h"
#include "apps/verification.h"

namespace tutti {

int verify_command(Terminal& terminal) {
  terminal.log_in();
  const auto differences = Verification{terminal.main(), terminal.server()}.run();
  if (terminal.options().form == OutputForm::json) {
    fmt::print("{}\n", nlohmann::json{{"differences", differences}}.dump(2));
  } else {
    for (const std::string& difference : differences)
      fmt::print("{}\n", difference);
    fmt::print("{} differences\n", differences.size());
  }
  return differences.empty() && !terminal.main().general().lines_skipped() ? exit_status::all_accepted
                                                                           : exit_status::some_refused;
}

}  // namespace tutti
