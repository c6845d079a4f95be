// Net positions: per symbol over all accounts, or per account and symbol.

#include <algorithm>

#include "apps/commands.h"
#include "apps/output.h"
#include "views/total_row.h"

namespace tutti {
namespace {

constexpr int money_decimals = 2;

// Long, short, net and floating, from a column on.
void write_sum(Row& row, std::size_t first, const NetSum& sum) {
  row.set_number(first, sum.long_total());
  row.set_number(first + 1, sum.short_total());
  row.set_number(first + 2, sum.net());
  row.set_fixed(first + 3, sum.floating_total(), money_decimals);
}

// Places in the book of what has positions, ordered by `key`.
template <class Items, class Key>
std::vector<std::size_t> places_by(const Items& items, Key key) {
  std::vector<std::size_t> out;
  for (std::size_t place = 0; place < items.size(); ++place)
    if (items[place].sum.positions() > 0) out.push_back(place);
  std::sort(out.begin(), out.end(),
            [&](std::size_t a, std::size_t b) { return items[a].*key < items[b].*key; });
  return out;
}

void print(const CommandContext& context, const RowList& list, const NamedColumns& columns,
           const RowList& table) {
  context.print("net", rows_records(list, columns), Json::object(),
                [&] { return table.empty() ? std::string{"0 positions\n"} : rows_text(table); });
}

void print_symbols(CommandContext& context) {
  enum Column : std::size_t { symbol, bought, sold, net, floating, accounts };
  RowList list{{"Symbol", "Long", "Short", "Net", "P/L", "Accounts"}};
  const auto& symbols = context.main().net_positions().symbols();
  for (const std::size_t place : places_by(symbols, &CNetPos::OfSymbol::name)) {
    Row& row = *list.add();
    row.set_text(symbol, symbols[place].name);
    write_sum(row, bought, symbols[place].sum);
    row.set_number(accounts, symbols[place].accounts);
  }
  frmNetTrade& form = context.main().net_trade();
  form.refresh();
  print(context, list,
        {{"symbol", symbol, Holds::words},
         {"long", bought},
         {"short", sold},
         {"net", net},
         {"floating", floating, Holds::money},
         {"accounts", accounts}},
        form.lvwNet);
}

void print_accounts(CommandContext& context) {
  enum Column : std::size_t { account, symbol, bought, sold, net, floating };
  RowList list{{"Account", "Symbol", "Long", "Short", "Net", "P/L"}};
  const CNetPos& book = context.main().net_positions();
  const auto symbols = places_by(book.symbols(), &CNetPos::OfSymbol::name);
  for (const std::size_t at : places_by(book.accounts(), &CNetPos::OfAccount::number)) {
    const CNetPos::OfAccount& of_account = book.accounts()[at];
    for (const std::size_t place : symbols) {
      const NetSum& sum = book.of(of_account, place);
      if (sum.positions() == 0) continue;
      Row& row = *list.add();
      row.set_number(account, of_account.number);
      row.set_text(symbol, book.symbols()[place].name);
      write_sum(row, bought, sum);
    }
  }
  if (context.form() == OutputForm::text && !list.empty()) write_sum(total_row(list), bought, book.total());
  print(context, list,
        {{"account", account},
         {"symbol", symbol, Holds::words},
         {"long", bought},
         {"short", sold},
         {"net", net},
         {"floating", floating, Holds::money}},
        list);
}

}  // namespace

int net_command(CommandContext& context, bool by_account) {
  if (by_account) {
    print_accounts(context);
  } else {
    print_symbols(context);
  }
  return context.tell_unconnected({}) == 0 ? exit_status::all_accepted : exit_status::some_refused;
}

}  // namespace tutti
