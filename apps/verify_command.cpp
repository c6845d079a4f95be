#include <fmt/format.h>

#include "apps/commands.h"
#include "apps/verification.h"

namespace tutti {

int verify_command(CommandContext& context) {
  const auto differences = Verification{context.main(), context.server()}.run();
  Records records{{"difference"}};
  for (const std::string& difference : differences)
    records.add({difference});
  context.print("differences", records, Json::object(), [&] {
    std::string out;
    for (const std::string& difference : differences)
      out += difference + "\n";
    return out + fmt::format("{} differences\n", differences.size());
  });
  return differences.empty() && !context.main().general().lines_skipped() ? exit_status::all_accepted
                                                                          : exit_status::some_refused;
}

}  // namespace tutti
