#pragma once

#include <memory>

#include "dealer/link/dealer_session.h"
#include "dealer/link/server_gate.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"

namespace tutti {

// The trading client of the embedded dealing server: what ClientAPI promises, answered from the server's own
// state.
class DealerClient final : public ClientAPI {
 public:
  // Keeps a reference.
  explicit DealerClient(ServerGate& gate);
  ~DealerClient() override;

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
  std::optional<std::int64_t> RequestsKnown() const override;
  BookEra Era() const override;
  RequestCode AskRequest(RequestId id, BookEra era) override;
  RequestCode AskExecutions(TimePoint since) override;
  RequestCode DeleteEntryOrder(std::int64_t order, RequestId id) override;
  RequestCode DeleteSLTPOrder(std::int64_t order, RequestId id) override;

 private:
  // Place in the market of a symbol that the account carries.
  std::optional<std::size_t> place_of(std::int32_t symbol_id) const;
  std::optional<std::size_t> carried(std::string_view symbol) const;

  // invalid_account when nobody is logged in.
  RequestCode send(Instruction wanted);
  RequestCode answer_requote(std::int64_t order, bool accept, RequestId id);
  // Account of the logged-in user; nullptr when he does not own the number.
  const TradingAccount* own(std::int32_t number) const;

  ServerGate& gate_;
  std::unique_ptr<DealerSession> session_;
  LoginData data_;
  LedgerTag ledger_ = 0;
};

}  // namespace tutti
