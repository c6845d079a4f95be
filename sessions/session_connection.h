#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "sessions/CLoginOptions.h"
#include "sessions/connection_report.h"
#include "sessions/contract/codes.h"
#include "sessions/session_scope.h"

namespace tutti {

// The connection of an account session: what it tells goes into the account's record, into the status bar and
// into the totals.
class SessionConnection {
 public:
  SessionConnection(SessionScope& scope, CLoginOptions& options) : scope_(scope), options_(options) {}

  // Takes the session's values out of the global totals and shows the totals line.
  void release_totals();
  // The operator logs in, or out: that the connection ends is no news.
  void log_in();
  void log_out();
  // The session ends for good: nobody else says any more that its wait is over.
  void shut_down();

  // Steps of the account's events, each as far as it shows. A connection that comes and goes is shown first,
  // whatever becomes of the other steps.
  void show_state(bool connected);
  void connected();
  void lost();
  void waiting_mode(ConnectionMode mode);
  void session_disconnected();
  void invalid_login();
  // The account number is none of the user's.
  void invalid_account();
  void server_time(TimePoint time);
  void server_routed(std::string_view address, std::string_view port);

 private:
  void show_invalid();

  SessionScope& scope_;
  CLoginOptions& options_;
  ConnectionReport report_{scope_.general, scope_.book, scope_.record};
  bool waiting_ = false;  // for the server, as it says
};

}  // namespace tutti
