// Positions and pending orders: list, close, cancel.

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "apps/commands.h"
#include "apps/named_act.h"
#include "apps/output.h"
#include "apps/requests_report.h"
#include "apps/requote_answer.h"
#include "apps/times.h"
#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

const char* side_text(Operation operation) {
  return buys(operation) ? "buy" : "sell";
}

// What the dealing server has taken and not brought to its end, in the order in which it falls due.
Json in_flight_json(const CommandContext& context) {
  Records out{
      {"number", "account", "request", "stage", "side", "amount", "symbol", "reference", "price", "due"}};
  for (const TradeRequest& request : context.server().requests()) {
    out.add({request.number, request.account, name_of(request.kind), name_of(request.stage),
             side_text(request.kind == TradeKind::close ? opposite(request.operation) : request.operation),
             json_number(request.amount), request.symbol,
             request.reference != 0 ? Json(request.reference) : Json{},
             request.price > 0.0 ? json_number(request.price) : Json{}, utc_text(request.due)});
  }
  return out.json();
}

// By account, then by number.
std::vector<const Row*> rows_by_account(const RowList& list) {
  std::vector<const Row*> out;
  for (const Row& row : list)
    out.push_back(&row);
  std::sort(out.begin(), out.end(), [](const Row* a, const Row* b) {
    return std::pair{a->key().account(), a->key().number()} <
           std::pair{b->key().account(), b->key().number()};
  });
  return out;
}

int print_list(const CommandContext& context, const char* name, const RowList& list,
               const std::vector<const Row*>& rows, const Records& records, const Json& more) {
  context.print(name, records, more, [&] {
    return fmt::format("{}{} {}\n", rows.empty() ? "" : rows_text(list, rows), rows.size(), name);
  });
  return context.tell_unconnected({}) == 0 ? exit_status::all_accepted : exit_status::some_refused;
}

// Values as the list shows them: lots, prices that may be missing, money.
Json lots_value(double lots) {
  return json_number(as_text_reads(lots));
}
Json price_value(double price, int digits) {
  return json_number(as_fixed_reads(price, digits));
}
Json price_or_none(double price, int digits) {
  return price == 0.0 ? Json{} : price_value(price, digits);
}
Json money_value(double money) {
  return price_value(money, 2);
}
Json symbol_value(const std::string& symbol) {
  return std::string{trim(symbol)};
}

// A command that ticks rows, presses a button, and waits for what becomes of each row.
class RowsRun {
 public:
  RowsRun(CommandContext& context, const RowsArguments& arguments, RowList& list,
          const RequestsReport& report)
      : context_(context), arguments_(arguments), list_(list), report_(report) {}

  // The rows show the records of the book.
  template <class Book>
  int run(const Book& book, Label& button);

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

template <class Book>
int RowsRun::run(const Book& book, Label& button) {
  if (!context_.knows(arguments_.accounts)) return exit_status::usage;
  if (arguments_.require_connected && !context_.all_connected(arguments_.accounts))
    return exit_status::some_refused;
  NamedAct act{context_, arguments_.id, std::string{report_.list_name()}};
  act.with("symbol", arguments_.symbol)
      .with("numbers", arguments_.numbers)
      .with("accounts", arguments_.accounts);
  context_.main().sessions().admission().override_limits(arguments_.over_limits);
  if (const auto repeated = act.repeated(arguments_.requote)) return *repeated;
  const bool everybody = context_.tell_unconnected(arguments_.accounts) == 0;
  std::vector<Asked> all;
  for (Row& row : list_) {
    const Asked asked{row.key().number(), row.key().account()};
    const auto* record = book.find(asked.number, asked.account);
    if (record == nullptr || !wanted(asked, record->symbol)) continue;
    list_.tick(row, true);
    all.push_back(asked);
  }
  for (const std::int64_t number : arguments_.numbers) {
    if (std::none_of(all.begin(), all.end(), [&](const Asked& a) { return a.number == number; })) {
      context_.console().fail("No connected account has {} {}", report_.number_name(), number);
      return exit_status::usage;
    }
  }
  button.click();
  context_.refuse_held();
  run_answering(context_, arguments_.requote, [&] {
    return std::all_of(all.begin(), all.end(), [&](const Asked& a) { return report_.answered(a); });
  });
  context_.journal_unanswered();
  report_.print(all);
  const int status = report_.status(all);
  return status == exit_status::all_accepted && !everybody ? exit_status::some_refused : status;
}

}  // namespace

int positions_command(CommandContext& context) {
  Main& main = context.main();
  const RowList& list = main.trade().lvwOpenPos;
  Records records{{"ticket", "account", "time", "side", "amount", "symbol", "open_price", "current_price",
                   "stop_loss", "take_profit", "commission", "interest", "profit"}};
  const auto rows = rows_by_account(list);
  for (const Row* row : rows) {
    const auto* p = main.positions().find(row->key().number(), row->key().account());
    records.add({p->ticket, p->account, utc_text(p->open_time), side_text(p->side), lots_value(p->amount),
                 symbol_value(p->symbol), price_value(p->open_price, p->digits),
                 price_value(p->current_price, p->digits), price_or_none(p->stop_loss, p->digits),
                 price_or_none(p->take_profit, p->digits), money_value(p->commission),
                 money_value(p->interest), money_value(p->floating_pl)});
  }
  return print_list(context, "positions", list, rows, records, Json::object());
}

int orders_command(CommandContext& context) {
  Main& main = context.main();
  const RowList& list = main.pending().lvwPending;
  Records records{{"order", "account", "type", "side", "ticket", "amount", "symbol", "price", "stop_loss",
                   "take_profit", "time"}};
  const auto rows = rows_by_account(list);
  for (const Row* row : rows) {
    const auto* o = main.orders().find(row->key().number(), row->key().account());
    records.add({o->order, o->account, std::string{trim(frmPending::TypeDesc(o->kind, o->reference))},
                 side_text(frmPending::side(*o)), o->reference != 0 ? Json(o->reference) : Json{},
                 lots_value(o->amount), symbol_value(o->symbol), price_value(o->price, o->digits),
                 price_or_none(o->stop_loss, o->digits), price_or_none(o->take_profit, o->digits),
                 utc_text(o->time)});
  }
  const int status =
      print_list(context, "orders", list, rows, records, {{"in_flight", in_flight_json(context)}});
  if (const auto count = context.server().requests_in_flight(); count > 0) {
    context.console().tell("{} requests are still on their way at the dealing server: --json names them",
                           count);
  }
  return status;
}

int close_command(CommandContext& context, const RowsArguments& arguments) {
  frmTrade& form = context.main().trade();
  const RequestsReport report{context, RequestKind::close, "ticket", "positions"};
  return RowsRun{context, arguments, form.lvwOpenPos, report}.run(context.main().positions(), form.lbbClose);
}

int cancel_command(CommandContext& context, const RowsArguments& arguments) {
  frmPending& form = context.main().pending();
  const RequestsReport report{context, RequestKind::cancel, "order", "orders"};
  return RowsRun{context, arguments, form.lvwPending, report}.run(context.main().orders(), form.lbbCancel);
}

}  // namespace tutti
