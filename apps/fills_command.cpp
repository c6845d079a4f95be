// What was filled, and what the closes have brought.

#include <fmt/chrono.h>

#include "apps/commands.h"
#include "apps/output.h"
#include "apps/times.h"
#include "core/numbers.h"
#include "ledger/ledger_reader.h"
#include "ledger/ledger_words.h"
#include "ledger/realised_sums.h"

namespace tutti {
namespace {

Json or_null(const std::string& text) {
  return text.empty() ? Json{} : Json(text);
}

Json or_null(const std::optional<double>& money) {
  return money ? json_money(*money) : Json{};
}

std::string money_text(const std::optional<double>& money) {
  return money ? fixed_text(*money, 2) : "";
}

std::string whole_or_empty(std::int64_t number) {
  return number == 0 ? "" : std::to_string(number);
}

std::string day_text(std::chrono::sys_days day) {
  return utc_text(TimePoint{day}).substr(0, 10);
}

Records fill_records(const std::vector<FillRecord>& fills) {
  Records out{{"time", "ticket", "request", "account", "user", "server", "kind", "side", "amount", "symbol",
               "price", "order", "execution", "profit", "commission", "currency"}};
  for (const FillRecord& fill : fills) {
    out.add({utc_text(fill.time), fill.ticket != 0 ? Json(fill.ticket) : Json{},
             fill.request != 0 ? Json(fill.request) : Json{}, fill.account.account, fill.account.user,
             fill.account.server, fill.closes ? "close" : "open",
             or_null(std::string{ledger_words::of(fill.side)}), json_number(fill.lots), or_null(fill.symbol),
             fill.price != 0.0 ? json_number(fill.price) : Json{},
             fill.order != 0 ? Json(fill.order) : Json{}, or_null(fill.execution), or_null(fill.profit),
             or_null(fill.commission), or_null(fill.currency)});
  }
  return out;
}

std::string fills_text(const std::vector<FillRecord>& fills) {
  TextTable table{{{"Time"},
                   {"Ticket", true},
                   {"Account", true},
                   {"What"},
                   {"Side"},
                   {"Lots", true},
                   {"Symbol"},
                   {"Price", true},
                   {"Order", true},
                   {"Profit", true},
                   {"Commission", true},
                   {"Currency"}}};
  for (const FillRecord& fill : fills) {
    table.add({utc_text(fill.time), whole_or_empty(fill.ticket), std::to_string(fill.account.account),
               fill.closes ? "close" : "open", std::string{ledger_words::of(fill.side)},
               number_text(fill.lots), fill.symbol,
               fill.price != 0.0 ? fixed_text(fill.price, fill.price_digits) : "", whole_or_empty(fill.order),
               money_text(fill.profit), money_text(fill.commission), fill.currency});
  }
  return table.text();
}

Records sum_records(const std::vector<RealisedSum>& sums) {
  Records out{{"day", "account", "user", "server", "currency", "closes", "not_told", "profit", "commission"}};
  for (const RealisedSum& sum : sums) {
    out.add({day_text(sum.day), sum.account.account, sum.account.user, sum.account.server,
             or_null(sum.currency), sum.closes, sum.untold, json_money(sum.profit),
             json_money(sum.commission)});
  }
  return out;
}

std::string sums_text(const std::vector<RealisedSum>& sums) {
  if (sums.empty()) return {};
  TextTable table{{{"Day"},
                   {"Account", true},
                   {"Closes", true},
                   {"Profit", true},
                   {"Commission", true},
                   {"Currency"},
                   {"Not told", true}}};
  const auto add = [&](const RealisedSum& sum, const std::string& day, const std::string& account) {
    table.add({day, account, std::to_string(sum.closes), fixed_text(sum.profit, 2),
               fixed_text(sum.commission, 2), sum.currency,
               sum.untold > 0 ? std::to_string(sum.untold) : ""});
  };
  for (const RealisedSum& sum : sums)
    add(sum, day_text(sum.day), std::to_string(sum.account.account));
  for (const RealisedSum& sum : realised_by_currency(sums))
    add(sum, "All", "");
  return "\n" + table.text();
}

}  // namespace

int fills_command(const HomeContext& context, const FillFilter& filter) {
  const auto fills = LedgerReader{context.terminal.home, context.terminal.key_file}.fills(filter);
  if (!fills) {
    context.console.fail(fills.error().text());
    return exit_status::unreadable_data;
  }
  const std::vector<RealisedSum> sums = realised_by_day(*fills);
  context.console.print(
      report_text(context.form, "fills", fill_records(*fills), {{"realised", sum_records(sums).json()}}, [&] {
        return (fills->empty() ? "" : fills_text(*fills)) + sums_text(sums) +
               fmt::format("{} fills\n", fills->size());
      }));
  return exit_status::all_accepted;
}

}  // namespace tutti
