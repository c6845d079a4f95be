// Stops trading, with or without a terminal that runs.

#include <fmt/format.h>

#include <algorithm>

#include "apps/commands.h"
#include "apps/output.h"
#include "core/stop_sign.h"

namespace tutti {

std::optional<int> stop_at_once(const HomeContext& context, const StopArguments& arguments) {
  if (arguments.end) return std::nullopt;
  StopFile sign{context.terminal.home};
  const bool before = sign.stopped();
  if (const auto set = sign.set("by tuttictl"); !set) {
    context.console.fail("Trading is NOT stopped: {}", set.error().text());
    return exit_status::unreadable_data;
  }
  context.console.tell(before ? "Trading was stopped before" : "Trading is stopped: nothing leaves any more");
  if (arguments.cancel_orders || arguments.close_positions) return std::nullopt;
  return exit_status::all_accepted;
}

int stop_command(CommandContext& context, const StopArguments& arguments) {
  frmStop& form = context.main().stop_form();
  if (arguments.end) {
    const bool stopped = form.stopped();
    form.cmdEnd.click();
    if (!stopped) context.console().tell("Trading was not stopped");
    return form.stopped() ? exit_status::unreadable_data : exit_status::all_accepted;
  }
  form.stop("tuttictl");
  const std::string what = arguments.cancel_orders && arguments.close_positions
                               ? "Cancel the orders and close the positions?"
                           : arguments.cancel_orders ? "Cancel the orders?"
                                                     : "Close the positions?";
  constexpr int yes = 1;
  if (context.main().general().msg_box.GeneralQuestionMsg(form.figures_text() + ". " + what) == yes) {
    if (arguments.cancel_orders) form.chkOrders.click();
    if (arguments.close_positions) form.chkPositions.click();
    form.cmdCarryOut.click();
    context.run_until([&] { return context.main().sessions().unanswered() == 0; });
  }
  context.journal_unanswered();
  form.refresh_now();
  Records records{{"account", "open"}};
  TextTable table{{{"Account", true}, {"Open"}}};
  for (const frmStop::Open& open : form.shown_open()) {
    records.add({open.account, open.what});
    table.add({std::to_string(open.account), open.what});
  }
  const bool flat = form.verified_flat();
  context.print("open", records, {{"flat", flat}}, [&] {
    return (form.lvwOpen.empty() ? "" : table.text()) +
           (flat ? "Nothing is open, as the accounts' lists say\n" : "Not flat, or not verified\n");
  });
  if (context.main().sessions().requests().unknown_now() > 0) return exit_status::some_unknown;
  return flat ? exit_status::all_accepted : exit_status::some_refused;
}

}  // namespace tutti
