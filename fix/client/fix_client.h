#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "core/clock.h"
#include "fix/client/account_cache.h"
#include "fix/client/client_desk.h"
#include "fix/client/client_feed.h"
#include "fix/dialect/wire_request.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"

namespace tutti {

// The trading client of one account at a broker that is reached by FIX. What is asked is answered from a
// cache, which changes before the event that tells of it is queued; what is sent goes out at once or never,
// and is refused at once only where the cache leaves no doubt.
class FixClient final : public ClientAPI {
 public:
  // The desk outlives the client.
  explicit FixClient(ClientDesk& desk);
  ~FixClient() override;
  FixClient(const FixClient&) = delete;
  FixClient& operator=(const FixClient&) = delete;

  void set_sink(CLAPICLASS* sink) override;
  void SetLoginData(const LoginData& data) override;
  void Login() override;
  int SymbolCount() const override;
  const Symbol* SymbolItem(int index) const override;
  const Symbol* SymbolRecord(std::string_view symbol) const override;
  const Symbol* FindSymbol(std::string_view symbol) const override;
  int OpenPositionCount() const override;
  const OpenPosition* OpenPositionItem(int index) const override;
  int PendingOrderCount() const override;
  const PendingOrder* PendingOrderItem(int index) const override;
  RequestCode NewMarketOrder(Operation side, std::int32_t symbol_id, double amount, std::string_view,
                             std::string_view, RequestId id) override;
  RequestCode NewEntryOrder(const EntryOrder& order, RequestId id) override;
  RequestCode UpdateEntryOrder(std::int64_t order, double price, const StopPrices& stops,
                               RequestId id) override;
  RequestCode AcceptRequote(std::int64_t order, RequestId id) override;
  RequestCode RejectRequote(std::int64_t order, RequestId id) override;
  RequestCode ClosePosition(std::string_view ticket, std::string_view amount, std::string_view,
                            RequestId id) override;
  bool LoggedIn() const override;
  void Logout() override;
  SummaryAnswer GetAccountSummary(std::int32_t account) const override;
  RequestCode UpdateSLTP(std::int64_t ticket, const StopPrices& stops, RequestId id) override;
  double EvaluateSLTPPrice(std::int32_t symbol_id, double at_price, std::string_view, double price,
                           double& value) const override;
  double SymbolLimitDistance(std::string_view symbol) const override;
  double SymbolStopDistance(std::string_view symbol) const override;
  std::optional<AccountInfo> FindAccount(std::int32_t number) const override;
  double MinimumLot() const override;
  double MaximumLot() const override;
  BookEra Era() const override;
  RequestCode AskRequest(RequestId id, BookEra era) override;
  RequestCode AskExecutions(TimePoint since) override;
  RequestCode DeleteEntryOrder(std::int64_t order, RequestId id) override;
  RequestCode DeleteSLTPOrder(std::int64_t order, RequestId id) override;

  // What follows is the hub's.
  ClientFeed& feed() { return feed_; }
  std::optional<std::chrono::milliseconds> next_tick() const { return feed_.next_tick(); }
  std::int32_t account() const { return data_.account; }
  // How many more orders may leave within this second; nothing where the broker sets no bound.
  std::optional<int> credits() const;

 private:
  RequestCode send(WireRequest request);
  // The broker has nothing for it, which is told.
  RequestCode refuse(RequestCode code, const char* what);
  RequestCode answer_requote(std::int64_t order, bool accept, RequestId id);
  // What names an order: symbol, operation and lots, and the request that was accepted last.
  static WireRequest about(const AccountCache::Order& order, RequestKind kind, RequestId id);

  ClientDesk& desk_;
  LoginData data_;
  ClientFeed feed_;
  AccountCache& cache_ = feed_.cache();
  std::deque<std::chrono::milliseconds> sent_;  // when the requests of the last second left
};

}  // namespace tutti
