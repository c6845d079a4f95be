#pragma once

#include "core/file_writer.h"
#include "tests/dealer_rig.h"
#include "tests/support/test_terminal.h"

namespace tutti {

using std::chrono::seconds;
using testing::TemporaryFolder;

inline const TimePoint noon = std::chrono::sys_days{std::chrono::year{2026} / 3 / 4} + std::chrono::hours{12};

// What the server has of all accounts, as a text.
inline std::string books(const DealingServer& server) {
  std::string text;
  for (const TradingAccount& account : server.accounts()) {
    const BookState::Account state = account.state();
    text += std::to_string(state.number) + " " + number_text(state.balance);
    for (const OpenPosition& one : state.positions)
      text += " #" + std::to_string(one.ticket) + (buys(one.side) ? "+" : "-") + number_text(one.amount) +
              "@" + number_text(one.open_price) + "/" + number_text(one.interest);
    for (const PendingOrder& one : state.orders)
      text += " " + std::string{order_kind::text(one.kind)} + std::to_string(one.order) + ":" +
              number_text(one.price) + "," + number_text(one.stop_loss) + "," + number_text(one.take_profit);
    text += "\n";
  }
  return text;
}

struct KeptRig : DealerRig {
  KeptRig(const TemporaryFolder& home, DealerConfig config, TimePoint start = noon, bool fresh = false)
      : DealerRig(std::move(config), start), kept(server.keep_book(home.path(), fresh)) {}
  std::string fault() const { return kept ? "" : kept.error().text(); }

  tl::expected<Words, FileError> kept;
};

inline DealerConfig prices(std::vector<Tick> ticks, int accounts = 2) {
  DealerConfig config = still_market(accounts);
  config.ticks = std::move(ticks);
  return config;
}

}  // namespace tutti
