// Entry orders: place one for many accounts, change the prices of one, or the SL/TP of a position.

#include <fmt/format.h>

#include <tuple>

#include "apps/named_act.h"
#include "apps/requests_report.h"
#include "apps/split_run.h"
#include "core/numbers.h"

namespace tutti {
namespace {

class EntryRun final : public SplitRun {
 public:
  EntryRun(CommandContext& context, const EntryArguments& arguments, frmlimitorder& form)
      : SplitRun(context, arguments,
                 {form.lvwConClients, form.cblimitordersymbols, form.CBlimitorderdis,
                  form.txtlimitorderammount, form.chkAllClients, form.cmdlimiorderdis}),
        form_(form),
        order_(arguments) {}

 private:
  void fill_in() override {
    form_.cblimiordertype.choose(order_.type);
    form_.txtatprice.type(order_.price);
    form_.txtsl.type(order_.stop_loss);
    form_.txttp.type(order_.take_profit);
  }
  Shares shares() const override { return form_.shares(); }
  ShareFault share_fault(const Row& row) const override { return form_.share_fault(row); }
  std::string price_fault(const CClientAPIManager& session) const override;
  const SentOrder& sent_by(const CClientAPIManager& session) const override { return session.last_entry(); }
  std::string title() const override {
    return form_.cblimiordertype.items()[static_cast<std::size_t>(order_.type)] + " " + order_.symbol +
           " at " + order_.price;
  }
  NamedAct named() const override {
    NamedAct out{context_, order_.id, "entry " + std::to_string(order_.type)};
    for (const std::string* price : {&order_.price, &order_.stop_loss, &order_.take_profit})
      out.with("price", price->empty() ? "" : number_text(read_number(*price)));
    return out;
  }
  bool send() override {
    // Distribute has said so already when nobody is left.
    if (form_.lvwConClients.checked_count() == 0) return false;
    form_.cmdsubmitlimiorder.click();
    context_.refuse_held();
    if (!form_.submitted()) return false;
    context_.run_until([this] { return form_.answers().waiting == 0; });
    return true;
  }

  frmlimitorder& form_;
  const EntryArguments& order_;
};

std::string EntryRun::price_fault(const CClientAPIManager& session) const {
  if (!form_.stops_accepted())
    return "stop loss or take profit would not be sent: as texts they lie on the wrong side of the price";
  const AccountClient& client = session.ClientAPIF();
  const Symbol* symbol = client.FindSymbol(order_.symbol);
  if (symbol == nullptr) return {};
  const MarketDistances market{
      .bid = symbol->bid,
      .ask = symbol->ask,
      .limit_offset = symbol->ScaleDistance(client.SymbolLimitDistance(order_.symbol)),
      .stop_offset = symbol->ScaleDistance(client.SymbolStopDistance(order_.symbol))};
  const auto told = entry_conditions(static_cast<EntryType>(order_.type), market, std::nullopt);
  if (!told) return {};
  // `sign` is the side of the bound on which the price must lie, `room` how far it may lie on the other one.
  const auto wrong = [](double price, std::string_view sign, double bound, double room) {
    return sign == "<" ? price - bound > room : bound - price > room;
  };
  // The distance itself is far enough, whatever its last digit in binary; stops must lie beyond the price.
  constexpr double on_the_bound = 1e-9;
  const double price = read_number(order_.price);
  if (wrong(price, told->price_sign, told->price_limit, on_the_bound))
    return fmt::format("the price must be at {} {} at the moment", told->price_sign == "<" ? "most" : "least",
                       fixed_text(told->price_limit, symbol->digits));
  for (const auto& [name, text, sign] :
       {std::tuple{"stop loss", order_.stop_loss, told->stop_loss_sign},
        std::tuple{"take profit", order_.take_profit, told->take_profit_sign}})
    if (!text.empty() && wrong(read_number(text), sign, price, -on_the_bound))
      return fmt::format("the {} must be {} {}", name, sign == "<" ? "below" : "above", order_.price);
  return {};
}

void retype(TextBox& box, const std::optional<std::string>& price) {
  if (!price) return;
  box.set_text("");
  if (*price != "none") box.type(*price);
}

// Opens the order or position in the entry order window, as a double-click on its row does. Answers how many
// have the number; it opens none of several.
std::size_t open(Main& main, std::int64_t number) {
  for (RowList* list : {&main.pending().lvwPending, &main.trade().lvwOpenPos}) {
    std::vector<Row*> rows;
    for (Row& row : *list)
      if (row.key().number() == number) rows.push_back(&row);
    if (rows.size() == 1) list->activate(*rows.front());
    if (!rows.empty()) return rows.size();
  }
  return 0;
}

}  // namespace

int entry_command(CommandContext& context, const EntryArguments& arguments) {
  return EntryRun{context, arguments, context.main().entry_order()}.run();
}

int modify_command(CommandContext& context, const ModifyArguments& arguments) {
  frmlimitorder& form = context.main().entry_order();
  NamedAct act{context, arguments.id, "modify " + std::to_string(arguments.number)};
  for (const auto* price : {&arguments.price, &arguments.stop_loss, &arguments.take_profit})
    act.with("price", !*price ? "as before" : **price == "none" ? "none" : number_text(read_number(**price)));
  context.main().sessions().admission().override_limits(arguments.over_limits);
  if (const auto repeated = act.repeated(RequoteReply::reject)) return *repeated;
  if (const std::size_t found = open(context.main(), arguments.number); found != 1) {
    context.console().fail("{} has the order or ticket {}; nothing is changed",
                           found == 0 ? "No connected account" : "More than one account", arguments.number);
    return exit_status::usage;
  }
  const bool stops = form.mode() == frmlimitorder::edit_stops;
  if (form.mode().empty()) {
    context.console().fail("The prices of {} can't be changed", arguments.number);
    return exit_status::some_refused;
  }
  if (stops && arguments.price) {
    context.console().fail("--at goes with entry orders, and {} is none", arguments.number);
    return exit_status::usage;
  }
  const RequestsReport::Asked asked{form.edited(), form.edited_account()};
  retype(form.txtatprice, arguments.price);
  retype(form.txtsl, arguments.stop_loss);
  retype(form.txttp, arguments.take_profit);
  form.cmdsubmitlimiorder.click();
  context.refuse_held();
  const RequestsReport report = stops ? RequestsReport{context, RequestKind::stops, "ticket", "positions"}
                                      : RequestsReport{context, RequestKind::update, "order", "orders"};
  context.run_until([&] { return report.answered(asked); });
  context.journal_unanswered();
  report.print({asked});
  return report.status({asked});
}

}  // namespace tutti
