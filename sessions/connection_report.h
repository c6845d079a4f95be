#pragma once

#include <string>
#include <string_view>

#include "core/MGeneral.h"
#include "core/row.h"

namespace tutti {

// Tells the operator why an account is not connected: one line in the journal for every login that fails and
// every connection that is lost, and the reason in the Notes of the account's row. Connected again, the row
// gets back the Notes it had, unless somebody wrote others meanwhile.
//
// Rows may be nullptr, where there is no list.
class ConnectionReport {
 public:
  ConnectionReport(MGeneral& general, std::int32_t account) : general_(general), account_(account) {}

  void login_begins() {
    connected_ = false;
    told_ = false;
  }
  void connected(Row* row);
  // The operator logs the account out: that the connection ends is no news.
  void logged_out() { told_ = true; }

  // Of what these tell of one end of the connection, the first is told.
  void connection_lost(Row* row) {
    tell(row, connected_ ? "Connection lost" : "No connection to the server");
  }
  void session_ended(Row* row) { tell(row, "Session disconnected"); }
  // The answer to a login, told whatever else was told of it.
  void login_refused(Row* row) {
    told_ = false;
    tell(row, "Invalid username or password");
  }

 private:
  void tell(Row* row, std::string_view reason);

  MGeneral& general_;
  std::int32_t account_;
  bool connected_ = false;
  bool told_ = false;
  std::string reason_;  // as written into the Notes last; empty while none stands for
  std::string notes_;   // what it stands in for
};

}  // namespace tutti
