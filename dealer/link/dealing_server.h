#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tl/expected.hpp>

#include "core/clock.h"
#include "core/event_source.h"
#include "core/file_writer.h"
#include "dealer/config/dealer_config.h"
#include "dealer/link/dealer_session.h"
#include "dealer/link/event_queue.h"
#include "dealer/link/server_gate.h"
#include "dealer/market/market.h"
#include "dealer/market/price_watch.h"
#include "dealer/trading/answer_desk.h"
#include "dealer/trading/book_keeper.h"
#include "dealer/trading/fault_script.h"
#include "dealer/trading/front_desk.h"
#include "dealer/trading/order_desk.h"
#include "dealer/trading/trade_recorder.h"
#include "dealer/trading/trading_account.h"
#include "dealer/trading/trigger_desk.h"
#include "pricing/rate_table.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"

namespace tutti {

// The embedded dealing server: market, accounts, orders, and the sessions of the trading clients.
//
// One thread. `advance` brings it up to the clock and queues what there is to tell; `deliver_next` tells it.
// Between the two nothing moves, so what clients read stays put. Outlives its clients.
class DealingServer final : public EventSource, private ServerGate {
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

  // Keeps balances, positions, orders and requests in a folder from now on, and takes up what an earlier run
  // left there; `fresh` throws that away, but for the numbers it gave. From then on nobody is told of
  // anything that is not on the disk. Answers, for the operator, what was damaged and had to be left out.
  // Anything else that can't be read is an error that names file and line, and changes nothing. Before the
  // first login.
  tl::expected<std::vector<std::string>, FileError> keep_book(const std::filesystem::path& folder,
                                                              bool fresh = false);
  // Writes the book anew, so that its log is empty. To be called at the end; what a run without it leaves is
  // taken up all the same.
  tl::expected<void, FileError> save_book() { return book_.save(); }
  // While what happened can't be stored, its failure() says why. The server then stands still: it moves
  // nothing, takes no request, and tells nothing of what is not stored.
  const BookKeeper& book() const { return book_; }

  const DealerConfig& config() const { return config_; }
  const Market& market() const { return market_; }
  // In order of the configuration; valued as of the last `advance`.
  const std::vector<TradingAccount>& accounts() const { return accounts_; }
  const TradingAccount* find_account(std::int32_t number) const;
  // Requests that are not at their end: on their way, or pending.
  std::size_t requests_in_flight() const { return desk_.in_flight(); }
  std::vector<TradeRequest> requests() const { return desk_.requests(); }
  // How the requests of this run ended and what prices set off, oldest first; the last 100,000 at least.
  const std::vector<Outcome>& outcomes() const { return recorder_.outcomes(); }

  // What is kept of requests and fills for good, those of earlier runs included.
  const RequestHistory& history() const { return recorder_.history(); }

  // How requests of an earlier run ended of which no session was told, as nobody was logged in: each once,
  // and none before it is stored.
  std::vector<Outcome> take_untold();

 private:
  std::unique_ptr<DealerSession> make_session() override;
  void login(DealerSession& session, const LoginData& data) override;
  void logout(DealerSession& session) override;
  const TradingAccount* owned_account(std::string_view user, std::int32_t number) const override;
  RequestCode send(TradingAccount& account, const Instruction& wanted) override;
  RequestCode answer_requote(TradingAccount& account, std::int64_t order, bool accept, RequestId id) override;
  BookEra era() const override { return book_.era(); }
  std::int64_t requests_known(const TradingAccount& account, LedgerTag ledger) const override {
    return history().known(account.config().number, ledger);
  }
  RequestCode ask_request(TradingAccount& account, RequestId id, BookEra era) override;
  RequestCode ask_executions(TradingAccount& account, TimePoint since) override;
  double smallest_lot() const override { return config_.min_lot; }
  double largest_lot() const override { return config_.max_lot; }

  struct PendingLogin {
    DealerSession* session = nullptr;
    LoginData data;
    Mishap mishap;
  };

  // The server's present moment; never goes back, even if the clock does.
  TimePoint now() const;
  std::optional<TimePoint> next_moment() const;
  void run(TimePoint at);
  void move_market();
  void roll_over();
  void finish_login(PendingLogin login);
  void tell_time(TimePoint at);
  void revalue();
  bool known_user(const LoginData& data) const;
  DealerSession* session_on(const TradingAccount& account) const;  // nullptr when there is none
  void end_session(DealerSession& session);
  void end_sessions(const FaultScript::Drop& which);
  // Stores what has happened, and with it lets everybody be told who waits for it.
  void store();
  // Whether the oldest event in the queue tells of nothing that is not stored.
  bool may_deliver();

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
  TradeRecorder recorder_;
  AnswerDesk answers_;
  OrderDesk desk_;
  TriggerDesk triggers_;
  FrontDesk front_;
  BookKeeper book_;
  EventQueue queue_;
  std::uint64_t stored_events_ = 0;  // so many from the first on may be delivered, when there is a book
  std::multimap<TimePoint, PendingLogin> logins_;
  std::vector<DealerSession*> online_;
  bool stale_ = false;
  bool delivering_ = false;
  std::int32_t delivered_account_ = -1;
};

}  // namespace tutti
