#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/totals.h"
#include "sessions/CLoginOptions.h"
#include "sessions/connection_report.h"
#include "sessions/session_scope.h"

namespace tutti {

// The connection of an account session as its row, the status bar and the totals show it, and the summary
// that came over it.
class SessionConnection {
 public:
  SessionConnection(SessionScope& scope, CLoginOptions& options) : scope_(scope), options_(options) {}

  // What the session last added to the totals, in the terminal's signs; zeros while disconnected.
  const Totals& summary() const { return summary_; }
  // Takes the session's values out of the global totals and shows the totals line.
  void release_totals();
  // The operator logs out: that the connection ends is no news.
  void log_out();
  // The session ends for good: nobody else says any more that its wait is over.
  void shut_down();

  // Steps of the account's events, each as far as it shows. A connection that comes and goes is shown in the
  // row first, whatever becomes of the other steps.
  void show_state(bool connected);
  void connected();
  void lost() { report_.connection_lost(scope_.row); }
  void waiting_mode(std::int32_t mode);
  void session_disconnected();
  void invalid_login();
  // The account number is none of the user's.
  void invalid_account();
  void summaries_changed(const AccountSummary& reported);
  void server_time(TimePoint time);
  void server_routed(std::string_view address, std::string_view port);

 private:
  SessionScope& scope_;
  CLoginOptions& options_;
  ConnectionReport report_{scope_.general, scope_.account};
  Totals summary_;
  bool waiting_ = false;  // for the server, as it says
};

}  // namespace tutti
