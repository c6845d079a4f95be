#pragma once

#include <string>
#include <string_view>

#include "books/account_book.h"
#include "core/notices.h"

namespace tutti {

// Tells the operator why an account is not connected: one line in the journal for every login that fails and
// every connection that is lost, and the reason in the Notes of the account. Connected again, the account
// gets back the Notes it had, unless somebody wrote others meanwhile.
class ConnectionReport {
 public:
  ConnectionReport(Notices& notices, AccountBook& book, AccountEntry& record)
      : notices_(notices), book_(book), record_(record) {}

  void login_begins() { told_ = false; }
  void connected();
  // The operator logs the account out: that the connection ends is no news.
  void logged_out() { told_ = true; }

  // Of what these tell of one end of the connection, the first is told.
  void connection_lost() {
    const bool had_one = record_.state == AccountState::connected || record_.state == AccountState::invalid;
    tell(had_one ? "Connection lost" : "No connection to the server");
  }
  void session_ended() { tell("Session disconnected"); }
  // The answer to a login, told whatever else was told of it.
  void login_refused() {
    told_ = false;
    tell("Invalid username or password");
  }

 private:
  void tell(std::string_view reason);

  Notices& notices_;
  AccountBook& book_;
  AccountEntry& record_;
  bool told_ = false;
  std::string reason_;  // as shown in the Notes last; empty while none stands for
};

}  // namespace tutti
