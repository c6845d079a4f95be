// Stops trading, with or without a terminal that runs.

#include <fmt/format.h>

#include "apps/commands.h"
#include "apps/console_prompt.h"
#include "apps/output.h"
#include "core/stop_sign.h"

namespace tutti {

namespace {

std::string question(const std::string& figures, const StopArguments& arguments) {
  return figures + ". " +
         (arguments.cancel_orders && arguments.close_positions ? "Cancel the orders and close the positions?"
          : arguments.cancel_orders                            ? "Cancel the orders?"
                                                               : "Close the positions?");
}

std::string open_report(OutputForm form, const std::vector<frmStop::Open>& all, bool flat) {
  Records records{{"account", "open"}};
  TextTable table{{{"Account", true}, {"Open"}}};
  for (const frmStop::Open& open : all) {
    records.add({open.account, open.what});
    table.add({std::to_string(open.account), open.what});
  }
  return report_text(form, "open", records, {{"flat", flat}}, [&] {
    return (all.empty() ? "" : table.text()) +
           (flat ? "Nothing is open, as the accounts' lists say\n" : "Not flat, or not verified\n");
  });
}

int stop_status(bool flat, bool unknown) {
  if (unknown) return exit_status::some_unknown;
  return flat ? exit_status::all_accepted : exit_status::some_refused;
}

std::optional<int> end_beside(const HomeContext& context) {
  const auto ended = context.link.ask({{"do", "stop"}, {"end", true}}, TerminalLink::Effect::acts);
  if (!ended && ended.error().nobody) return std::nullopt;
  if (!ended) return tell_fault(context.console, ended.error());
  if (!ended->at("ended").get<bool>()) context.console.tell("Trading was not stopped");
  return exit_status::all_accepted;
}

// By the terminal that has the folder.
std::optional<int> carry_out_beside(const HomeContext& context, const StopArguments& arguments) {
  const TerminalLink& link = context.link;
  auto state = link.ask({{"do", "stop"}});
  if (!state && state.error().nobody) return std::nullopt;
  if (state && agreed(context.console, context.terminal.yes,
                      question(state->at("figures").get<std::string>(), arguments))) {
    state =
        link.ask({{"do", "stop"}, {"cancel", arguments.cancel_orders}, {"close", arguments.close_positions}},
                 TerminalLink::Effect::acts);
    link.until([&] {
      if (state && state->at("unanswered").get<int>() > 0) state = link.ask({{"do", "stop"}});
      return !state || state->at("unanswered").get<int>() == 0;
    });
  }
  if (!state) return tell_fault(context.console, state.error());
  std::vector<frmStop::Open> open;
  for (const Json& each : state->at("open"))
    open.push_back({each.at("account").get<std::int32_t>(), each.at("open").get<std::string>()});
  const bool flat = state->at("flat").get<bool>();
  context.console.print(open_report(context.form, open, flat));
  return stop_status(flat, state->at("unanswered").get<int>() + state->at("unknown").get<int>() > 0);
}

}  // namespace

std::optional<int> stop_at_once(const HomeContext& context, const StopArguments& arguments) {
  if (arguments.end) return end_beside(context);
  StopFile sign{context.terminal.home};
  const bool before = sign.stopped();
  if (const auto set = sign.set("by tuttictl"); !set) {
    context.console.fail("Trading is NOT stopped: {}", set.error().text());
    return exit_status::unreadable_data;
  }
  context.console.tell(before ? "Trading was stopped before" : "Trading is stopped: nothing leaves any more");
  if (arguments.cancel_orders || arguments.close_positions) return carry_out_beside(context, arguments);
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
  constexpr int yes = 1;
  if (context.main().general().msg_box.GeneralQuestionMsg(question(form.figures_text(), arguments)) == yes) {
    if (arguments.cancel_orders) form.chkOrders.click();
    if (arguments.close_positions) form.chkPositions.click();
    context.main().sessions().admission().override_limits(arguments.over_limits);
    form.cmdCarryOut.click();
    context.refuse_held();
    context.run_until([&] { return context.main().sessions().unanswered() == 0; });
  }
  context.journal_unanswered();
  form.refresh_now();
  const bool flat = form.verified_flat();
  context.console().print(open_report(context.form(), form.shown_open(), flat));
  return stop_status(flat, context.main().sessions().requests().unknown_now() > 0);
}

}  // namespace tutti
