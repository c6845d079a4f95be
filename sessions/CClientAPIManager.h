#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/MGeneral.h"
#include "sessions/CLoginOptions.h"
#include "sessions/account_windows.h"
#include "sessions/connection_report.h"
#include "sessions/contract/ClientAPI.h"
#include "sessions/desk.h"
#include "sessions/sent_order.h"
#include "sessions/symbol_collection.h"
#include "sessions/symbol_ids.h"

namespace tutti {

// Account session: one client account's connection, its summary, and the handlers of all its events.
//
// Made and owned by the collection, which numbers it and gives it its row. Handlers run on the GUI thread,
// one at a time, and write what they learn through the desk.
class CClientAPIManager final : public CLAPICLASS {
 public:
  CClientAPIManager(std::unique_ptr<ClientAPI> client, const LoginData& login, MGeneral& general, Desk& desk,
                    const AccountWindows& windows, SymbolCollection& symbols, CLoginOptions& options);
  ~CClientAPIManager() override;
  CClientAPIManager(const CClientAPIManager&) = delete;
  CClientAPIManager& operator=(const CClientAPIManager&) = delete;

  // Ends the connection for good. Unhooks the client first, so that a late event reaches nobody, then logs it
  // out, then takes the session's values out of the totals and journals what is still unanswered.
  void shut_down();

  // The operator's logout; the session stays.
  void log_out() {
    connection_.logged_out();
    client_->Logout();
  }

  ClientAPI& ClientAPIF() const { return *client_; }
  // Number within the collection, 1 for the first.
  std::int16_t key() const { return key_; }
  void key(std::int16_t number) { key_ = number; }
  std::int32_t account() const { return account_; }
  const std::string& user() const { return user_; }
  const Secret& password() const { return password_; }
  // Trimmed, upper-cased user name and account number.
  std::string duplicate_key() const { return account_key(user_, account_); }

  // The lists show what this session told of the account.
  bool lists_account() const { return lists_account_; }
  // The session's row of the accounts list; nullptr when it has none.
  Row* ClientListItem() const { return row_; }
  void ClientListItem(Row* row) { row_ = row; }

  // Asks the server for an account's seven values. When it does not answer with success, six of them become
  // 0, `out.floating_pl` keeps what the caller had in it, and the global floating total becomes 0.
  void Summary(std::int32_t account, AccountSummary& out) {
    const SummaryAnswer answer = ask_summary(account);
    if (answer.result == result::succeeded) {
      out = answer.values;
      return;
    }
    out = {.floating_pl = out.floating_pl};
    general_.totals.floating_pl = 0.0;
  }
  std::string SummaryDesc(double balance, double equity, double effective_margin) const;
  // What the session last added to the totals, in the terminal's signs; zeros while disconnected.
  const Totals& summary() const { return summary_; }

  // Identifier of a symbol for this account's order calls; 0 when the account does not carry it.
  std::int32_t GetIDByName(std::string_view symbol) const { return symbol_id(symbols_.find(symbol)); }
  std::int32_t symbol_id(SymbolHandle symbol) const { return symbol_ids_.id_of(symbol); }
  // Refills the market watch from this account's symbols.
  void LoadMWPprices();
  // Takes one symbol out of the application's symbol collection.
  void RemoveData(std::string_view symbol) { symbols_.remove(symbol); }

  static std::string_view ResultDescription(std::int32_t code);
  static std::string_view BuySellDesc(std::int32_t operation);

  // Selects the row "C" & text of the accounts list and marks it as an account the server does not know.
  void DisInvalidAcc(std::string_view key_text);

  // Market orders of this account: the fan-out notes each one it sends.
  void note_sent(const SentOrder& order) { note_new(orders_, order); }
  // The one sent last; its outcome is `none` when nothing was sent.
  const SentOrder& last_order() const { return last_of(orders_); }
  // Closes a position of this account, or `amount` lots of it; cancels an entry order or the SL/TP order of a
  // position. Each answers the request code and keeps account of what becomes of it.
  std::int32_t close_position(std::int64_t ticket, double amount);
  std::int32_t cancel_order(std::int64_t order, bool stops_of_position);
  // The same for a new entry order, new prices of one, and the SL/TP of a position. The entry order window is
  // told what becomes of them, with the mark of its round.
  std::int32_t place_entry(const EntryOrder& order, SymbolHandle symbol, int round);
  std::int32_t update_entry(std::int64_t order, double price, const StopPrices& stops, int round);
  std::int32_t set_stops(std::int64_t ticket, const StopPrices& stops, int round);
  // The new entry order that was sent last, as last_order.
  const SentOrder& last_entry() const { return last_of(entries_); }
  // The last request of this kind for this ticket or order; nullptr when none was sent.
  const SentOrder* sent_request(RequestKind kind, std::int64_t number) const;
  // As the library has them; nullptr when it has none with this number. Valid until its next event.
  const PendingOrder* pending_order(std::int64_t order) const;
  const OpenPosition* open_position(std::int64_t ticket) const;
  // How many of all these are still to be answered.
  int unanswered() const;
  // Gives up waiting: journals every request without a result as unknown.
  void journal_unanswered();

  void AllDataAreLoaded() override;
  void CloseOrderResult(const OrderReport& report) override;
  void DeleteLimitOrderResult(std::int64_t order, std::int32_t result, RequestId) override;
  void DeleteOpenPosition(const OpenPosition& position) override;
  void DeletePendingOrder(const PendingOrder& order) override;
  void DeleteSLTPOrderResult(std::int64_t order, std::int32_t result, RequestId) override;
  void InvalidUsernamePassword() override;
  void LimitOrderAccepted(const OrderReport& report) override;
  void LimitOrderCanceledCannotHdg(std::int64_t order, std::int32_t account) override;
  void LimitOrderCanceledNoMoney(std::int64_t order, std::int32_t account) override;
  void MarketOrderAccepted(const OrderReport& report) override;
  void MarketOrderRejected(const OrderReport& report) override;
  void NewLimitOrderResult(std::int64_t order, std::int32_t result, RequestId) override;
  void NewOpenPosition(const OpenPosition& position) override;
  void NewOrderResult(const OrderReport& report) override;
  void NewPendingOrder(const PendingOrder& order) override;
  void NewSLTPOrderResult(std::int64_t order, std::int32_t result, RequestId) override;
  void OrderTimer(const Requote& requote) override;
  void PendingOrdersLoaded() override;
  void PosFloatingPLChanged(const OpenPosition& position) override;
  void ServerRouted(std::string_view address, std::string_view port) override;
  void ServerTime(TimePoint time) override;
  void SessionDisconnected() override;
  void SlTpOrderAccepted(std::int64_t order) override;
  void SlTpOrderCanceledNoMoney(std::int64_t order) override;
  void SymbolHighLowChanged(const Symbol& symbol) override;
  void SymbolPricesChanged(const Symbol& symbol) override;
  void SymbolsLoaded() override;
  void UpdateLimitOrderResult(std::int64_t order, std::int32_t result, RequestId) override;
  void UpdateOpenPosition(const OpenPosition& position) override;
  void UpdateSLTPOrderResult(std::int64_t order, std::int32_t result, RequestId) override;
  void WaitingMode(std::int32_t mode) override;
  void ConnectionState(bool connected) override;
  void OpenPositionsLoaded() override;
  void SummariesChanged(const AccountSummary& summary) override { CLAPICLASS_SummariesChanged(summary); }

 private:
  void CLAPICLASS_SummariesChanged(const AccountSummary& reported);
  // The library's answer; a failed one when it raised an error.
  SummaryAnswer ask_summary(std::int32_t account) const {
    try {
      return client_->GetAccountSummary(account);
    } catch (const std::exception&) {
      return {.values = {}, .result = result::failed};
    }
  }

  // Takes the session's values out of the global totals and shows the totals line.
  void release_totals();
  void log(std::string_view text) { general_.log(text, account_); }
  // Journals that a record of the library is ignored for the values in it, once while the connection stands.
  void refuse(const std::string& what);
  void refuse_symbol(const Symbol& symbol);
  // Keeps the text as the application's last message and shows it under the default caption.
  void tell(const std::string& text);
  // The same text to the journal and to the pending orders view.
  void log_order(std::int64_t order, std::string_view text);
  bool row_connected() const { return row_ != nullptr && row_->reads(2, "Connected"); }
  void refresh_pending(std::int64_t order);
  void refresh_position(std::int64_t ticket);
  // New orders: the last one sent, behind those that are not settled; oldest first.
  using NewOrders = std::vector<SentOrder>;
  static void note_new(NewOrders& orders, const SentOrder& order);
  static const SentOrder& last_of(const NewOrders& orders);
  // What became of the order or request that is meant. Each answers false when none is: it was not sent from
  // here, or it is settled. Such an answer is journaled, and what the account has is read again.
  bool settle_order(const OrderReport& report, SentOrder::Outcome outcome);
  // The same for the first answer to an order, which tells its number.
  bool settle_new_order(const OrderReport& report, SentOrder::Outcome outcome);
  bool settle_entry(std::int64_t order, std::int32_t result);
  bool settle_placed(std::int64_t order);
  // The answer to stops names their order, which is a new one when the position had none before.
  bool settle_stops(std::int64_t order, std::int32_t result);
  bool settle_request(RequestKind kind, std::int64_t number, std::int32_t result, SentOrder::Outcome outcome);
  bool settle_open(NewOrders::iterator order, const OrderReport& report, SentOrder::Outcome outcome);
  void read_again_unless(bool meant) {
    if (!meant) windows_.read_again(*this);
  }
  void settle(SentOrder& request, std::int32_t result, SentOrder::Outcome outcome);
  std::int32_t note_request(SentOrder request, std::int32_t request_code);
  void journal_unknown(const std::string& what);
  // Journal, messages, and the position's row in the close positions window when the close is `ours`.
  void tell_close(const OrderReport& report, bool ours);

  std::unique_ptr<ClientAPI> client_;
  MGeneral& general_;
  Desk& desk_;
  const AccountWindows& windows_;
  SymbolCollection& symbols_;
  CLoginOptions& options_;
  Row* row_ = nullptr;
  std::int32_t account_;
  std::int16_t key_ = 0;
  // The rows of the account's positions, orders and windows are this session's, and perhaps those of another
  // user name of the account number as well.
  bool lists_account_ = false;
  Totals summary_;
  ConnectionReport connection_{general_, account_};

  SymbolIds symbol_ids_;
  NewOrders orders_;  // at the market
  NewOrders entries_;
  // Numbers of market orders whose outcome is known, and of all answers to entry orders.
  std::set<std::int64_t> answered_;
  // Refusals of which nobody knows yet which open entry order they are for: number and result code.
  std::vector<std::pair<std::int64_t, std::int32_t>> refused_entries_;
  bool waiting_ = false;  // for the server, as it says
  // All others: of each kind and number the last one sent, behind those that are not settled; oldest first.
  std::vector<SentOrder> requests_;
  std::set<std::string> refused_;  // what was refused since the connection stands
  std::string user_;
  Secret password_;
};

}  // namespace tutti
