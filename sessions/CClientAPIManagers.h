#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>

#include "core/row_key.h"
#include "sessions/CClientAPIManager.h"
#include "sessions/account_windows.h"
#include "sessions/contract/codes.h"

namespace tutti {

// Session collection: the one collection of account sessions. Numbers them 1..count without gaps, keeps the
// accounts list in step, answers questions that span all sessions, and sends a market order to every ticked
// account.
class CClientAPIManagers {
 public:
  // More accounts than this are refused.
  static constexpr std::size_t max_accounts = 500;

  CClientAPIManagers(ClientFactory make_client, MGeneral& general, Desk& desk, Books& books,
                     CLoginOptions& options, Ledger& ledger, StopSign& stop,
                     std::size_t capacity = max_accounts);
  ~CClientAPIManagers();

  // New session and its row; logged in at once when asked. nullptr, after a message, when the collection is
  // full.
  CClientAPIManager* Add(const LoginData& login, std::string_view notes, bool login_now);
  std::span<const std::unique_ptr<CClientAPIManager>> Children() const { return sessions_; }
  // By key ("C7") or by number from 1; nullptr when there is none.
  CClientAPIManager* Item(std::string_view key) const;
  CClientAPIManager* Item(std::int64_t number) const {
    if (number < 1 || number > Count()) return nullptr;
    return sessions_[static_cast<std::size_t>(number) - 1].get();
  }
  int Count() const { return static_cast<int>(sessions_.size()); }
  // First session with this account number; nullptr when there is none.
  CClientAPIManager* by_account(std::int32_t account) const {
    const auto at = by_account_.find(account);
    return at == by_account_.end() ? nullptr : at->second.front();
  }
  // First such session that is logged in.
  CClientAPIManager* logged_in(std::int32_t account) const;
  // The one that is logged in to exactly this account, at this server and under this user.
  CClientAPIManager* logged_in(const LedgerAccount& account) const;
  // The first, where it carries the symbol; nullptr when it does not.
  CClientAPIManager* carrying(std::string_view symbol, std::int32_t account) const;
  // A close of the position has left, and nobody knows yet what became of it.
  bool close_awaited(std::int64_t ticket, std::int32_t account) const;
  // Summary of an account as its logged-in session knows it; result::failed when there is none.
  SummaryAnswer summary_of(std::int32_t account) const;
  // The application's current session: the first that was made and still is.
  CClientAPIManager* current() const { return current_; }

  const AccountWindows& windows() const { return windows_; }

  // Shows a session in the accounts list.
  void AddToListView2(CClientAPIManager& session, std::string_view notes, bool connected);
  void Remove(std::string_view key);
  // Removes the session at a number, from 1, without renumbering those behind.
  void RClear(int number);
  void Clear();
  // Renumbers the sessions behind a removed one. Their rows keep cells and states.
  void ReArrangeList(int removed);

  // True when the first logged-in session of the account carries the symbol.
  bool Check_Visibility(std::string_view symbol, std::string_view account) const;
  bool Check_Visibility(std::string_view symbol, std::int32_t account) const;
  // Widest minimum distance of an entry order for the symbol over the entry order window's accounts, as a
  // price difference; -1 when no logged-in account there carries it. An account's distance in points is
  // compared with the scaled answer so far.
  double Limit_Offset(std::string_view symbol) const;
  double Stop_Offset(std::string_view symbol) const;

  // Sends one market order per ticked, logged-in account of the market order window, with its row's amount.
  void BuyFunction() { fan_out(operation::buy); }
  void SellFunction() { fan_out(operation::sell); }
  void NewOrder(std::string_view, std::string_view, std::string_view) {}
  // What `ask` sends through the sessions is one ticket; it has left when this returns. `about` as the gate
  // takes it.
  void as_one_ticket(const std::function<void()>& ask, const LedgerTicket& about = {}) {
    gate_.as_one_ticket(ask, about);
  }
  // What `ask` sends is a request that had no effect, once more.
  void as_retry_of(RequestId request, const std::function<void()>& ask) { gate_.as_retry_of(request, ask); }
  // What an earlier run stored and never sent won't be sent under its id any more.
  void drop_stored(RequestId request) {
    gate_.ledger().note({.request = request,
                         .state = LedgerState::dropped,
                         .evidence = LedgerEvidence::hand,
                         .reason = "sent again"});
  }
  // Sends what was asked for in handlers and is stored by now, or waits for that.
  void send_stored() { gate_.send_stored(); }
  void wait_for_stored() { gate_.wait_for_stored(); }
  // When the next request that waits for its turn may leave; see RequestGate.
  std::optional<std::chrono::milliseconds> next_turn() const { return gate_.next_turn(); }
  // Limits, the stop, and what is held.
  Admission& admission() { return gate_.admission(); }
  // Sends a held ticket after all, for this reason.
  void send_held(int number, std::string_view reason) { gate_.send_held(number, reason); }
  // The orders of the last Buy or Sell, sorted by account.
  std::span<const SentOrder* const> last_fan_out();
  const RequestBook& requests() const { return requests_; }
  // See RequestBook::set_patience.
  void set_patience(std::chrono::milliseconds patience) { requests_.set_patience(patience); }
  // Requests of all sessions that are still to be answered.
  int unanswered() const;
  // Requests of all sessions that nobody knows the outcome of, of those for which `counted` holds.
  int unknown(const std::function<bool(const SentOrder&)>& counted) const;
  // The same of one account, which has several sessions when it stands under several user names.
  int unknown(std::int32_t account, const std::function<bool(const SentOrder&)>& counted) const;
  // The operator's word on a request whose outcome nobody knows, `note` why he is sure: a later report
  // replaces it. False when there is no such request.
  bool settle_by_hand(RequestId request, bool executed, std::string_view note);
  // Gives up what no word came for in too long, journaled. What was given up since, for that or with its
  // connection, has one message. To be called once a second, so that what comes together is told together.
  void look_at_the_clock();
  // Reports the request code of a market order. `row_key` is the account's key in the accounts list.
  void Result(RequestCode code, std::int32_t account, RowKey row_key);

 private:
  using DistanceOf = double (AccountClient::*)(std::string_view) const;

  void fan_out(Operation side);
  double widest_distance(std::string_view symbol, DistanceOf distance_of) const;
  void index_accounts();

  ClientFactory make_client_;
  MGeneral& general_;
  Desk& desk_;
  Books& books_;
  CLoginOptions& options_;
  AccountWindows windows_{desk_, books_, *this};
  RequestBook requests_;
  RequestGate gate_;
  std::size_t capacity_;
  std::vector<std::unique_ptr<CClientAPIManager>> sessions_;  // number n at n - 1
  std::vector<std::unique_ptr<CClientAPIManager>>
      retired_;  // removed by a handler, freed with the next removal outside one
  // One account number may stand under several user names.
  tsl::robin_map<std::int32_t, std::vector<CClientAPIManager*>> by_account_;
  std::vector<const SentOrder*> fan_out_;
  std::string sent_sound_;  // file of the sound of a request that has left
  bool fan_out_sorted_ = true;
  CClientAPIManager* current_ = nullptr;
};

}  // namespace tutti
