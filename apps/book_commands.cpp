// Positions and pending orders: list, close, cancel.

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "apps/commands.h"
#include "apps/output.h"
#include "apps/requests_report.h"
#include "apps/requote_answer.h"

namespace tutti {
namespace {

void print_list(const CommandContext& context, const char* name, const RowList& list,
                const NamedColumns& columns) {
  context.console().print(
      rows_report(context.form(), name, list, columns,
                  fmt::format("{}{} {}\n", list.empty() ? "" : rows_text(list), list.size(), name)));
}

// What the dealing server has taken and not brought to its end, in the order in which it falls due.
nlohmann::json in_flight_json(CommandContext& context) {
  nlohmann::json out = nlohmann::json::array();
  for (const TradeRequest& request : context.server().requests()) {
    nlohmann::json& one = out.emplace_back(nlohmann::json{{"number", request.number},
                                                          {"account", request.account},
                                                          {"request", name_of(request.kind)},
                                                          {"stage", name_of(request.stage)},
                                                          {"side", request.operation > 0 ? "buy" : "sell"},
                                                          {"amount", request.amount},
                                                          {"symbol", request.symbol},
                                                          {"reference", nullptr},
                                                          {"price", nullptr}});
    if (request.reference != 0) one["reference"] = request.reference;
    if (request.price > 0.0) one["price"] = request.price;
    one["due"] = context.main().general().full_time_text(request.due);
  }
  return out;
}

// A command that ticks rows, presses a button, and waits for what becomes of each row.
class RowsRun {
 public:
  RowsRun(CommandContext& context, const RowsArguments& arguments, RowList& list,
          const RequestsReport& report)
      : context_(context), arguments_(arguments), list_(list), report_(report) {}

  int run(std::size_t account_column, std::size_t symbol_column, Label& button);

 private:
  using Asked = RequestsReport::Asked;

  bool wanted(const Asked& asked, std::string_view symbol) const;

  CommandContext& context_;
  const RowsArguments& arguments_;
  RowList& list_;
  const RequestsReport& report_;
};

bool RowsRun::wanted(const Asked& asked, std::string_view symbol) const {
  const auto in = [](const auto& values, auto value) {
    return values.empty() || std::find(values.begin(), values.end(), value) != values.end();
  };
  return in(arguments_.numbers, asked.number) && in(arguments_.accounts, asked.account) &&
         (arguments_.symbol.empty() || arguments_.symbol == symbol);
}

int RowsRun::run(std::size_t account_column, std::size_t symbol_column, Label& button) {
  if (!context_.knows(arguments_.accounts)) return exit_status::usage;
  const bool everybody = context_.tell_unconnected(arguments_.accounts) == 0;
  std::vector<Asked> all;
  for (Row& row : list_) {
    const Asked asked{row.key().number(),
                      static_cast<std::int32_t>(row.cell(account_column).stored_number())};
    if (!wanted(asked, row.text(symbol_column))) continue;
    list_.tick(row, true);
    all.push_back(asked);
  }
  for (const std::int64_t number : arguments_.numbers) {
    if (std::none_of(all.begin(), all.end(), [&](const Asked& a) { return a.number == number; })) {
      context_.console().tell("No connected account has {} {}\n", report_.number_name(), number);
      return exit_status::usage;
    }
  }
  button.click();
  run_answering(context_, arguments_.requote, [&] {
    return std::all_of(all.begin(), all.end(), [&](const Asked& a) { return report_.answered(a); });
  });
  context_.journal_unanswered();
  report_.print(all);
  const bool done = std::all_of(all.begin(), all.end(), [&](const Asked& a) { return report_.accepted(a); });
  return done && everybody && !all.empty() ? exit_status::all_accepted : exit_status::some_refused;
}

}  // namespace

int positions_command(CommandContext& context) {
  print_list(context, "positions", context.main().trade().lvwOpenPos,
             {{"ticket", frmTrade::ticket},
              {"account", frmTrade::account},
              {"time", frmTrade::time, true},
              {"type", frmTrade::type, true},
              {"amount", frmTrade::amount},
              {"symbol", frmTrade::symbol, true},
              {"open_price", frmTrade::open_price},
              {"current_price", frmTrade::current_price},
              {"stop_loss", frmTrade::stop_loss},
              {"take_profit", frmTrade::take_profit},
              {"commission", frmTrade::commission},
              {"interest", frmTrade::interest},
              {"profit", frmTrade::profit}});
  return context.tell_unconnected({}) == 0 ? exit_status::all_accepted : exit_status::some_refused;
}

int orders_command(CommandContext& context) {
  const RowList& list = context.main().pending().lvwPending;
  const NamedColumns columns = {
      {"order", frmPending::order_number},  {"account", frmPending::account},
      {"type", frmPending::type, true},     {"amount", frmPending::amount},
      {"symbol", frmPending::symbol, true}, {"price", frmPending::price},
      {"stop_loss", frmPending::stop_loss}, {"take_profit", frmPending::take_profit},
      {"time", frmPending::time, true}};
  if (context.form() == OutputForm::json) {
    context.console().print(json_text(
        nlohmann::json{{"orders", rows_json(list, columns)}, {"in_flight", in_flight_json(context)}}));
  } else {
    print_list(context, "orders", list, columns);
  }
  if (const auto count = context.server().requests_in_flight(); count > 0) {
    context.console().tell("{} requests are still on their way at the dealing server: --json names them\n",
                           count);
  }
  return context.tell_unconnected({}) == 0 ? exit_status::all_accepted : exit_status::some_refused;
}

int close_command(CommandContext& context, const RowsArguments& arguments) {
  frmTrade& form = context.main().trade();
  const RequestsReport report{context, RequestKind::close, "ticket", "positions"};
  return RowsRun{context, arguments, form.lvwOpenPos, report}.run(frmTrade::account, frmTrade::symbol,
                                                                  form.lbbClose);
}

int cancel_command(CommandContext& context, const RowsArguments& arguments) {
  frmPending& form = context.main().pending();
  const RequestsReport report{context, RequestKind::cancel, "order", "orders"};
  return RowsRun{context, arguments, form.lvwPending, report}.run(frmPending::account, frmPending::symbol,
                                                                  form.lbbCancel);
}

}  // namespace tutti
