#include <nlohmann/json.hpp>

#include "apps/commands.h"
#include "apps/verification.h"

namespace tutti {

int verify_command(CommandContext& context) {
  Console& console = context.console();
  const auto differences = Verification{context.main(), context.server()}.run();
  if (context.form() == OutputForm::json) {
    console.print(json_text(nlohmann::json{{"differences", differences}}));
  } else {
    for (const std::string& difference : differences)
      console.print("{}\n", difference);
    console.print("{} differences\n", differences.size());
  }
  return differences.empty() && !context.main().general().lines_skipped() ? exit_status::all_accepted
                                                                          : exit_status::some_refused;
}

}  // namespace tutti
