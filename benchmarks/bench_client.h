#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "benchmarks/bench_market.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"

namespace tutti::bench {

// A trading client that costs next to nothing: flat values behind the contract's virtual calls, so that what
// is measured is the terminal. Orders are taken and kept in one place.
class BenchClient final : public ClientAPI {
 public:
  // GetAccountSummary answers with what `values` points to at that moment; both stay with the caller.
  BenchClient(const BenchMarket& market, const AccountSummary* const* values)
      : values_(values), market_(market) {}

  CLAPICLASS* sink() const { return sink_; }
  void set_values(const AccountSummary* const* values) { values_ = values; }
  double last_amount() const { return last_amount_; }

  void set_sink(CLAPICLASS* sink) override { sink_ = sink; }
  void SetLoginData(const LoginData&) override {}
  void Login() override { logged_in_ = true; }
  int SymbolCount() const override { return static_cast<int>(market_.symbols.size()); }
  const Symbol* SymbolItem(int index) const override {
    return &market_.symbols[static_cast<std::size_t>(index) - 1];
  }
  const Symbol* SymbolRecord(std::string_view symbol) const override { return market_.find(symbol); }
  const Symbol* FindSymbol(std::string_view symbol) const override { return market_.find(symbol); }
  int OpenPositionCount() const override { return 0; }
  const OpenPosition* OpenPositionItem(int) const override { return nullptr; }
  int PendingOrderCount() const override { return 0; }
  const PendingOrder* PendingOrderItem(int) const override { return nullptr; }
  RequestCode NewMarketOrder(Operation side, std::int32_t symbol_id, double amount, std::string_view,
                             std::string_view, RequestId) override;
  RequestCode NewEntryOrder(const EntryOrder&, RequestId) override { return request::taken; }
  RequestCode UpdateEntryOrder(std::int64_t, double, const StopPrices&, RequestId) override {
    return request::taken;
  }
  RequestCode AcceptRequote(std::int64_t, RequestId) override { return request::taken; }
  RequestCode RejectRequote(std::int64_t, RequestId) override { return request::taken; }
  RequestCode ClosePosition(std::string_view, std::string_view, std::string_view, RequestId) override {
    return request::taken;
  }
  bool LoggedIn() const override { return logged_in_; }
  void Logout() override { logged_in_ = false; }
  SummaryAnswer GetAccountSummary(std::int32_t) const override {
    return {.values = **values_, .result = result::succeeded};
  }
  RequestCode UpdateSLTP(std::int64_t, const StopPrices&, RequestId) override { return request::taken; }
  double EvaluateSLTPPrice(std::int32_t, double, std::string_view, double, double& value) const override {
    return value = 0.0;
  }
  double SymbolLimitDistance(std::string_view) const override { return 0.0; }
  double SymbolStopDistance(std::string_view) const override { return 0.0; }
  std::optional<AccountInfo> FindAccount(std::int32_t) const override { return std::nullopt; }
  RequestCode DeleteEntryOrder(std::int64_t, RequestId) override { return request::taken; }
  RequestCode DeleteSLTPOrder(std::int64_t, RequestId) override { return request::taken; }
  double MinimumLot() const override { return 0.01; }
  double MaximumLot() const override { return 100.0; }
  BookEra Era() const override { return 0; }
  RequestCode AskRequest(RequestId, BookEra) override { return request::silent; }
  RequestCode AskExecutions(TimePoint) override { return request::silent; }

 private:
  CLAPICLASS* sink_ = nullptr;
  const AccountSummary* const* values_;
  const BenchMarket& market_;
  double last_amount_ = 0.0;
  Operation last_side_ = Operation::none;
  std::int32_t last_symbol_ = 0;
  bool logged_in_ = false;
};

}  // namespace tutti::bench
