#include "apps/sent_report.h"

#include <fmt/format.h>

#include "apps/output.h"
#include "apps/stored_fill.h"
#include "core/numbers.h"
#include "ledger/ledger_words.h"
#include "views/ticket_texts.h"

namespace tutti {

void print_sent(CommandContext& context, const std::vector<SentLine>& lines) {
  std::vector<RequestId> ids;
  for (const SentLine& each : lines)
    ids.push_back(each.request);
  const auto stored = context.stored(ids);
  Records records{
      {"account", "kind", "share", "request_code", "accepted", "result", "order", "filled", "price", "time"}};
  TextTable table{
      {{"Account", true}, {"What"}, {"Share", true}, {"Order", true}, {"Price", true}, {"Result"}}};
  for (const SentLine& each : lines) {
    const StoredFill fill{stored, each.request};
    std::vector<Json> values{each.account,
                             std::string{ledger_words::of(each.kind)},
                             each.lots > 0.0 ? json_number(each.lots) : Json{},
                             each.code ? Json(format_as(*each.code)) : Json{},
                             each.accepted,
                             each.result,
                             fill.order()};
    fill.add_to(values);
    records.add(std::move(values));
    table.add({std::to_string(each.account), std::string{ticket_texts::what(each.kind)},
               each.lots > 0.0 ? number_text(each.lots) : "", fill.order_text(), fill.price_text(),
               each.result});
  }
  context.print("requests", records, context.totals_and_journal(), [&] {
    Main& main = context.main();
    return fmt::format("{}{}\n\n{}", table.text(), main.window().totals_pane(), journal_text(main));
  });
}

}  // namespace tutti
