#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/numbers.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"

namespace tutti::testing {

// A trading client whose answers the test sets, and which records what it was asked to do.
class ScriptedClient final : public ClientAPI {
 public:
  CLAPICLASS* sink = nullptr;
  LoginData login_data;
  bool logged_in = true;
  int logins = 0;
  std::vector<Symbol> symbols;
  std::vector<OpenPosition> positions;
  std::vector<PendingOrder> orders;
  SummaryAnswer summary{.values = {}, .result = result::succeeded};
  std::optional<AccountInfo> info;
  RequestCode request_code = request::taken;
  double limit_distance = 0.0;
  double stop_distance = 0.0;
  // "side symbol-id amount"; "entry side limit|stop symbol-id amount at price [sl] [tp]"; "update" and
  // "stops" with the number and the prices; "close ticket amount".
  std::vector<std::string> sent;
  std::vector<RequestId> ids;               // of all that was sent
  std::vector<std::string>* log = nullptr;  // gets closes, too, with the account in front
  double profit_per_point = 0.0;  // what EvaluateSLTPPrice multiplies the difference of the prices with

  void set_sink(CLAPICLASS* new_sink) override { sink = new_sink; }
  void SetLoginData(const LoginData& data) override { login_data = data.copy(); }
  void Login() override { ++logins; }
  int SymbolCount() const override { return static_cast<int>(symbols.size()); }
  const Symbol* SymbolItem(int index) const override { return &symbols[static_cast<std::size_t>(index) - 1]; }
  const Symbol* SymbolRecord(std::string_view symbol) const override { return FindSymbol(symbol); }
  const Symbol* FindSymbol(std::string_view symbol) const override {
    for (const Symbol& s : symbols) {
      if (s.name == symbol) return &s;
    }
    return nullptr;
  }
  int OpenPositionCount() const override { return static_cast<int>(positions.size()); }
  const OpenPosition* OpenPositionItem(int index) const override {
    return &positions[static_cast<std::size_t>(index) - 1];
  }
  int PendingOrderCount() const override { return static_cast<int>(orders.size()); }
  const PendingOrder* PendingOrderItem(int index) const override {
    return &orders[static_cast<std::size_t>(index) - 1];
  }
  RequestCode NewMarketOrder(Operation side, std::int32_t symbol_id, double amount, std::string_view,
                             std::string_view, RequestId id) override {
    named(id);
    sent.push_back(std::to_string(format_as(side)) + " " + std::to_string(symbol_id) + " " +
                   std::to_string(amount));
    return request_code;
  }
  RequestCode NewEntryOrder(const EntryOrder& o, RequestId id) override {
    named(id);
    sent.push_back("entry " + std::to_string(format_as(o.side)) +
                   (o.kind == EntryKind::limit ? " limit " : " stop ") + std::to_string(o.symbol_id) + " " +
                   number_text(o.amount) + " at " + number_text(o.price) + stops_text(o));
    return request_code;
  }
  RequestCode UpdateEntryOrder(std::int64_t order, double price, const StopPrices& stops,
                               RequestId id) override {
    named(id);
    sent.push_back("update " + std::to_string(order) + " at " + number_text(price) + stops_text(stops));
    return request_code;
  }
  RequestCode AcceptRequote(std::int64_t, RequestId id) override { return named(id); }
  RequestCode RejectRequote(std::int64_t, RequestId id) override { return named(id); }
  RequestCode ClosePosition(std::string_view ticket, std::string_view amount, std::string_view,
                            RequestId id) override {
    named(id);
    sent.push_back("close " + std::string{ticket} + " " + std::string{amount});
    if (log != nullptr) log->push_back(std::to_string(login_data.account) + " " + sent.back());
    return request_code;
  }
  bool LoggedIn() const override { return logged_in; }
  void Logout() override {}
  SummaryAnswer GetAccountSummary(std::int32_t) const override { return summary; }
  RequestCode UpdateSLTP(std::int64_t ticket, const StopPrices& stops, RequestId id) override {
    named(id);
    sent.push_back("stops " + std::to_string(ticket) + stops_text(stops));
    return request_code;
  }
  double EvaluateSLTPPrice(std::int32_t, double at_price, std::string_view, double price,
                           double& value) const override {
    return value = (price - at_price) * profit_per_point;
  }
  double SymbolLimitDistance(std::string_view) const override { return limit_distance; }
  double SymbolStopDistance(std::string_view) const override { return stop_distance; }
  std::optional<AccountInfo> FindAccount(std::int32_t) const override { return info; }
  RequestCode DeleteEntryOrder(std::int64_t, RequestId id) override { return named(id); }
  RequestCode DeleteSLTPOrder(std::int64_t, RequestId id) override { return named(id); }
  double MinimumLot() const override { return 0.01; }
  double MaximumLot() const override { return 100.0; }
  BookEra Era() const override { return 0; }
  std::vector<RequestId> asked_for;
  RequestCode ask_code = request::silent;
  RequestCode AskRequest(RequestId id, BookEra) override {
    asked_for.push_back(id);
    return ask_code;
  }
  std::vector<TimePoint> executions_since;  // asked for
  RequestCode AskExecutions(TimePoint since) override {
    executions_since.push_back(since);
    return request::silent;
  }

 private:
  RequestCode named(RequestId id) {
    ids.push_back(id);
    return request_code;
  }
  template <class Stops>
  static std::string stops_text(const Stops& stops) {
    return (stops.has_stop_loss ? " sl " + number_text(stops.stop_loss) : "") +
           (stops.has_take_profit ? " tp " + number_text(stops.take_profit) : "");
  }
};

}  // namespace tutti::testing
