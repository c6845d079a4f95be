#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "accounts/frmMain.h"
#include "core/notices.h"
#include "orders/account_rows.h"
#include "orders/order_answer.h"

namespace tutti {

// What the entry order window sends with one press of Submit, row by row, and what becomes of it. What
// belongs to an earlier round is told in its row, but counted no more.
class EntryRound {
 public:
  // What is told of a request: at once, or when what was asked for has been done.
  struct Request {
    std::string_view kind;
    std::string description;
    double price = 0.0;
    std::string stop_loss;  // as typed
    std::string take_profit;
  };
  // Data of a row of the window.
  struct RowData {
    // The operator ticked the row, or pressed Distribute with it ticked. If it is not ticked all the same,
    // the account was refused.
    bool wanted = false;
    Request sent;  // last
    int round = 0;
    bool stops_done = false;  // the SL/TP of that round were carried out
  };

  // Keeps references to all. `stops`: the kind of requests that are told when they are carried out.
  EntryRound(Notices& notices, frmMain& accounts_list, CClientAPIManagers& sessions, const AccountRows& rows,
             std::string_view stops)
      : notices_(notices), accounts_list_(accounts_list), sessions_(sessions), rows_(rows), stops_(stops) {}

  // A new one, in which nothing is sent yet.
  void begin();
  // Has `send` send, by the session of the row's account and with the mark of the round, and reports the
  // request code once it is there. The row stays until then.
  using Send = std::function<void(CClientAPIManager&, int round, RequestGate::Then then)>;
  void send(Row& row, Request request, const Send& send);
  // What became of a request of any round.
  void settled(const SentOrder& order, std::int32_t account);
  // The SL/TP of an account were carried out: told once, where they were asked for here.
  void stops_carried_out(std::int32_t account);

  bool empty() const { return answers_.empty(); }
  // What has left in this round, or was not sent after all.
  std::vector<const SentOrder*> requests() const { return {requests_.begin(), requests_.end()}; }
  OrderAnswer answer_of(const Row& row) const;
  OrderAnswers answers() const;
  // How many requests of earlier rounds for the account of a row nobody knows the outcome of.
  int unknown_before(const Row& row) const;

 private:
  bool is_of_before(const SentOrder& order) const {
    return of_entry_window(order.kind) && order.round != round_;
  }
  static void note(Row& row, std::string_view text) { row.set_text(AccountRows::result_text, text); }
  void sent(Row& row, RequestCode code);
  std::string report(RequestCode code, std::int32_t account, const Request& request);

  Notices& notices_;
  frmMain& accounts_list_;
  CClientAPIManagers& sessions_;
  const AccountRows& rows_;
  std::string_view stops_;
  int round_ = 1;                                // those of earlier runs have 0
  std::map<std::int32_t, OrderAnswer> answers_;  // of the round, by account
  std::set<const SentOrder*> requests_;          // of the round
};

}  // namespace tutti
