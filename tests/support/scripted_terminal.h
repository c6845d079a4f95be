#pragma once

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/scripted_client.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

// "x0.3 result|" of every row of an order window, "-" when it is not ticked.
inline std::string shares(const RowList& list) {
  std::string out;
  for (const Row& row : list)
    out += (row.checked() ? "x" : "-") + row.text(1) + (row.text(2).empty() ? "" : " ") + row.text(2) + "|";
  return out;
}

using Summaries = std::vector<std::pair<double, double>>;  // equity and free margin of each account

// A terminal whose accounts 1, 2, 3... are scripted, connected and in the order windows.
struct ScriptedTerminal : TestTerminal {
  explicit ScriptedTerminal(const Summaries& summaries = {{100, 100}, {100, 100}, {100, 100}})
      : TestTerminal(DealerConfig::sample(1)) {
    std::string list;
    for (std::size_t i = 1; i <= summaries.size(); ++i)
      list += "user,secret," + std::to_string(i) + "\n";
    home->write("manage/savelvinfo.buf", list);
    home->write("limits.toml", "quote_seconds = \"never\"  # what is scripted has no quotes\n");
    behind = {[this](const LoginData&) {
                clients.push_back(new ScriptedClient);
                return std::unique_ptr<ClientAPI>{clients.back()};
              },
              {&server},
              {}};
    if (!start() || clients.size() != summaries.size()) throw std::runtime_error("not started");
    for (std::size_t i = 0; i < clients.size(); ++i)
      connect(*clients[i], summaries[i].first, summaries[i].second);
  }
  // The account number once more, under another user name, connected.
  ScriptedClient& add_row(const std::string& user, std::int32_t account) {
    main->accounts().account_dialog().accept_quietly(user, "secret", std::to_string(account));
    connect(*clients.back(), 100, 100);
    return *clients.back();
  }
  void connect(ScriptedClient& client, double equity, double free_margin) {
    const auto id = 69 + client.login_data.account;
    client.symbols = {{.id = id, .name = "EURUSD"}, {.id = 90, .name = "GBPUSD"}};
    client.summary.values.equity = equity;
    client.summary.values.free_margin = free_margin;
    client.info = AccountInfo{};
    client.sink->SymbolsLoaded();
    client.sink->AllDataAreLoaded();
    client.sink->ConnectionState(true);
  }
  // A position of so many lots, which are below 0 where it is sold.
  OpenPosition open(std::int32_t account, std::int64_t ticket, double lots = 0.5,
                    const char* symbol = "EURUSD", double price = 1.084, double profit = 0.0) {
    const OpenPosition position{.ticket = ticket,
                                .account = account,
                                .side = lots > 0.0 ? operation::buy : operation::sell,
                                .floating_pl = profit,
                                .symbol = symbol,
                                .amount = std::fabs(lots),
                                .open_price = price};
    client(account).positions.push_back(position);
    client(account).sink->NewOpenPosition(position);
    return position;
  }
  // What EURUSD costs, as the account's server says.
  void quote(std::int32_t account, double bid, double ask) {
    Symbol& symbol = client(account).symbols[0];
    symbol.bid = bid;
    symbol.ask = ask;
    client(account).sink->SymbolPricesChanged(symbol);
  }
  ScriptedClient& client(std::int32_t account) { return *clients[static_cast<std::size_t>(account) - 1]; }

  std::vector<ScriptedClient*> clients;  // owned by the sessions
};

}  // namespace tutti::testing
