#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "core/MGeneral.h"
#include "sessions/CLoginOptions.h"
#include "sessions/RequestGate.h"
#include "sessions/account_windows.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/contract/codes.h"
#include "sessions/session_connection.h"
#include "sessions/session_market.h"
#include "sessions/session_records.h"
#include "sessions/session_requests.h"
#include "sessions/session_summary.h"
#include "sessions/session_unknown.h"

namespace tutti {

// Account session: one client account's connection and the sink of all its events, which its parts handle:
// connection, market data, records and requests.
//
// Made and owned by the collection, which numbers it. Handlers run on the GUI thread, one at a time, and
// write what they learn into the books and through the desk. What it sends goes through the gate; the
// connection that it holds can only ask.
class alignas(64) CClientAPIManager final : public CLAPICLASS {
 public:
  // What all sessions share. It outlives them.
  struct Shared {
    MGeneral& general;
    Desk& desk;
    const AccountWindows& windows;
    Books& books;
    CLoginOptions& options;
    RequestBook& book;
    RequestGate& gate;
  };

  CClientAPIManager(std::unique_ptr<ClientAPI> client, const LoginData& login, const Shared& shared);
  ~CClientAPIManager() override;
  CClientAPIManager(const CClientAPIManager&) = delete;
  CClientAPIManager& operator=(const CClientAPIManager&) = delete;

  // Ends the connection for good. Unhooks the client first, so that a late event reaches nobody, then logs it
  // out, then takes the session's values out of the totals and journals what is still unanswered.
  void shut_down();

  // The operator's login, which begins only when the session is shown as disconnected.
  void log_in() { connection_.log_in(); }
  // The operator's logout; the session stays, its row is emptied.
  void log_out() { connection_.log_out(); }
  // What the row shows when the session comes into the accounts list.
  void enter_list(std::string_view notes, bool connected);
  void write_note(std::string_view note) { scope_.book.set_note(scope_.record, note); }

  AccountClient& ClientAPIF() const { return *client_; }
  // Number within the collection, 1 for the first.
  std::int16_t key() const { return key_; }
  void key(std::int16_t number) { key_ = number; }
  std::int32_t account() const { return scope_.account; }
  const std::string& user() const { return scope_.record.user; }
  const Secret& password() const { return password_; }
  // Trimmed, upper-cased user name and account number.
  std::string duplicate_key() const { return account_key(user(), account()); }

  // Who the account is in the ledger.
  LedgerAccount ledger_account() const { return SessionRequests::identity(scope_.record); }

  // The lists show what this session told of the account.
  bool lists_account() const { return records_.lists_account(); }
  // Whatever the account held at its login is listed by now.
  bool has_positions() const { return records_.has_positions(); }
  // What the session's row of the accounts list shows.
  const AccountEntry& ClientListItem() const { return scope_.record; }

  // Asks the server for an account's seven values. When it does not answer with success, six of them become
  // 0, `out.floating_pl` keeps what the caller had in it, and the global floating total becomes 0.
  void Summary(std::int32_t account, AccountSummary& out) {
    out = session_summary::ask(scope_, account, out.floating_pl);
  }
  // Shows what the server answers now in the session's row, which says "connected" then.
  void query_summary() { session_summary::query(scope_); }
  std::string SummaryDesc(double balance, double equity, double effective_margin) const;

  // Identifier of a symbol for this account's order calls; 0 when the account does not carry it.
  std::int32_t GetIDByName(std::string_view symbol) const { return symbol_id(scope_.symbols.find(symbol)); }
  std::int32_t symbol_id(SymbolHandle symbol) const { return market_.id_of(symbol); }
  // Refills the market watch from this account's symbols.
  void LoadMWPprices() { market_.fill_market_watch(); }
  // Takes one symbol out of the application's symbol collection.
  void RemoveData(std::string_view symbol) { scope_.symbols.remove(symbol); }

  static std::string_view ResultDescription(ResultCode code);
  static std::string_view BuySellDesc(Operation operation);

  // Marks an account that the server does not know.
  static constexpr std::string_view unknown_account_note = "Invalid account ID";
  // Selects the row "C" & text of the accounts list and writes that note into it.
  void DisInvalidAcc(std::string_view key_text);

  // As the library has them; nullptr when it has none with this number. Valid until its next event.
  const PendingOrder* pending_order(std::int64_t order) const { return records_.pending_order(order); }
  const OpenPosition* open_position(std::int64_t ticket) const { return records_.open_position(ticket); }
  using Then = RequestGate::Then;
  // Each sends one request, amounts in lots, and answers its record, which says whether it was taken once it
  // has left, and later what became of it; `then` runs when it has left. The entry order window is told of
  // entry orders, updates and stops, with the mark of its round.
  const SentOrder& market_order(Operation side, SymbolHandle symbol, double amount, Then&& then = {});
  const SentOrder& close_position(std::int64_t ticket, double amount, Then&& then = {});
  const SentOrder& cancel_order(std::int64_t order, bool stops_of_position, Then&& then = {});
  const SentOrder& place_entry(const EntryOrder& order, SymbolHandle symbol, int round, Then&& then = {});
  const SentOrder& update_entry(std::int64_t order, double price, const StopPrices& stops, int round,
                                Then&& then = {});
  const SentOrder& set_stops(std::int64_t ticket, const StopPrices& stops, int round, Then&& then = {});
  const SentOrder& answer_requote(std::int64_t order, bool accept, Then&& then = {});
  // One that an earlier run stored for this account and never sent, under the id it has.
  const SentOrder& send_stored(SentOrder as);
  // The market order (new entry order) sent last; its outcome is `none` when none was.
  const SentOrder& last_order() const { return book_.last_new(sender(), RequestKind::open); }
  const SentOrder& last_entry() const { return book_.last_new(sender(), RequestKind::entry); }
  // The last request of this kind for this ticket or order; nullptr when none was sent.
  const SentOrder* sent_request(RequestKind kind, std::int64_t number) const {
    return book_.last(sender(), kind, number);
  }
  Sender sender() const { return requests_.sender(); }
  // How many requests are still to be answered.
  int unanswered() const { return book_.unanswered(sender()); }
  // Of how many unknown requests the server is asked and has not answered.
  int asked() const { return unknown_.asked(); }
  // Gives up waiting: journals every request without a result as unknown. `reason` as the ledger has it.
  void journal_unanswered(std::string_view reason) {
    gate_.drop_waiting(sender());
    unknown_.give_up_all(reason);
  }
  // No word came for one of them in too long.
  void overdue(SentOrder& request) { unknown_.overdue(request); }
  // The operator knows what became of one of them: its row says so.
  void known(const SentOrder& request) { unknown_.known(request); }
  // An order of the account has ended with the answer to its requote: it is listed no more.
  void order_ended(std::int64_t order) { scope_.orders.remove(order, account()); }

  void AllDataAreLoaded() override;
  void CloseOrderResult(const OrderReport& report) override { meant(requests_.close_result(report)); }
  void DeleteLimitOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    meant(requests_.delete_entry(order, result, id));
  }
  void DeleteOpenPosition(const OpenPosition& position) override { records_.position_gone(position); }
  void DeletePendingOrder(const PendingOrder& order) override { records_.order_gone(order); }
  void DeleteSLTPOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    meant(requests_.delete_stops(order, result, id));
  }
  void InvalidUsernamePassword() override { connection_.invalid_login(); }
  void LimitOrderAccepted(const OrderReport& report) override { requests_.entry_executed(report); }
  void LimitOrderCanceledCannotHdg(std::int64_t order, std::int32_t account) override {
    requests_.entry_cancelled(order, account, " cancelled because cannot handge for account number #");
  }
  void LimitOrderCanceledNoMoney(std::int64_t order, std::int32_t account) override {
    requests_.entry_cancelled(order, account, " cancelled because there is no money for account number #");
  }
  void MarketOrderAccepted(const OrderReport& report) override {
    meant(requests_.market_order_accepted(report));
  }
  void MarketOrderRejected(const OrderReport& report) override {
    meant(requests_.market_order_rejected(report));
  }
  void NewLimitOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    meant(requests_.new_entry(order, result, id));
  }
  void NewOpenPosition(const OpenPosition& position) override { records_.position(position); }
  void NewOrderResult(const OrderReport& report) override { meant(requests_.new_order(report)); }
  void NewPendingOrder(const PendingOrder& order) override { records_.order(order); }
  void NewSLTPOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    meant(requests_.new_stops(order, result, id));
  }
  void OrderTimer(const Requote& requote) override;
  void PendingOrdersLoaded() override { records_.orders_loaded(); }
  void PosFloatingPLChanged(const OpenPosition& position) override { records_.floating_changed(position); }
  void RequestTold(RequestId id, RequestState state, double lots) override { unknown_.told(id, state, lots); }
  void ExecutionsTold(std::span<const Execution> fills, bool complete) override {
    unknown_.fills_told(fills, complete);
  }
  void ServerRouted(std::string_view address, std::string_view port) override {
    connection_.server_routed(address, port);
  }
  void ServerTime(TimePoint time) override { connection_.server_time(time); }
  void SessionDisconnected() override { connection_.session_disconnected(); }
  void SlTpOrderAccepted(std::int64_t order) override;
  void SlTpOrderCanceledNoMoney(std::int64_t order) override;
  void SymbolHighLowChanged(const Symbol& symbol) override { market_.high_low_changed(symbol); }
  void SymbolPricesChanged(const Symbol& symbol) override { market_.prices_changed(symbol); }
  void SymbolsLoaded() override { market_.symbols_loaded(); }
  void UpdateLimitOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    meant(requests_.update_entry(order, result, id));
  }
  void UpdateOpenPosition(const OpenPosition& position) override { records_.position(position); }
  void UpdateSLTPOrderResult(std::int64_t order, ResultCode result, RequestId id) override {
    meant(requests_.update_stops(order, result, id));
  }
  void WaitingMode(ConnectionMode mode) override { connection_.waiting_mode(mode); }
  void ConnectionState(bool connected) override;
  void OpenPositionsLoaded() override { records_.positions_loaded(); }
  void SummariesChanged(const AccountSummary& summary) override { CLAPICLASS_SummariesChanged(summary); }

 private:
  bool is_whole();
  void CLAPICLASS_SummariesChanged(const AccountSummary& reported) {
    session_summary::changed(scope_, reported);
  }
  // An answer that meant no open request: what the account has is read again.
  void meant(bool a_request) {
    if (!a_request) windows_.read_again(*this);
  }
  // Runs one step of a handler that goes on with the next one whatever happens.
  template <class Step>
  void carry_on(Step&& step);

  std::unique_ptr<AccountClient> client_;
  SessionScope scope_;
  SessionConnection connection_;
  SessionMarket market_;
  SessionRecords records_;
  SessionRequests requests_;
  SessionUnknown unknown_;
  const AccountWindows& windows_;
  RequestBook& book_;
  RequestGate& gate_;
  std::int16_t key_ = 0;
  Secret password_;
};

}  // namespace tutti
