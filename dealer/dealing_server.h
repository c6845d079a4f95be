#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "core/clock.h"
#include "core/event_source.h"
#include "core/file_writer.h"
#include "dealer/book_state.h"
#include "dealer/dealer_config.h"
#include "dealer/event_queue.h"
#include "dealer/fault_script.h"
#include "dealer/market.h"
#include "dealer/order_desk.h"
#include "dealer/price_watch.h"
#include "dealer/rate_table.h"
#include "dealer/trading_account.h"
#include "sessions/contract/ClientAPI.h"

namespace tutti {

class DealerSession;

// The embedded dealing server: market, accounts, orders, and the sessions of the trading clients.
//
// One thread. `advance` brings it up to the clock and queues what there is to tell; `deliver_next` tells it.
// Between the two nothing moves, so what clients read stays put. Outlives its clients.
class DealingServer final : public EventSource {
 public:
  // `config` must have no fault(). The market starts at the clock's present moment.
  DealingServer(DealerConfig config, const Clock& clock);
  ~DealingServer() override;
  DealingServer(const DealingServer&) = delete;
  DealingServer& operator=(const DealingServer&) = delete;

  // A trading client for one session. Destroying it unhooks it and logs it out; its orders go on.
  std::unique_ptr<ClientAPI> make_client();

  // Makes everything happen that is due by the clock, in order of time. Does nothing inside a handler.
  void advance();
  // When `advance` next has something to do; nothing while only a client's operation can change that.
  std::optional<TimePoint> next_due() const;

  bool deliver_next() override;
  std::int32_t delivered_account() const override { return delivered_account_; }

  // Ends the session of an account from the server's side, even one that is connecting; false when there is
  // none.
  bool drop(std::int32_t account);

  // Replaces balances, positions and requests by those of a book file. A missing file leaves everything as
  // configured; a damaged one is an error that names the line, and changes nothing. Before the first login.
  tl::expected<void, FileError> load_book(const std::filesystem::path& file);
  // Requests still in flight are kept too and executed after the next load.
  tl::expected<void, FileError> save_book(const std::filesystem::path& file) const;
  // Grows with every change that save_book would write.
  std::uint64_t book_revision() const { return desk_.revision() + rollovers_; }

  const DealerConfig& config() const { return config_; }
  const Market& market() const { return market_; }
  // In order of the configuration; valued as of the last `advance`.
  const std::vector<TradingAccount>& accounts() const { return accounts_; }
  const TradingAccount* find_account(std::int32_t number) const;
  // Requests that are not at their end: on their way, or pending.
  std::size_t requests_in_flight() const { return desk_.in_flight(); }
  // How the requests of this run ended and what prices set off, oldest first; the last 100,000 at least.
  const std::vector<Outcome>& outcomes() const { return desk_.outcomes(); }

  // Below: for the trading client only.

  void login(DealerSession& session, const LoginData& data);
  void logout(DealerSession& session);
  // Account of this number when `user` owns it, else nullptr.
  TradingAccount* owned_account(std::string_view user, std::int32_t number);
  OrderDesk& desk() { return desk_; }
  FaultScript& faults() { return faults_; }
  // The server's present moment; never goes back, even if the clock does.
  TimePoint now() const;

 private:
  struct PendingLogin {
    DealerSession* session = nullptr;
    LoginData data;
    Mishap mishap;
  };

  std::optional<TimePoint> next_moment() const;
  void run(TimePoint at);
  void move_market();
  void roll_over();
  void finish_login(PendingLogin login);
  void tell_time(TimePoint at);
  void revalue();
  bool known_user(const LoginData& data) const;
  void end_session(DealerSession& session);
  void end_sessions(const FaultScript::Drop& which);
  // Puts the configured entry orders on an account.
  void place_orders(TradingAccount& account);

  const DealerConfig config_;
  const Clock& clock_;
  std::chrono::milliseconds lag_{0};  // how far the clock was set back since the start
  TimePoint time_;                    // how far everything has been brought
  TimePoint next_second_;
  TimePoint next_rollover_;  // midnight UTC at which interest is due
  Market market_;
  RateTable rates_;
  PriceWatch watch_;
  std::vector<TradingAccount> accounts_;
  std::map<std::int32_t, std::size_t> by_number_;
  FaultScript faults_;
  OrderDesk desk_;
  EventQueue queue_;
  std::multimap<TimePoint, PendingLogin> logins_;
  std::vector<DealerSession*> online_;
  BookState absent_;  // what the book holds of accounts that are not configured in this run
  std::uint64_t rollovers_ = 0;
  bool stale_ = false;
  bool delivering_ = false;
  std::int32_t delivered_account_ = -1;
};

}  // namespace tutti
